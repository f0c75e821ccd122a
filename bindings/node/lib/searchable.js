'use strict';

const { valueOf } = require('./errors.js');
const { matchesOf, matchesOfEach } = require('./match.js');
const native = require('./native.js');

const CLONE_MESSAGE =
  'an open dictionary is neither cloned nor posted; open its image in the worker';

// What the dictionary and the set have in common.
class Searchable {
  #image;

  constructor(image) {
    this.#image = image;
    // A clone would read it.
    Object.defineProperty(this, 'notCloneable', {
      enumerable: true,
      get() {
        throw Object.assign(new Error(CLONE_MESSAGE), { code: 'ERR_NOT_CLONEABLE' });
      },
    });
  }

  // The native one of a dictionary that is open.
  static imageOf(dictionary) {
    if (dictionary.#image) return dictionary.#image;
    throw Object.assign(new Error('the dictionary is closed'), { code: 'closed' });
  }

  get size() {
    return this.describe().keys;
  }

  describe() {
    return valueOf(native.describe(Searchable.imageOf(this)));
  }

  get(key) {
    return native.lookup(Searchable.imageOf(this), key);
  }

  has(key) {
    return native.has(Searchable.imageOf(this), key);
  }

  getEach(keys) {
    return native.lookupEach(Searchable.imageOf(this), Array.from(keys));
  }

  * entries(prefix = '') {
    const cursor = valueOf(native.openCursor(Searchable.imageOf(this), prefix));
    for (let count = FIRST_KEYS; ; count = Math.min(2 * count, MOST_KEYS)) {
      const list = native.nextKeys(cursor, count);
      for (let i = 0; i < list.length; i += 2) yield [list[i], list[i + 1]];
      if (list.length < 2 * count) return;
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
    const image = Searchable.imageOf(this);
    return valueOf(native.contains(image, 'all', options, undefined, text));
  }

  close() {
    if (this.#image) native.close(this.#image);
    this.#image = undefined;
  }
}

// Keys that are asked for at a time, the first time and later on.
const FIRST_KEYS = 16;
const MOST_KEYS = 1024;

const MODES = { findAll: 'all', findLongest: 'longest', findPrefixes: 'prefixes', segment: 'segment' };

// The methods of a way to search: for a text and for each of many, at once and later.
function methodsOf(name, mode) {
  const argumentsOf = (self, texts, options) =>
    [Searchable.imageOf(self), mode, options, undefined, texts];
  return {
    [name](text, options) {
      return matchesOf(text, valueOf(native.find(...argumentsOf(this, [text], options))));
    },
    async [`${name}Async`](text, options) {
      return matchesOf(text, valueOf(await native.findLater(...argumentsOf(this, [text], options))));
    },
    [`${name}Each`](given, options) {
      const texts = Array.from(given);
      return matchesOfEach(texts, valueOf(native.find(...argumentsOf(this, texts, options))));
    },
    async [`${name}EachAsync`](given, options) {
      const texts = Array.from(given);
      const found = await native.findLater(...argumentsOf(this, texts, options));
      return matchesOfEach(texts, valueOf(found));
    },
  };
}

function define(Class, methods) {
  for (const [name, value] of Object.entries(methods)) {
    Object.defineProperty(Class.prototype, name, { value, writable: true, configurable: true });
  }
}

for (const [name, mode] of Object.entries(MODES)) define(Searchable, methodsOf(name, mode));
if (Symbol.dispose) Searchable.prototype[Symbol.dispose] = Searchable.prototype.close;

module.exports = { Searchable };
