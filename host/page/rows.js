// A change as elements. Texts are only ever set as text.

const byId = (id) => document.getElementById(id);

function make(name, properties = {}, ...content) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key in element) {
      element[key] = value;
    } else {
      element.setAttribute(key, value);
    }
  }
  element.append(...content);
  return element;
}

const hiddenWord = (word) => make('span', {className: 'hidden'}, word);

// Of texts that are longer or have more lines the rest is shown when it's asked for.
const mostCharacters = 6000;
const mostLines = 200;
const linesAround = 3;     // equal lines shown beside a difference
const charactersAround = 120; // equal characters likewise, in a line of more than foldedLine
const foldedLine = 600;

// What is unfolded, by the number of the change; all is, when the reader wants it so.
const unfolded = new Set();
let unfoldsAll = false;
let isOnPaper = false;  // where nothing can be unfolded
const isUnfolded = (at) => isOnPaper || unfoldsAll !== unfolded.has(at);

// Called when a row's height has changed.
let onResize = () => {};

// In place of itself a button shows what `more` makes.
function moreButton(words, more) {
  const button = make('button', {type: 'button', className: 'more'}, words);
  button.addEventListener('click', (event) => {
    event.stopPropagation();
    button.replaceWith(...more());
    onResize();
  });
  return button;
}

const number = (value) => value.toLocaleString('en-US');
const counted = (value, word) => `${number(value)} ${word}${value === 1 ? '' : 's'}`;

// What can't be seen or would turn the line around stands as its number.
const unseen = /[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f\p{Cf}\u2028\u2029]|\r(?!\n)/gu;

function seen(text) {
  const parts = [];
  let at = 0;
  for (const match of text.matchAll(unseen)) {
    const code = match[0].codePointAt(0).toString(16).toUpperCase().padStart(4, '0');
    const sign = make('span', {className: 'unseen', title: 'a character that can\'t be seen'}, `U+${code}`);
    parts.push(text.slice(at, match.index), sign);
    at = match.index + match[0].length;
  }
  parts.push(text.slice(at));
  return parts.filter((part) => part !== '');
}

function seenUpTo(text, most) {
  if (text.length <= most || unfoldsAll) return seen(text);
  const rest = moreButton(`… ${number(text.length - most)} more characters`, () => seen(text.slice(most)));
  return [...seen(text.slice(0, most)), rest];
}

// An equal run between two differences, without its middle when it's long.
function equalRun(text, isFirst, isLast, folds) {
  const before = isFirst ? 0 : charactersAround;
  const after = isLast ? 0 : charactersAround;
  const left = text.length - before - after;
  if (!folds || unfoldsAll || left < charactersAround) return seen(text);
  const middle = () => seen(text.slice(before, text.length - after));
  return [...seen(text.slice(0, before)), moreButton(`… ${number(left)} equal characters …`, middle),
    ...seen(text.slice(text.length - after))];
}

// One side of a line: `parts` as wordParts has them, the differing ones as `mark`.
function markedLine(parts, mark) {
  const length = parts.reduce((sum, [text]) => sum + text.length, 0);
  return parts.flatMap(([text, differs], at) => differs
    ? [make(mark, {}, ...seenUpTo(text, mostCharacters))]
    : equalRun(text, at === 0, at === parts.length - 1, length > foldedLine));
}

const endNames = {'\r\n': 'CR LF', '\r': 'CR', '\n': 'LF'};

// Both sides of one line. Line ends are told where they differ.
function linePair({a, b, differs, endsDiffer}) {
  const side = (className, content) => make('div', {className}, ...content);
  if (!differs) {
    return [side('old same', seenUpTo(a.text, mostCharacters)), side('new same', seenUpTo(b.text, mostCharacters))];
  }
  if (a === null || b === null) {
    const mark = make(b === null ? 'del' : 'ins', {}, ...seenUpTo((a ?? b).text || ' ', mostCharacters));
    return b === null ? [side('old', [mark]), side('new absent', [])] : [side('old absent', []), side('new', [mark])];
  }
  const parts = wordParts(a.text, b.text);
  const endMark = (mark, {end}) => endsDiffer && end ? [make(mark, {className: 'end'}, endNames[end])] : [];
  return [side('old', [...markedLine(parts.a, 'del'), ...endMark('del', a)]),
    side('new', [...markedLine(parts.b, 'ins'), ...endMark('ins', b)])];
}

// Lines side by side; equal ones far from a difference are folded.
function lineCells(pairs) {
  const cells = [];
  const near = (at) => {
    for (let way = -linesAround; way <= linesAround; ++way) {
      if (pairs[at + way]?.differs) return true;
    }
    return false;
  };
  let shown = 0;
  for (let at = 0; at < pairs.length;) {
    let end = at;
    while (end < pairs.length && !near(end)) ++end;
    if (end - at > 2 && !unfoldsAll) {
      const folded = pairs.slice(at, end);
      cells.push(moreButton(`${number(folded.length)} equal lines`, () => folded.flatMap(linePair)));
      at = end;
    } else if (++shown > mostLines && !unfoldsAll) {
      const rest = pairs.slice(at);
      cells.push(moreButton(`${number(rest.length)} more lines`, () => rest.flatMap(linePair)));
      break;
    } else {
      cells.push(...linePair(pairs[at++]));
    }
  }
  return cells;
}

const noteOf = (note) => note ? [make('span', {className: 'note'}, note)] : [];

