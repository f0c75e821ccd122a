'use strict';

const { wrongType } = require('./errors.js');
const native = require('./native.js');

const CLONE_MESSAGE =
  'what is open is neither cloned nor posted; open the image in the worker';

// Something open in the library: an image, and a segmenter if there is one.
class Opened {
  #image;
  #segmenter;

  constructor(image, segmenter) {
    this.#image = image;
    this.#segmenter = segmenter;
    // structuredClone reads it, and so throws.
    Object.defineProperty(this, 'notCloneable', {
      enumerable: true,
      get() {
        throw Object.assign(new Error(CLONE_MESSAGE), { code: 'ERR_NOT_CLONEABLE' });
      },
    });
  }

  static imageOf(opened) {
    if (!(opened instanceof Opened)) throw wrongType('expected a dictionary');
    if (opened.#image) return opened.#image;
    throw Object.assign(new Error('the dictionary is closed'), { code: 'closed' });
  }

  static segmenterOf(opened) {
    return opened.#segmenter;
  }

  close() {
    if (this.#segmenter) native.freeSegmenter(this.#segmenter);
    if (this.#image) native.close(this.#image);
    this.#image = undefined;
    this.#segmenter = undefined;
  }
}

if (Symbol.dispose) Opened.prototype[Symbol.dispose] = Opened.prototype.close;

module.exports = { Opened };
