// A list of which only the rows near the window are in the document. Heights are guessed until a row was made and
// measured; what the reader sees stays where it is when those above it turn out to be of another height.

const rowsInBlock = 256;
const beyondWindow = 500;       // pixels above and below the window for which rows are made
const mostPixels = 12_000_000;  // of one part: browsers end a page at 17 million

class RowList {
  // makeRow(position) makes the element, guess(position) tells its height.
  constructor(element, makeRow, guess, onPart) {
    this.element = element;
    this.makeRow = makeRow;
    this.guess = guess;
    this.onPart = onPart;
    this.rows = make('div', {className: 'rows'});
    this.rows.setAttribute('role', 'presentation');
    element.append(this.rows);
    this.setSize(0);
  }

  // Begins anew with so many rows.
  setSize(size) {
    this.size = size;
    this.made = new Map();
    this.rows.replaceChildren();
    this.forgetHeights();
    this.setPart(0);
  }

  forgetHeights() {
    this.heights = Float64Array.from({length: this.size}, (_, position) => this.guess(position));
    this.blocks = new Float64Array(Math.ceil(this.size / rowsInBlock));
    this.parts = [0];
    let pixels = 0;
    this.heights.forEach((height, position) => {
      this.blocks[Math.floor(position / rowsInBlock)] += height;
      pixels += height;
      if (pixels > mostPixels) {
        this.parts.push(position);
        pixels = height;
      }
    });
    this.parts.push(this.size);
  }

  setPart(part) {
    [this.begin, this.end] = [this.parts[part], this.parts[part + 1]];
    this.onPart(part > 0, part + 2 < this.parts.length);
  }

  // Pixels in front of a row, from the first of all.
  pixelsTo(position) {
    const block = Math.floor(position / rowsInBlock);
    let pixels = 0;
    for (let at = 0; at < block; ++at) pixels += this.blocks[at];
    for (let at = block * rowsInBlock; at < position; ++at) pixels += this.heights[at];
    return pixels;
  }

  // Pixels in front of a row of this part.
  offset(position) { return this.pixelsTo(position) - this.pixelsTo(this.begin); }

  // The row of this part at so many pixels.
  positionAt(pixels) {
    let left = pixels + this.pixelsTo(this.begin);
    let block = 0;
    while (block + 1 < this.blocks.length && left >= this.blocks[block]) left -= this.blocks[block++];
    let position = block * rowsInBlock;
    while (position + 1 < this.size && left >= this.heights[position]) left -= this.heights[position++];
    return Math.min(Math.max(position, this.begin), Math.max(this.end - 1, this.begin));
  }

  top() { return this.element.getBoundingClientRect().top + window.scrollY; }

  // The first row in the window, and how far its top is above the window's; none while the list begins below that.
  anchor() {
    const seen = window.scrollY - this.top();
    const position = this.positionAt(seen);
    return {position, above: seen - this.offset(position), holds: seen > 0 && this.size > 0};
  }

  // Makes the rows near the window and takes the others out. The anchor stays where it is.
  update(anchor = this.anchor()) {
    if (isOnPaper) return;
    this.showHeight();
    if (this.size === 0) return;
    for (let tries = 0; tries < 5; ++tries) {
      const shift = this.offset(anchor.position) + anchor.above - (window.scrollY - this.top());
      if (anchor.holds && Math.abs(shift) >= 1) window.scrollBy(0, shift);
      const from = window.scrollY - this.top();
      this.place(this.positionAt(from - beyondWindow), this.positionAt(from + window.innerHeight + beyondWindow));
      const isChanged = this.measure();
      this.showHeight();
      this.rows.style.transform = `translateY(${this.offset(this.first)}px)`;
      if (!isChanged) return;
    }
  }

  showHeight() {
    this.element.style.height = `${this.size > 0 ? this.offset(this.end) : 0}px`;
  }

  place(first, last) {
    for (const [position, row] of this.made) {
      if (position >= first && position <= last) continue;
      row.remove();
      this.made.delete(position);
    }
    let next = this.rows.firstChild;
    for (let position = first; position <= last; ++position) {
      let row = this.made.get(position);
      if (row === next && row) {
        next = row.nextSibling;
        continue;
      }
      if (!row) this.made.set(position, row = this.makeRow(position));
      this.rows.insertBefore(row, next);
    }
    this.first = first;
  }

  measure() {
    let isChanged = false;
    for (const [position, row] of this.made) {
      const {height} = row.getBoundingClientRect();
      const more = height - this.heights[position];
      if (Math.abs(more) < 0.5) continue;
      this.heights[position] = height;
      this.blocks[Math.floor(position / rowsInBlock)] += more;
      isChanged = true;
    }
    return isChanged;
  }

  // Makes these rows anew, or all of them: their content or the list's width is another one.
  renew(position) {
    const anchor = this.anchor();
    if (position === undefined) {
      this.made.clear();
      this.rows.replaceChildren();
      this.forgetHeights();
      this.setPart(Math.max(this.partOf(anchor.position), 0));
    } else if (this.made.has(position)) {
      this.made.get(position).remove();
      this.made.delete(position);
    }
    this.update(anchor);
  }

  partOf(position) {
    return this.parts.findIndex((begin, part) => position >= begin && position < this.parts[part + 1]);
  }

  // Shows so many of the first rows, all at once, until they are made anew.
  showFirst(count) {
    this.rows.replaceChildren(...Array.from({length: count}, (_, position) => this.makeRow(position)));
  }

  // Scrolls to a row, `space` pixels below the top of the window, and returns it.
  goTo(position, space) {
    if (position < this.begin || position >= this.end) this.setPart(this.partOf(position));
    for (let tries = 0; tries < 6; ++tries) {
      const before = this.offset(position);
      window.scrollTo(0, this.top() + before - space);
      this.update();
      if (Math.abs(this.offset(position) - before) < 1) break;
    }
    return this.made.get(position);
  }

  // The first row that can be seen below `space` pixels.
  firstSeen(space) { return this.positionAt(window.scrollY - this.top() + space); }
}