// The value of a change, old beside new.
function changedCells({change, member}) {
  const name = member.split(' / ').pop();
  if (hasMembers(change.old) || hasMembers(change.new)) {
    return lineCells(linePairs(outlineOf(change.old, name), outlineOf(change.new, name)));
  }
  const [a, b] = [singleText(change.old, name), singleText(change.new, name)];
  const lines = /[\r\n]/.test(a.text) || /[\r\n]/.test(b.text);
  const cells = lines ? lineCells(linePairs(a.text, b.text)) : linePair({a, b, differs: true});
  const isBare = a.note === b.note && !lines;
  cells[0].append(...noteOf(lines && a.text ? '' : a.note));
  cells[1]?.append?.(...noteOf(lines && b.text ? '' : b.note));
  if (isBare) cells[1].classList.add('bare');
  return cells;
}

// The members of a record that was added or removed, the empty ones told by their number.
function recordLines(value) {
  let empty = 0;
  const line = ({depth, name, text, note}) => {
    const term = make('dt', {}, name);
    term.style.paddingInlineStart = `${depth}em`;
    return [term, make('dd', {}, ...seenUpTo(text, mostCharacters), ...noteOf(note))];
  };
  const filled = linesOfValue(value, unfoldsAll ? undefined : () => ++empty);
  const list = make('dl', {}, ...filled.slice(0, mostLines).flatMap(line));
  if (filled.length > mostLines) {
    const rest = filled.slice(mostLines);
    list.append(moreButton(`${number(rest.length)} more members`, () => rest.flatMap(line)));
  }
  if (empty > 0) {
    const button = moreButton(`and ${counted(empty, 'empty member')}`, () => {
      list.replaceChildren(...linesOfValue(value).flatMap(line));
      return [];
    });
    return [list, button];
  }
  return [list];
}

// The first filled texts of a record, on one line; its key stands in front of it already.
function preview(value, key) {
  if (!hasMembers(value)) return singleText(value, '').text || 'empty';
  const told = linesOfValue(value, () => {}).filter(({text}) => text && text !== key).slice(0, 6)
    .map(({name, text}) => `${name} ${text.slice(0, 80)}`);
  return told.join(' · ') || 'all members are empty';
}

// A whole item: of records one line, and all of it when it's unfolded.
function itemCells({change, member}, at) {
  const isAdded = change.kind === 'added';
  const value = isAdded ? change.new : change.old;
  const cell = make('div', {className: `${isAdded ? 'new' : 'old'}`});
  const other = make('div', {className: `${isAdded ? 'old' : 'new'} absent`});
  if (!hasMembers(value)) {
    const {text, note} = singleText(value, '');
    cell.append(make(isAdded ? 'ins' : 'del', {}, ...seenUpTo(text, mostCharacters)), ...noteOf(note));
  } else {
    const isOpen = isUnfolded(at);
    const button = make('button', {type: 'button', className: 'fold', 'aria-expanded': String(isOpen)});
    button.append(...seen(isOpen ? 'Fold' : preview(value, member)));
    button.dataset.fold = at;
    cell.append(button, ...(isOpen ? recordLines(value) : []));
  }
  return isAdded ? [other, cell] : [cell, other];
}

function movedCells({change}) {
  const place = (path) => path.slice(0, -1).slice(path.lastIndexOf('[') + 1);
  const [from, to] = [change.path, change.newPath].map((path) => path.endsWith(']') ? place(path) : path);
  return [make('div', {className: 'old'}, ...noteOf(`was at place ${from}`)),
    make('div', {className: 'new'}, ...noteOf(`is at place ${to}`))];
}

function crumbs(names) {
  return names.flatMap((name, at) => [
    ...(at > 0 ? [make('span', {className: 'then', 'aria-hidden': 'true'}, '/')] : []),
    make('span', {}, ...seen(name)),
  ]);
}

// The place of a change in both files, as programs know it.
function pathsOf({path, newPath}) {
  if (!path || !newPath) return path ?? newPath;
  return path === newPath ? path : `${path}\n${newPath}`;
}

// The row of a change; a change that is the first one of its item has the item's names in front.
function rowOf(at, {isFirst, position, size}) {
  const entry = entries[at];
  const {change, names, member} = entry;
  const link = make('a', {className: 'link', href: `#${linkOf(entry)}`, title: pathsOf(change)}, '#');
  link.setAttribute('aria-label', `Link to ${[...names, member].join(' / ')}`);
  const kind = make('span', {className: 'kind', title: change.kind}, kindMarks[change.kind]);
  kind.append(hiddenWord(` ${change.kind} `));
  const what = make('div', {className: 'what'}, kind, make('span', {className: 'member'}, ...seen(member)), link);
  const cells = change.kind === 'changed' ? changedCells(entry)
    : change.kind === 'moved' ? movedCells(entry) : itemCells(entry, at);
  const values = make('div', {className: 'values'}, ...cells);
  const row = make('div', {className: `change ${change.kind}`, tabIndex: -1}, what, values);
  const article = make('article', {className: 'row'}, ...(isFirst ? [make('h3', {}, ...crumbs(names))] : []), row);
  article.setAttribute('aria-posinset', position + 1);
  article.setAttribute('aria-setsize', size);
  article.dataset.number = at;
  return article;
}

// A guess at a row's height before it's made, in pixels.
function guessHeight(at, isFirst) {
  const {change} = entries[at];
  const lines = (value) => typeof value === 'string' ? Math.ceil(value.length / 60) : 1;
  const most = change.kind === 'changed' ? Math.min(Math.max(1, lines(change.old), lines(change.new)), 40) : 1;
  return 15 + 20 * most + (isFirst ? 44 : 0);
}
