// What was compared, and how much differs.

function momentText(moment) { return moment.replace('T', ' ').replace('Z', ' UTC'); }

function showFiles() {
  const arrow = make('span', {className: 'then'}, ' → ');
  byId('title').replaceChildren(...seen(info.old.name), arrow, ...seen(info.new.name));
  byId('compared').textContent = `Compared ${momentText(info.compared)} by vtrout ${info.version}`;
  const patterns = (words, all) => all.length ? `${words} ${all.join(', ')}` : '';
  const chosen = [patterns('only', info.only), patterns('without', info.ignored)].filter(Boolean).join('; ');
  byId('chosen').textContent = chosen && `A part of the documents was compared: ${chosen}`;
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
  const isWhole = info.only.length + info.ignored.length === 0;
  const all = kinds.reduce((sum, kind) => sum + counts[kind], 0);
  const none = isWhole ? 'The documents are the same' : 'No differences';
  byId('verdict').textContent = all ? counted(all, 'difference') : none;
  for (const kind of all ? kinds : []) {
    byId('totals').append(make('span', {className: `total ${kind}`, 'data-count': counts[kind]},
      make('span', {className: 'kind', 'aria-hidden': 'true'}, kindMarks[kind]),
      make('b', {}, number(counts[kind])), ` ${kind}`));
  }
  if (bookkeepingSize > 0) {
    byId('totals').append(make('span', {className: 'total books'},
      `${number(bookkeepingSize)} of them bookkeeping, hidden at first`));
  }
  const bySection = countsBySection();
  const most = Math.max(1, ...bySection.map(([, {all: size}]) => size));
  for (const [tag, sizes] of bySection) {
    const button = make('button', {type: 'button', className: 'section', 'aria-pressed': 'false'}, titleOf(tag));
    button.addEventListener('click', () => {
      filter.section = filter.section === tag ? '' : tag;
      refresh();
    });
    byId('sections').append(make('tr', {'data-section': tag},
      make('th', {scope: 'row'}, button), make('td', {}, barOf(sizes, most)),
      ...kinds.map((kind) => make('td', {className: sizes[kind] ? kind : 'zero'}, number(sizes[kind])))));
  }
  byId('sections').parentElement.hidden = bySection.length === 0;
  const met = new Set(bySection.map(([tag]) => tag));
  const equal = info.sections.filter(({tag}) => !met.has(tag)).map(({title}) => title);
  byId('equal-sections').textContent = equal.length && all && isWhole ? `Nothing differs in: ${equal.join(', ')}` : '';
}

function showHeaderChanges() {
  const changes = differences.header;
  if (changes.length === 0) return;
  byId('header-changes').hidden = false;
  byId('header-changes').firstElementChild.textContent =
    `${counted(changes.length, 'change')} in the header of the file; what changes there doesn't count`;
  for (const change of changes) {
    const entry = {change, member: (change.path ?? change.newPath).split('/').pop()};
    byId('header-rows').append(make('div', {className: 'change changed'},
      make('div', {className: 'what'}, make('span', {className: 'member'}, entry.member)),
      make('div', {className: 'values'}, ...changedCells(entry))));
  }
}
