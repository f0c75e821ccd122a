'use strict';

const { valueOf } = require('./errors.js');
const { matchesOf, matchesOfEach } = require('./match.js');
const native = require('./native.js');
const { Opened } = require('./opened.js');
const { Segmenting, define, listOf, methodsOf, searchOf } = require('./segmenting.js');

// How many keys are asked for the first time, and at most at a time.
const FIRST_KEYS = 16;
const MOST_KEYS = 1024;

// What a dictionary and a set of them have in common.
class Searchable extends Segmenting {
  describe() {
    return valueOf(native.describe(Opened.imageOf(this)));
  }

  get(key) {
    return native.lookup(Opened.imageOf(this), key);
  }

  has(key) {
    return native.has(Opened.imageOf(this), key);
  }

  getEach(keys) {
    return native.lookupEach(Opened.imageOf(this), listOf(keys));
  }

  * entries(prefix = '') {
    const cursor = valueOf(native.openCursor(Opened.imageOf(this), prefix));
    for (let count = FIRST_KEYS; ; count = Math.min(2 * count, MOST_KEYS)) {
      const list = native.nextKeys(cursor, count);
      for (let i = 0; i < list.length; i += 2) yield [list[i], list[i + 1]];
      if (!list.length) return;
    }
  }

  * keys(prefix) {
    for (const [key] of this.entries(prefix)) yield key;
  }

  * values(prefix) {
    for (const [, data] of this.entries(prefix)) yield data;
  }

  [Symbol.iterator]() {
    return this.entries();
  }

  forEach(callback, self) {
    for (const [key, data] of this) callback.call(self, data, key, this);
  }

  test(text, options) {
    return valueOf(native.contains(...searchOf(this, 'all', options), text));
  }

  findColumns(texts, { mode = 'all', ...options } = {}) {
    return valueOf(native.findColumns(...searchOf(this, mode, options), listOf(texts)));
  }

  async findColumnsAsync(texts, { mode = 'all', ...options } = {}) {
    const search = searchOf(this, mode, options);
    return valueOf(await native.findColumnsLater(...search, listOf(texts)));
  }

  dataAt(dataNumber, image = 0) {
    return native.dataAt(Opened.imageOf(this), dataNumber, image);
  }
}

const MODES = { findAll: 'all', findLongest: 'longest', findPrefixes: 'prefixes' };

for (const [name, mode] of Object.entries(MODES)) {
  define(Searchable, methodsOf(name, mode, matchesOf, matchesOfEach));
}

module.exports = { Searchable };
