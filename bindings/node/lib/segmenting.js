'use strict';

const { valueOf, wrongType } = require('./errors.js');
const { keysOf, keysOfEach, matchesOf, matchesOfEach } = require('./match.js');
const native = require('./native.js');
const { Opened } = require('./opened.js');

// Many texts as an array. A single string is an iterable of strings, too, but is not meant as one.
function listOf(texts) {
  if (typeof texts === 'string') throw wrongType('many texts are expected, not one');
  return Array.from(texts);
}

// The arguments of a native function that describe a search.
const searchOf = (opened, mode, options) =>
  [Opened.imageOf(opened), mode, options, Opened.segmenterOf(opened)];

// The methods of a way to search: for one text and for many, at once and later. `ofOne` and
// `ofEach` make the result from the text or texts and what the native function found.
function methodsOf(name, mode, ofOne, ofEach, adjust = (options) => options) {
  const argumentsOf = (self, texts, options) => [...searchOf(self, mode, adjust(options)), texts];
  return {
    [name](text, options) {
      return ofOne(text, valueOf(native.find(...argumentsOf(this, [text], options))));
    },
    async [`${name}Async`](text, options) {
      return ofOne(text, valueOf(await native.findLater(...argumentsOf(this, [text], options))));
    },
    [`${name}Each`](given, options) {
      const texts = listOf(given);
      return ofEach(texts, valueOf(native.find(...argumentsOf(this, texts, options))));
    },
    async [`${name}EachAsync`](given, options) {
      const texts = listOf(given);
      const found = await native.findLater(...argumentsOf(this, texts, options));
      return ofEach(texts, valueOf(found));
    },
  };
}

function define(Class, methods) {
  for (const [name, value] of Object.entries(methods)) {
    Object.defineProperty(Class.prototype, name, { value, writable: true, configurable: true });
  }
}

const NUMBERS_OF_EDIT = 4;

function replacementOf({ text, edits }) {
  const list = new Array(edits.length / NUMBERS_OF_EDIT);
  for (let i = 0, next = 0; i < list.length; i++) {
    list[i] = {
      start: edits[next++], end: edits[next++], resultStart: edits[next++], resultEnd: edits[next++],
    };
  }
  return { text, edits: list };
}

// What can be done with the segments of a text, however they are chosen.
class Segmenting extends Opened {
  replace(text, options) {
    return this.replaceEach([text], options)[0];
  }

  async replaceAsync(text, options) {
    return (await this.replaceEachAsync([text], options))[0];
  }

  replaceEach(texts, options) {
    return valueOf(native.replace(...searchOf(this, 'segment', options), listOf(texts)));
  }

  async replaceEachAsync(texts, options) {
    const search = searchOf(this, 'segment', options);
    return valueOf(await native.replaceLater(...search, listOf(texts)));
  }

  replaceWithEdits(text, options) {
    const search = searchOf(this, 'segment', options);
    return replacementOf(valueOf(native.replaceWithEdits(...search, text)));
  }

  async replaceWithEditsAsync(text, options) {
    const search = searchOf(this, 'segment', options);
    return replacementOf(valueOf(await native.replaceWithEditsLater(...search, text)));
  }
}

const withPieces = (options) => ({ ...options, unknownPieces: true });

define(Segmenting, methodsOf('segment', 'segment', matchesOf, matchesOfEach));
define(Segmenting, methodsOf('words', 'segment', keysOf, keysOfEach, withPieces));

module.exports = { Segmenting, define, listOf, methodsOf, searchOf };
