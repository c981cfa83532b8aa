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
    this.part = part;
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

  // Makes the rows near the window and takes the others out.
  update() {
    if (isOnPaper) return;
    if (this.size === 0) {
      this.element.style.height = '0px';
      return;
    }
    const seen = window.scrollY - this.top();
    const anchor = this.positionAt(seen);
    const below = seen - this.offset(anchor);
    for (let tries = 0; tries < 5; ++tries) {
      const from = window.scrollY - this.top();
      this.place(this.positionAt(from - beyondWindow), this.positionAt(from + window.innerHeight + beyondWindow));
      const isChanged = this.measure();
      this.element.style.height = `${this.offset(this.end)}px`;
      this.rows.style.transform = `translateY(${this.offset(this.first)}px)`;
      if (!isChanged) return;
      const shift = this.offset(anchor) + below - from;
      if (seen > 0 && Math.abs(shift) >= 1) window.scrollBy(0, shift);
    }
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
    if (position === undefined) {
      const [part, at] = [this.part, this.begin];
      this.made.clear();
      this.rows.replaceChildren();
      this.forgetHeights();
      this.setPart(Math.min(part, this.parts.length - 2));
      if (this.begin !== at) this.setPart(this.partOf(at));
    } else if (this.made.has(position)) {
      this.made.get(position).remove();
      this.made.delete(position);
    }
    this.update();
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
