'use strict';

// A tab ends each field. A field after the first that begins with ";" begins a new record.
function records(data) {
  if (!data) return [];
  const whole = data.endsWith('\t') ? data.slice(0, -1) : data;
  return whole.split('\t;').map((record) => record.split('\t'));
}

const fields = (data) => records(data)[0] ?? [];

class Match {
  constructor(start, end, key, data, image) {
    this.start = start;
    this.end = end;
    this.key = key;
    this.data = data;
    this.image = image;
  }

  get fields() {
    return fields(this.data);
  }

  get records() {
    return records(this.data);
  }
}

const NUMBERS_OF_MATCH = 3;

// Calls `make` for each match that the native function found in a text. The text's spans are those
// from `from` up to `to`.
function each(make, { spans }, from = 0, to = spans.length) {
  const list = new Array((to - from) / NUMBERS_OF_MATCH);
  for (let i = 0, next = from; i < list.length; i++) {
    list[i] = make(spans[next++], spans[next++], spans[next++]);
  }
  return list;
}

const matchesOf = (text, found, from, to) =>
  each((start, end, number) => new Match(start, end, text.slice(start, end), found.data[number],
    found.images[number]), found, from, to);

const keysOf = (text, found, from, to) =>
  each((start, end) => text.slice(start, end), found, from, to);

const ofEach = (of) => (texts, found) =>
  texts.map((text, i) => of(text, found, i ? found.ends[i - 1] : 0, found.ends[i]));

module.exports = {
  Match, fields, keysOf, keysOfEach: ofEach(keysOf), matchesOf, matchesOfEach: ofEach(matchesOf),
  records,
};
