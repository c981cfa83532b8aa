// The page around the list: what was compared, counts, filters, contents, ways through the changes, print.

const byId = (id) => document.getElementById(id);
const mostPrinted = 5000;  // changes
const mostNodes = 200;     // of the contents, made at once

let shown = [];      // the numbers of the changes that pass the filter
let current = -1;    // the number of the change that was gone to last

const isFirstOfGroup = (position) =>
  position === 0 || entries[shown[position - 1]].group !== entries[shown[position]].group;

const list = new RowList(
  byId('list'),
  (position) => {
    const row = rowOf(shown[position], {isFirst: isFirstOfGroup(position), position, size: shown.length});
    row.classList.toggle('current', shown[position] === current);
    return row;
  },
  (position) => guessHeight(shown[position], isFirstOfGroup(position)),
  (hasEarlier, hasLater) => {
    byId('earlier').hidden = !hasEarlier;
    byId('later').hidden = !hasLater;
  });

// What stands in front of the rows whatever is scrolled.
const covered = () => getComputedStyle(byId('bar')).position === 'sticky' ? byId('bar').offsetHeight + 8 : 8;

function momentText(moment) { return moment.replace('T', ' ').replace('Z', ' UTC'); }

function showFiles() {
  byId('title').replaceChildren(...seen(info.old.name), make('span', {className: 'then'}, ' → '), ...seen(info.new.name));
  byId('compared').textContent = `Compared ${momentText(info.compared)} by vtrout ${info.version}`;
  for (const [word, file] of [['Old', info.old], ['New', info.new]]) {
    const cell = (heading, ...content) => make('td', {'data-heading': heading}, ...content);
    byId('files').append(make('tr', {}, make('th', {scope: 'row'}, word), cell('File', ...seen(file.name)),
      cell('Bytes', number(file.size)), cell('Last changed', momentText(file.lastChanged)),
      cell('SHA-256', make('code', {}, file.sha256))));
  }
  const base = (name) => name.slice(name.lastIndexOf('/') + 1);
  byId('old-name').append('Old ', make('span', {}, ...seen(base(info.old.name))));
  byId('new-name').append('New ', make('span', {}, ...seen(base(info.new.name))));
}

// A bar whose parts are as long as the counts of their kinds; `most` is as long as the bar can be.
function barOf(counts, most) {
  const bar = make('div', {className: 'counts-bar', 'aria-hidden': 'true'});
  for (const kind of kinds) {
    if (!counts[kind]) continue;
    const part = make('span', {className: kind});
    part.style.width = `${100 * counts[kind] / most}%`;
    bar.append(part);
  }
  return bar;
}

function showCounts() {
  const {counts} = differences;
  const all = kinds.reduce((sum, kind) => sum + counts[kind], 0);
  byId('verdict').textContent = all ? `${counted(all, 'difference')}` : 'The documents are the same';
  for (const kind of all ? kinds : []) {
    byId('totals').append(make('span', {className: `total ${kind}`, 'data-count': counts[kind]},
      make('span', {className: 'kind', 'aria-hidden': 'true'}, kindMarks[kind]), make('b', {}, number(counts[kind])), ` ${kind}`));
  }
  if (bookkeepingSize > 0) {
    byId('totals').append(make('span', {className: 'total books'}, `${number(bookkeepingSize)} of them bookkeeping, hidden at first`));
  }
  const bySection = countsBySection();
  const most = Math.max(1, ...bySection.map(([, {all: size}]) => size));
  for (const [tag, sizes] of bySection) {
    const button = make('button', {type: 'button', className: 'section', 'aria-pressed': 'false'}, titleOf(tag));
    button.addEventListener('click', () => {
      filter.section = filter.section === tag ? '' : tag;
      refresh();
    });
    byId('sections').append(make('tr', {'data-section': tag}, make('th', {scope: 'row'}, button), make('td', {}, barOf(sizes, most)),
      ...kinds.map((kind) => make('td', {className: sizes[kind] ? kind : 'zero', 'data-heading': kind}, number(sizes[kind])))));
  }
  byId('sections').parentElement.hidden = bySection.length === 0;
  const met = new Set(bySection.map(([tag]) => tag));
  const equal = info.sections.filter(({tag}) => !met.has(tag)).map(({title}) => title);
  byId('equal-sections').textContent = equal.length && all ? `Nothing differs in: ${equal.join(', ')}` : '';
}

function showHeaderChanges() {
  const changes = differences.header;
  if (changes.length === 0) return;
  byId('header-changes').hidden = false;
  byId('header-changes').firstElementChild.textContent =
    `${counted(changes.length, 'change')} in the header of the file, which ${changes.length === 1 ? 'doesn\'t' : 'don\'t'} count`;
  for (const change of changes) {
    const entry = {change, member: (change.path ?? change.newPath).split('/').pop()};
    byId('header-rows').append(make('div', {className: 'change changed'},
      make('div', {className: 'what'}, make('span', {className: 'member'}, entry.member)),
      make('div', {className: 'values'}, ...changedCells(entry))));
  }
}

