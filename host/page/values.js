// Values in words: a single value as a text with a note on its type, one that has members as lines.

const variantTypes = {
  2: '16-bit', 3: '32-bit', 4: 'single', 5: 'double', 6: 'currency', 7: 'date', 8: 'text', 11: 'flag', 17: 'byte',
};
const arrayOfVariants = 0x2000;

const isObject = (value) => typeof value === 'object' && value !== null;
const has = (value, name) => Object.prototype.hasOwnProperty.call(value, name);
const isVariant = (value) => isObject(value) && has(value, 'type') &&
    Object.keys(value).every((name) => ['type', 'value', 'lower', 'items'].includes(name));
const isBytes = (value) => isObject(value) && has(value, 'hex');

// A record has no member called "lower" or "items": the names of the field lists begin with capitals.
const isArray = (value) => Array.isArray(value) || (isObject(value) && has(value, 'items') && has(value, 'lower'));

const byPairs = (hex) => hex.replace(/(..)(?=.)/g, '$1 ');

// An amount times 10,000, exactly.
function currency(text) {
  const digits = text.replace('-', '').padStart(5, '0');
  const amount = `${digits.slice(0, -4)}.${digits.slice(-4)}`.replace(/\.?0+$/, '');
  return (text.startsWith('-') ? '-' : '') + amount;
}

// Days since 30 December 1899; the fraction is the time of day.
function dateOf(days) {
  const day = Math.trunc(days);
  const moment = new Date(Date.UTC(1899, 11, 30) + day * 864e5 + Math.round(Math.abs(days - day) * 86400) * 1000);
  return Number.isNaN(moment.getTime()) ? '' : moment.toISOString().replace('T', ' ').replace('.000Z', '');
}

function variantText(value) {
  const {type} = value;
  if (type === 1) return {text: '', note: 'Null'};
  const note = variantTypes[type] ?? `type ${type}`;
  if (type === 6) return {text: currency(String(value.value)), note};
  if (type === 7 && typeof value.value === 'number') {
    return {text: String(value.value), note: `${note} ${dateOf(value.value)}`};
  }
  if (type === 8 && value.value === '') return {text: '', note: 'empty text'};
  const inner = singleText(value.value, '');
  // That a text is a text need not be said.
  return {text: inner.text, note: type === 8 ? inner.note : note};
}

// A value without members: its text, and in `note` what isn't part of it.
function singleText(value, member) {
  if (value === undefined) return {text: '', note: ''};
  if (value === null || value === '') return {text: '', note: 'empty'};
  if (isBytes(value)) {
    return {text: byPairs(value.hex), note: has(value, 'lower') ? `bytes from ${value.lower}` : 'bytes'};
  }
  if (isVariant(value)) return variantText(value);
  if (typeof value === 'string' && /^(Raw\d|Data$)/.test(member) && /^[0-9a-f]*$/.test(value)) {
    return {text: byPairs(value), note: ''};
  }
  return {text: String(value), note: ''};
}

const hasMembers = (value) => isObject(value) && !isBytes(value) && (!isVariant(value) || has(value, 'items'));

function isEmpty(value, member) {
  if (value === null || value === '' || value === 0 || value === false) return true;
  if (typeof value === 'string') return /^Raw\d/.test(member) && /^0*$/.test(value);
  if (isBytes(value) || isVariant(value)) return false;
  // An array that is there, but has no elements, isn't one that isn't there.
  if (Array.isArray(value)) return value.length > 0 && value.every((item) => isEmpty(item, member));
  return isObject(value) && !has(value, 'lower') && Object.entries(value).every(([name, item]) => isEmpty(item, name));
}

function itemsOf(value) {
  if (!isArray(value) && !isVariant(value)) {
    return Object.entries(value).map(([name, item]) => ({name, item, member: name}));
  }
  const lower = Array.isArray(value) ? 1 : value.lower ?? 1;
  const items = Array.isArray(value) ? value : value.items ?? [];
  return items.map((item, at) => ({name: `[${lower + at}]`, item, member: ''}));
}

function headOf(value) {
  if (isVariant(value)) {
    const type = variantTypes[value.type - arrayOfVariants] ?? 'variant';
    return value.items === null ? `array of ${type}, not allocated` : `array of ${type}, ${value.items.length}`;
  }
  if (!isArray(value)) return '';
  const items = Array.isArray(value) ? value : value.items;
  return `${items.length} ${items.length === 1 ? 'element' : 'elements'}` +
      (Array.isArray(value) ? '' : ` from ${value.lower}`);
}

// The lines of a value with members, {depth, name, text, note}. Empty members are left out, and their number told by
// `onEmpty`, if there is one.
function linesOfValue(value, onEmpty) {
  const lines = [];
  const put = (holder, depth) => {
    for (const {name, item, member} of itemsOf(holder)) {
      if (onEmpty && isEmpty(item, member)) {
        onEmpty();
      } else if (hasMembers(item)) {
        lines.push({depth, name, text: '', note: headOf(item)});
        put(item, depth + 1);
      } else {
        lines.push({depth, name, ...singleText(item, member)});
      }
    }
  };
  put(value, 0);
  return lines;
}

// A value with members as one text, for its lines to be compared.
function outlineOf(value, member) {
  if (!hasMembers(value)) {
    const {text, note} = singleText(value, member);
    return text || (note && `(${note})`);
  }
  const lines = linesOfValue(value).map(({depth, name, text, note}) =>
    `${'  '.repeat(depth)}${name}: ${text || (note && `(${note})`)}`);
  return [headOf(value), ...lines].filter(Boolean).join('\n');
}
