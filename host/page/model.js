// What the page shows: the changes, each with the names under which people know its place.

const info = JSON.parse(document.getElementById('info').textContent);
const differences = JSON.parse(document.getElementById('differences').textContent);

const kinds = ['changed', 'removed', 'added', 'moved'];
const kindMarks = {changed: '~', removed: '−', added: '+', moved: '↕'};

// Numbers that only keep the books of a list.
const slotNumbers = new Set(['Max', 'Current']);

const sectionTitles = new Map(info.sections.map(({tag, title}) => [tag, title]));
const runNames = new Map(Object.entries(info.runs));
// Whether the items of a list have keys, by the path of the list. What else has places is a fixed run.
const lists = new Map(Object.entries(info.lists));
const titleOf = (tag) => sectionTitles.get(tag) ?? tag;

// The steps of a path behind its section: "Items[3]" is the third of "Items"; what has no place is a member. `list` is
// the path of the run or list as the lists of a document are known by it.
function stepsOf(path) {
  let list = path[0];
  return path.slice(1).map((text) => {
    const bracket = text.endsWith(']') ? text.lastIndexOf('[') : text.length;
    const name = text.slice(0, bracket);
    list += `/${name}`;
    return {name, list, place: text.slice(bracket + 1, -1)};
  });
}

// The keys of `count` items. A key may itself hold the sign that stands between two keys: then the last one has it.
function keysOf(key, count) {
  const keys = key === undefined || key === '' ? [] : key.split('/');
  return keys.length > count && count > 0 ? [...keys.slice(0, count - 1), keys.slice(count - 1).join('/')] : keys;
}

// The names on the way to a change, from the section to the item that holds it, and its own name there: of a member of
// a record within the item, the names of both.
function placeOf(change) {
  const path = (change.path ?? change.newPath).split('/');
  const steps = stepsOf(path);
  const isBookkeeping = steps.some(({name}) => name === 'Spare') || slotNumbers.has(steps[steps.length - 1]?.name);
  const keys = keysOf(change.key, steps.filter(({list, place}) => place && lists.has(list)).length);
  const nameOf = ({list, place}) => {
    const key = lists.has(list) ? keys.shift() : '';
    return key && lists.get(list) ? key : `#${key || place}`;
  };
  const last = steps.pop() ?? {name: path[0], list: path[0], place: ''};
  const names = [titleOf(path[0])];
  let inner = 0;  // names since the last item
  for (const step of steps) {
    // The items of a list stand under the list's own name.
    if (step.name !== 'Items') names.push(step.name);
    if (step.place) names.push(nameOf(step));
    inner = step.place ? 0 : inner + 1;
  }
  if (change.kind !== 'changed' && last.place) {
    if (last.name !== 'Items') names.push(last.name);
    return {tag: path[0], names, member: nameOf(last), isBookkeeping};
  }
  const within = inner > 0 && inner < steps.length ? names.splice(-inner) : [];
  const own = runNames.get(last.list)?.[last.place - 1] ?? last.name + (last.place && `[${last.place}]`);
  return {tag: path[0], names, member: [...within, own].join(' / '), isBookkeeping};
}

// The path of the item that a value or an item stands in, empty in front of all lists.
function holderOf(path) {
  const parent = path.slice(0, path.lastIndexOf('/'));
  return parent.slice(0, parent.lastIndexOf(']') + 1);
}

const sameNames = (a, b) => a.length === b.length && a.every((name, at) => name === b[at]);

// Changes in one item, one after the other, have one number as their `group`.
function entriesOf(changes) {
  let before = null;
  return changes.map((change) => {
    const place = placeOf(change);
    const entry = {
      change,
      section: place.tag,
      names: place.names,
      member: place.member,
      isBookkeeping: place.isBookkeeping || change.unused === true,
      group: before ? before.group : 0,
      words: null,
    };
    if (before) {
      const inOther = change.path && before.change.path && holderOf(change.path) !== holderOf(before.change.path);
      if (sameNames(before.names, entry.names) && !inOther) {
        entry.names = before.names;
      } else {
        ++entry.group;
      }
    }
    return before = entry;
  });
}

const entries = entriesOf(differences.changes);
const bookkeepingSize = entries.filter(({isBookkeeping}) => isBookkeeping).length;

// A place in OLD, or in NEW of what OLD doesn't have; two changes never have the same.
const linkOf = ({change}) => change.path ?? `new:${change.newPath}`;

// The number of the change at a place, of the first one within it, or -1.
function entryAt(link) {
  const found = entries.findIndex((entry) => linkOf(entry) === link);
  if (found >= 0 || link === '') return found;
  const isWithin = (path) => path && path.startsWith(link) && ['', '/', '['].includes(path.charAt(link.length));
  return entries.findIndex(({change}) => isWithin(change.path) || isWithin(change.newPath) ||
                                         isWithin(`new:${change.newPath}`));
}

function collectWords(value, into) {
  if (value === null || value === undefined) return;
  if (typeof value === 'object') {
    for (const member of Object.values(value)) collectWords(member, into);
  } else {
    into.push(value);
  }
}

// What a search looks through.
function wordsOf(entry) {
  if (entry.words === null) {
    const {change} = entry;
    const into = [entry.names.join(' / '), entry.member, change.path ?? '', change.newPath ?? ''];
    collectWords(change.old, into);
    collectWords(change.new, into);
    entry.words = into.join('\n').toLowerCase();
  }
  return entry.words;
}

const filter = {kinds: new Set(kinds), section: '', search: '', hasBookkeeping: false};

// The numbers of the changes that pass the filter.
function filtered() {
  const needles = filter.search.toLowerCase().split(/\s+/).filter(Boolean);
  const passing = [];
  entries.forEach((entry, at) => {
    if (entry.isBookkeeping && !filter.hasBookkeeping) return;
    if (filter.section && entry.section !== filter.section) return;
    if (!filter.kinds.has(entry.change.kind)) return;
    if (needles.every((needle) => wordsOf(entry).includes(needle))) passing.push(at);
  });
  return passing;
}

const emptyCounts = () => ({changed: 0, removed: 0, added: 0, moved: 0, all: 0});

function count(counts, kind) {
  ++counts[kind];
  ++counts.all;
}

// Counts by kind for each section that has changes, in the sections' order.
function countsBySection() {
  const bySection = new Map();
  for (const {section, change} of entries) {
    if (!bySection.has(section)) bySection.set(section, emptyCounts());
    count(bySection.get(section), change.kind);
  }
  const order = [...sectionTitles.keys()];
  return [...bySection].sort(([a], [b]) => order.indexOf(a) - order.indexOf(b));
}

// The sections and items of these changes; `first` is the number of the first change within a node.
function treeOf(numbers) {
  const root = {name: '', first: -1, size: 0, nodes: new Map()};
  const enter = (node, name, at) => {
    let inner = node.nodes.get(name);
    if (!inner) node.nodes.set(name, inner = {name, first: at, size: 0, nodes: new Map()});
    ++inner.size;
    return inner;
  };
  for (const at of numbers) {
    const {names, member, change} = entries[at];
    let node = root;
    for (const name of names) node = enter(node, name, at);
    if (change.kind !== 'changed') enter(node, member, at);
  }
  return root;
}
