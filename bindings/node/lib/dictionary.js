'use strict';

const { build } = require('./build.js');
const { valueOf } = require('./errors.js');
const native = require('./native.js');
const { Opened } = require('./opened.js');
const { pathOf } = require('./path.js');
const { Searchable } = require('./searchable.js');
const { Segmenting } = require('./segmenting.js');

// Known to this file alone.
const OPENED = Symbol('opened');

class Dictionary extends Searchable {
  constructor(opened, image) {
    if (opened !== OPENED) throw new TypeError('dictionaries are opened by Dictionary.open');
    super(image);
  }

  static async build(source, image, options) {
    return (await build(source, { path: pathOf(image) }, options)).report;
  }

  static async buildBytes(source, options) {
    return (await build(source, { memory: true }, options)).bytes;
  }

  static async check(source, options) {
    return (await build(source, {}, options)).report;
  }

  static async of(source, options) {
    return Dictionary.fromBytesAsync(await Dictionary.buildBytes(source, options));
  }

  static open(path, { copy = false } = {}) {
    return new Dictionary(OPENED, valueOf(native.open(pathOf(path), copy)));
  }

  static async openAsync(path, { copy = false } = {}) {
    return new Dictionary(OPENED, valueOf(await native.openLater(pathOf(path), copy)));
  }

  static fromBytes(bytes) {
    return new Dictionary(OPENED, valueOf(native.openBytes(bytes)));
  }

  static async fromBytesAsync(bytes) {
    return new Dictionary(OPENED, valueOf(await native.openBytesLater(bytes)));
  }

  get size() {
    return this.describe().keys;
  }

  toBytes() {
    return native.imageBytes(Opened.imageOf(this));
  }
}

class DictionarySet extends Searchable {
  constructor(dictionaries) {
    super(valueOf(native.openSet(Array.from(dictionaries, Opened.imageOf))));
  }

  get size() {
    return native.countKeys(valueOf(native.openCursor(Opened.imageOf(this), '')));
  }
}

class Segmenter extends Segmenting {
  constructor(dictionary, { countField, costField, unknownCost } = {}) {
    const hasCosts = costField !== undefined;
    if (hasCosts === (countField !== undefined) || hasCosts !== (unknownCost !== undefined)) {
      throw new TypeError('a segmenter takes a countField, or a costField and an unknownCost');
    }
    const field = hasCosts ? costField : countField;
    const { image, segmenter } =
      valueOf(native.makeSegmenter(Opened.imageOf(dictionary), field, unknownCost));
    super(image, segmenter);
  }
}

module.exports = { Dictionary, DictionarySet, Segmenter };