function makeFilters() {
  for (const kind of kinds) {
    const button = make('button', {type: 'button', className: kind, 'data-kind': kind},
      make('span', {className: 'kind', 'aria-hidden': 'true'}, kindMarks[kind]), ` ${kind}`);
    button.addEventListener('click', () => {
      if (!filter.kinds.delete(kind)) filter.kinds.add(kind);
      refresh();
    });
    byId('kinds').append(button);
  }
  byId('section').append(make('option', {value: ''}, 'All sections'),
    ...countsBySection().map(([tag]) => make('option', {value: tag}, titleOf(tag))));
  byId('section').addEventListener('change', () => {
    filter.section = byId('section').value;
    refresh();
  });
  byId('bookkeeping-label').textContent = `Bookkeeping (${number(bookkeepingSize)})`;
  byId('bookkeeping').parentElement.title = 'Unused slots, and the members Max, Current and Spare';
  byId('bookkeeping').parentElement.hidden = bookkeepingSize === 0;
  byId('bookkeeping').addEventListener('change', () => {
    filter.hasBookkeeping = byId('bookkeeping').checked;
    refresh();
  });
  byId('unfold').addEventListener('change', () => {
    unfoldsAll = byId('unfold').checked;
    unfolded.clear();
    list.renew();
  });
  let waiting = 0;
  byId('search').addEventListener('input', () => {
    clearTimeout(waiting);
    waiting = setTimeout(() => {
      filter.search = byId('search').value;
      refresh();
    }, 100);
  });
}

function clearFilter() {
  filter.kinds = new Set(kinds);
  filter.section = filter.search = byId('search').value = '';
  refresh();
}

// What is said in place of rows when there are none.
function showNone() {
  const none = byId('none');
  none.hidden = shown.length > 0;
  if (shown.length > 0) return;
  if (entries.length === 0) {
    none.textContent = 'Nothing differs.';
  } else if (!filter.hasBookkeeping && bookkeepingSize === entries.length) {
    none.textContent = 'Only bookkeeping differs. The switch above shows it.';
  } else {
    const all = make('button', {type: 'button'}, 'Show all');
    all.addEventListener('click', clearFilter);
    none.replaceChildren('No change passes the filter. ', all);
  }
}

// Shows what passes the filter.
function refresh() {
  shown = filtered();
  for (const button of byId('kinds').children) button.setAttribute('aria-pressed', filter.kinds.has(button.dataset.kind));
  for (const row of byId('sections').children) {
    const isChosen = row.dataset.section === filter.section;
    row.classList.toggle('chosen', isChosen);
    row.querySelector('button').setAttribute('aria-pressed', isChosen);
  }
  byId('section').value = filter.section;
  byId('bookkeeping').checked = filter.hasBookkeeping;
  const most = entries.length - (filter.hasBookkeeping ? 0 : bookkeepingSize);
  byId('shown').textContent = (shown.length < most ? `${number(shown.length)} of ` : '') + counted(most, 'change');
  showNone();
  list.setSize(shown.length);
  const start = byId('changes').getBoundingClientRect().top + window.scrollY - covered();
  if (window.scrollY > start) window.scrollTo(0, start);
  list.update();
  showTree();
}

function nodeElement(node) {
  const item = make('li');
  const name = make('a', {href: `#${linkOf(entries[node.first])}`}, ...seen(node.name));
  const size = make('span', {className: 'size'}, number(node.size));
  if (node.nodes.size === 0) {
    item.append(make('span', {className: 'leaf'}), name, size);
    return item;
  }
  const button = make('button', {type: 'button', className: 'branch', 'aria-expanded': 'false'});
  button.setAttribute('aria-label', `Items of ${node.name}`);
  button.addEventListener('click', () => {
    const isOpen = button.getAttribute('aria-expanded') === 'true';
    button.setAttribute('aria-expanded', String(!isOpen));
    if (isOpen) item.lastElementChild.remove();
    else item.append(nodeList(node));
  });
  item.append(button, name, size);
  return item;
}

// The nodes within a node; more of them when they are asked for.
function nodeList(node) {
  const all = [...node.nodes.values()];
  const items = make('ul');
  const show = (begin) => {
    items.append(...all.slice(begin, begin + mostNodes).map(nodeElement));
    const left = all.length - begin - mostNodes;
    if (left <= 0) return;
    const button = make('button', {type: 'button', className: 'more'}, `… ${number(left)} more`);
    button.addEventListener('click', () => {
      button.parentElement.remove();
      show(begin + mostNodes);
    });
    items.append(make('li', {}, button));
  };
  show(0);
  return items;
}

function showTree() {
  const root = treeOf(shown);
  byId('tree').replaceChildren(nodeList(root));
  // What is short is open at once.
  if (root.nodes.size > 0 && shown.length <= 60) {
    for (const button of byId('tree').querySelectorAll('.branch')) button.click();
  }
}

// Shows a change, whatever the filter is.
function goTo(at) {
  const entry = entries[at];
  if (entry.isBookkeeping && !filter.hasBookkeeping) {
    filter.hasBookkeeping = true;
    refresh();
  }
  if (!shown.includes(at)) clearFilter();
  const row = list.goTo(shown.indexOf(at), covered());
  setCurrent(row);
  row.querySelector('.change').focus({preventScroll: true});
}

