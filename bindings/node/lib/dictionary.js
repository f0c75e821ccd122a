'use strict';

const { build } = require('./build.js');
const { valueOf } = require('./errors.js');
const native = require('./native.js');
const { pathOf } = require('./path.js');
const { Searchable } = require('./searchable.js');

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

  toBytes() {
    return native.imageBytes(Searchable.imageOf(this));
  }
}

module.exports = { Dictionary };
