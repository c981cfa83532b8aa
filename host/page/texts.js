// What differs between two texts: by lines, and in lines by words. The work is bounded: texts that have little in
// common end as one difference.

const mostSteps = 300;    // of insertions and removals that are looked for
const mostPieces = 40000; // of both texts, beyond their common begin and end

// The way of fewest insertions and removals between two sequences (Myers), as the pairs of equal elements, or null
// when it has more than mostSteps of them.
function equalPairs(a, b) {
  const reached = [];
  let furthest = new Int32Array([0, 0]);
  for (let steps = 0; steps <= Math.min(mostSteps, a.length + b.length); ++steps) {
    const now = new Int32Array(2 * steps + 3);
    for (let diagonal = -steps; diagonal <= steps; diagonal += 2) {
      const down = diagonal === -steps ||
          (diagonal !== steps && furthest[diagonal + steps - 1] < furthest[diagonal + steps + 1]);
      let x = steps === 0 ? 0 : down ? furthest[diagonal + steps + 1] : furthest[diagonal + steps - 1] + 1;
      while (x < a.length && x - diagonal < b.length && a[x] === b[x - diagonal]) ++x;
      // Of the next step's view: diagonal -steps-1 stands at 0.
      now[diagonal + steps + 1] = x;
      if (x >= a.length && x - diagonal >= b.length) return wayBack(a, b, reached, diagonal, steps);
    }
    reached.push(now);
    furthest = now;
  }
  return null;
}

function wayBack(a, b, reached, lastDiagonal, lastSteps) {
  const pairs = [];
  let x = a.length;
  let diagonal = lastDiagonal;
  for (let steps = lastSteps; steps >= 0; --steps) {
    let start = 0;
    let next = diagonal;
    if (steps > 0) {
      const before = reached[steps - 1];
      const down = diagonal === -steps ||
          (diagonal !== steps && before[diagonal + steps - 1] < before[diagonal + steps + 1]);
      start = down ? before[diagonal + steps + 1] : before[diagonal + steps - 1] + 1;
      next = down ? diagonal + 1 : diagonal - 1;
    }
    while (x > start) {
      --x;
      pairs.push([x, x - diagonal]);
    }
    x = steps > 0 && next > diagonal ? start : start - 1;
    diagonal = next;
  }
  return pairs.reverse();
}

// Where two sequences differ: {a: [begin, end], b: [begin, end]}, in order.
function differingRanges(a, b) {
  let begin = 0;
  while (begin < a.length && begin < b.length && a[begin] === b[begin]) ++begin;
  let end = 0;
  while (end < a.length - begin && end < b.length - begin && a[a.length - 1 - end] === b[b.length - 1 - end]) ++end;
  const middleA = a.slice(begin, a.length - end);
  const middleB = b.slice(begin, b.length - end);
  if (middleA.length === 0 && middleB.length === 0) return [];
  const bounded = middleA.length + middleB.length <= mostPieces && middleA.length > 0 && middleB.length > 0;
  const pairs = (bounded && equalPairs(middleA, middleB)) || [];
  const ranges = [];
  let [atA, atB] = [0, 0];
  for (const [x, y] of [...pairs, [middleA.length, middleB.length]]) {
    if (x > atA || y > atB) ranges.push({a: [begin + atA, begin + x], b: [begin + atB, begin + y]});
    [atA, atB] = [x + 1, y + 1];
  }
  return ranges;
}

// Words, runs of blanks, single other characters; writing without blanks goes by characters.
const pieceForm = /[\p{Script=Han}\p{Script=Hiragana}\p{Script=Katakana}]|[\p{L}\p{N}\p{M}_]+|\s+|./gsu;
const piecesOf = (text) => text.match(pieceForm) ?? [];

// Two differences with nothing but a blank between them read as one.
function joined(ranges, pieces) {
  const all = [];
  for (const range of ranges) {
    const last = all[all.length - 1];
    if (last && range.a[0] - last.a[1] === 1 && /^\s+$/.test(pieces[last.a[1]])) {
      last.a[1] = range.a[1];
      last.b[1] = range.b[1];
    } else {
      all.push(range);
    }
  }
  return all;
}

// Both texts in parts, [text, whether it differs]. Where less than a third is equal all of it differs: single words
// that happen to be equal say nothing.
function wordParts(oldText, newText) {
  const a = piecesOf(oldText);
  const b = piecesOf(newText);
  const ranges = joined(differingRanges(a, b), a);
  const partsOf = (pieces, side) => {
    const parts = [];
    let at = 0;
    const put = (to, differs) => {
      if (to > at) parts.push([pieces.slice(at, to).join(''), differs]);
      at = Math.max(at, to);
    };
    for (const range of ranges) {
      put(range[side][0], false);
      put(range[side][1], true);
    }
    put(pieces.length, false);
    return parts;
  };
  const sides = {a: partsOf(a, 'a'), b: partsOf(b, 'b')};
  const equal = sides.a.reduce((sum, [text, differs]) => sum + (differs ? 0 : text.length), 0);
  if (equal * 3 >= Math.max(oldText.length, newText.length)) return sides;
  const whole = (text) => text === '' ? [] : [[text, true]];
  return {a: whole(oldText), b: whole(newText)};
}

const lineForm = /[^\r\n]*(?:\r\n|\r|\n)|[^\r\n]+$/g;

// Of each line its text and its end; the last one may have none.
const linesOf = (text) => (text.match(lineForm) ?? []).map((line) => {
  const end = /(?:\r\n|\r|\n)?$/.exec(line)[0];
  return {text: line.slice(0, line.length - end.length), end};
});

// Both texts line by line: {a, b, differs, endsDiffer}, null for a line that only the other has. That a line has an end
// at all says nothing where another line follows.
function linePairs(oldText, newText) {
  const a = linesOf(oldText);
  const b = linesOf(newText);
  const pairs = [];
  let [atA, atB] = [0, 0];
  const endsDiffer = (lineA, lineB) => lineA.end !== lineB.end &&
      ((lineA.end !== '' && lineB.end !== '') || (lineA.end ? lineA === a[a.length - 1] : lineB === b[b.length - 1]));
  const put = (lineA, lineB, differs) => {
    const ends = lineA !== null && lineB !== null && endsDiffer(lineA, lineB);
    pairs.push({a: lineA, b: lineB, differs: differs || ends, endsDiffer: ends});
  };
  const putEqual = (end) => {
    while (atA < end) put(a[atA++], b[atB++], false);
  };
  for (const range of differingRanges(a.map(({text}) => text), b.map(({text}) => text))) {
    putEqual(range.a[0]);
    while (atA < range.a[1] || atB < range.b[1]) {
      put(atA < range.a[1] ? a[atA++] : null, atB < range.b[1] ? b[atB++] : null, true);
    }
  }
  putEqual(a.length);
  return pairs;
}