function setCurrent(row) {
  current = Number(row.dataset.number);
  for (const made of list.rows.children) made.classList.toggle('current', made === row);
}

function step(by) {
  if (shown.length === 0) return;
  const at = current < 0 ? -1 : shown.indexOf(current);
  const next = at < 0 ? list.firstSeen(covered()) + (by > 0 ? 0 : -1) : at + by;
  goTo(shown[Math.min(Math.max(next, 0), shown.length - 1)]);
}

function goToHash() {
  let place = window.location.hash.slice(1);
  try {
    place = decodeURIComponent(place);
  } catch {
    // It stays as it is.
  }
  const at = place === '' || byId(place) ? -1 : entryAt(place);
  if (at >= 0) goTo(at);
  else if (place !== '' && !byId(place)) tell('No change stands at this place.');
}

let telling = 0;

// Says something for a short while.
function tell(words) {
  byId('told').textContent = words;
  clearTimeout(telling);
  telling = setTimeout(() => byId('told').replaceChildren(), 2500);
}

function listenToRows() {
  onResize = () => list.update();
  byId('list').addEventListener('click', async (event) => {
    const row = event.target.closest('.row');
    if (row) setCurrent(row);
    const fold = event.target.closest('[data-fold]');
    if (fold) toggle(Number(fold.dataset.fold));
    if (!event.target.closest('a.link') || event.ctrlKey || event.metaKey || event.shiftKey) return;
    try {
      await navigator.clipboard.writeText(new URL(event.target.closest('a').hash, window.location.href).href);
      tell('The link is copied.');
    } catch {
      tell('The link stands in the address line.');
    }
  });
  byId('earlier').addEventListener('click', () => goTo(shown[list.begin - 1]));
  byId('later').addEventListener('click', () => goTo(shown[list.end]));
}

function toggle(at) {
  if (!unfolded.delete(at)) unfolded.add(at);
  list.renew(shown.indexOf(at));
  byId('list').querySelector(`[data-fold="${at}"]`)?.focus({preventScroll: true});
}

function listenToKeys() {
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const isTyping = event.target.matches('input[type=search], select');
    if (event.key === 'Escape' && event.target === byId('search')) {
      byId('search').value = filter.search = '';
      byId('search').blur();
      refresh();
    } else if (isTyping) {
      return;
    } else if (event.key === '/') {
      byId('search').focus();
      byId('search').select();
    } else if (event.key === 'n' || event.key === 'p') {
      step(event.key === 'n' ? 1 : -1);
    } else if (event.key === 'Enter' && event.target.matches('.change')) {
      event.target.querySelector('.fold, .more')?.click();
    } else {
      return;
    }
    event.preventDefault();
  });
  byId('next').addEventListener('click', () => step(1));
  byId('previous').addEventListener('click', () => step(-1));
}

// Dark or light as the system has it, until the reader chooses.
function makeTheme() {
  const dark = window.matchMedia('(prefers-color-scheme: dark)');
  let chosen = '';
  const apply = () => {
    const theme = chosen || (dark.matches ? 'dark' : 'light');
    document.documentElement.dataset.theme = theme;
    byId('theme').textContent = theme === 'dark' ? 'Light' : 'Dark';
    byId('theme').setAttribute('aria-label', `Switch to ${theme === 'dark' ? 'light' : 'dark'} colours`);
  };
  byId('theme').addEventListener('click', () => {
    chosen = document.documentElement.dataset.theme === 'dark' ? 'light' : 'dark';
    apply();
  });
  dark.addEventListener('change', apply);
  apply();
}

// Paper has all rows that are shown, up to a number that a printer can bear.
function listenToPrint() {
  window.addEventListener('beforeprint', () => {
    const printed = Math.min(shown.length, mostPrinted);
    byId('printed').textContent = printed < shown.length
      ? `Printed are the first ${number(printed)} of ${counted(shown.length, 'change')}; filters make the choice smaller.`
      : `Printed: ${byId('shown').textContent}.`;
    list.showForPaper(printed);
  });
  window.addEventListener('afterprint', () => list.renew());
}

function start() {
  document.body.classList.remove('waiting');
  makeTheme();
  showFiles();
  showCounts();
  showHeaderChanges();
  makeFilters();
  byId('contents').open = window.innerWidth > 900;
  refresh();
  listenToRows();
  listenToKeys();
  listenToPrint();
  // The contents stand below the bar, which has two lines on some screens.
  const showBar = () => document.documentElement.style.setProperty('--bar', `${covered()}px`);
  showBar();
  let width = window.innerWidth;
  let isAsked = false;
  const update = () => {
    if (isAsked) return;
    isAsked = true;
    requestAnimationFrame(() => {
      isAsked = false;
      if (window.innerWidth === width || list.isOnPaper) return list.update();
      width = window.innerWidth;
      showBar();
      list.renew();
    });
  };
  window.addEventListener('scroll', update, {passive: true});
  window.addEventListener('resize', update);
  window.addEventListener('hashchange', goToHash);
  goToHash();
}

start();
