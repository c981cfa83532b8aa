// The contents: sections and items, as links to the first change within each.

const mostNodes = 200;  // made at once

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

function showTree(numbers) {
  const root = treeOf(numbers);
  byId('tree').replaceChildren(nodeList(root));
  // What is short is open at once.
  if (root.nodes.size > 0 && numbers.length <= 60) {
    for (const button of byId('tree').querySelectorAll('.branch')) button.click();
  }
}
