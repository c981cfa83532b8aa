// The page around the list: filters, ways through the changes, print.

const mostPrinted = 5000;  // changes

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
  for (const button of byId('kinds').children) {
    button.setAttribute('aria-pressed', filter.kinds.has(button.dataset.kind));
  }
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
  showWhere();
  showTree(shown);
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

// The item of the first row that is seen, when its names are scrolled away.
function showWhere() {
  const below = window.scrollY + covered() - list.top();
  // Of a row that is nearly gone nothing is told.
  const position = list.firstSeen(covered() + 12);
  const isAway = shown.length > 0 && below > 0 && !(isFirstOfGroup(position) && list.offset(position) >= below - 12);
  byId('where').replaceChildren(...(isAway ? crumbs(entries[shown[position]].names) : []));
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

// What the rows on paper are, and which are left out.
function printedWords(printed) {
  const left = [];
  const chosen = kinds.filter((kind) => filter.kinds.has(kind));
  if (chosen.length < kinds.length) left.push(`kinds: ${chosen.join(', ') || 'none'}`);
  if (filter.section) left.push(`section: ${titleOf(filter.section)}`);
  if (filter.search) left.push(`search: ${filter.search}`);
  if (bookkeepingSize > 0 && !filter.hasBookkeeping) left.push(`without ${number(bookkeepingSize)} of bookkeeping`);
  const size = (printed < shown.length ? `the first ${number(printed)} of ` : '') + counted(shown.length, 'change');
  return `Printed: ${[size, ...left].join('; ')}.`;
}

// Paper has all rows that are shown, up to a number that a printer can bear, and items in whole.
function listenToPrint() {
  const header = byId('header-changes');
  let wasOpen = false;
  window.addEventListener('beforeprint', () => {
    if (isOnPaper) return;
    isOnPaper = true;
    wasOpen = header.open;
    header.open = true;
    const printed = Math.min(shown.length, mostPrinted);
    byId('printed').textContent = printedWords(printed);
    list.showFirst(printed);
  });
  window.addEventListener('afterprint', () => {
    isOnPaper = false;
    header.open = wasOpen;
    list.renew();
  });
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
      if (window.innerWidth === width || isOnPaper) {
        list.update();
      } else {
        width = window.innerWidth;
        showBar();
        list.renew();
      }
      showWhere();
    });
  };
  window.addEventListener('scroll', update, {passive: true});
  window.addEventListener('resize', update);
  window.addEventListener('hashchange', goToHash);
  goToHash();
}

start();
