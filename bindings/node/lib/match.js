'use strict';

// A tab ends each field, and a field after the first that begins with ";" begins a record.
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

// The matches of a text, which the native function found: its spans are those from `from` to `to`.
function matchesOf(text, { spans, data, images }, from = 0, to = spans.length) {
  const matches = new Array((to - from) / NUMBERS_OF_MATCH);
  for (let i = 0, next = from; i < matches.length; i++) {
    const start = spans[next++];
    const end = spans[next++];
    const number = spans[next++];
    matches[i] = new Match(start, end, text.slice(start, end), data[number], images[number] ?? 0);
  }
  return matches;
}

function matchesOfEach(texts, found) {
  return texts.map((text, i) => matchesOf(text, found, i ? found.ends[i - 1] : 0, found.ends[i]));
}

module.exports = { Match, fields, matchesOf, matchesOfEach, records };
