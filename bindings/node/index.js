'use strict';

const { getSystemErrorName } = require('node:util');
const native = require(`./prebuilds/${process.platform}-${process.arch}/dictionary.node`);

const systemErrorOf = (errno) => (errno === 0 ? undefined : getSystemErrorName(-errno));
const unlessNegative = (number) => (number < 0 ? undefined : number);

/** An image that is refused. */
class ImageError extends Error {
  name = 'ImageError';

  constructor(file, { code, errno, cell, offset, text }) {
    const systemError = systemErrorOf(errno);
    super(`${file}: ${text}${systemError ? `: ${systemError}` : ''}`);
    Object.assign(this, {
      file,
      code,
      systemError,
      cell: unlessNegative(cell),
      offset: unlessNegative(offset),
    });
  }
}

/** A source of which no image was made. */
class BuildError extends Error {
  name = 'BuildError';

  constructor(problems, problemCount) {
    const { file, line, column, code, systemError, text } =
      problems.find(({ severity }) => severity === 'error');
    const place = [file, line, column].filter((part) => part !== undefined).join(':');
    super(`${place}: ${code}: ${text}`);
    Object.assign(this, { file, line, column, code, systemError, problems, problemCount });
  }
}

function problemOf({ code, severity, errno, line, column, text }, source, image) {
  return {
    file: code === 'cannot-write' ? image : source,
    line: line || undefined,
    column: column || undefined,
    code,
    severity,
    systemError: systemErrorOf(errno),
    text,
  };
}

function matchesOf({ spans, data }) {
  const matches = new Array(spans.length / 3);
  for (let i = 0, next = 0; i < matches.length; i++) {
    matches[i] = { start: spans[next++], end: spans[next++], data: data[spans[next++]] };
  }
  return matches;
}

class Dictionary {
  #opened;

  static async build(source, image, options = {}) {
    const { lenient = false, fieldSeparator = '\t', recordSeparator = '\n' } = options;
    const { isBuilt, ...report } =
      await native.buildLater(source, image, lenient, fieldSeparator, recordSeparator);
    report.problems = report.problems.map((problem) => problemOf(problem, source, image));
    if (!isBuilt) throw new BuildError(report.problems, report.problemCount);
    return report;
  }

  static open(path, { copy = false } = {}) {
    return Dictionary.#of(path, native.open(path, copy));
  }

  static async openAsync(path, { copy = false } = {}) {
    return Dictionary.#of(path, await native.openLater(path, copy));
  }

  static #of(path, { image, fault }) {
    if (fault) throw new ImageError(path, fault);
    const dictionary = new Dictionary();
    dictionary.#opened = image;
    return dictionary;
  }

  get #image() {
    if (this.#opened) return this.#opened;
    throw Object.assign(new Error('the dictionary is closed'), { code: 'closed' });
  }

  lookup(key) {
    return native.lookup(this.#image, key) ?? undefined;
  }

  has(key) {
    return native.has(this.#image, key);
  }

  findAll(text) {
    return matchesOf(native.findAll(this.#image, text));
  }

  findLongest(text) {
    return matchesOf(native.findLongest(this.#image, text));
  }

  segment(text) {
    return matchesOf(native.segment(this.#image, text));
  }

  async findAllAsync(text) {
    return matchesOf(await native.findAllLater(this.#image, text));
  }

  async findLongestAsync(text) {
    return matchesOf(await native.findLongestLater(this.#image, text));
  }

  async segmentAsync(text) {
    return matchesOf(await native.segmentLater(this.#image, text));
  }

  close() {
    if (this.#opened) native.close(this.#opened);
    this.#opened = undefined;
  }
}

if (Symbol.dispose) Dictionary.prototype[Symbol.dispose] = Dictionary.prototype.close;

const { version } = native;

module.exports = { Dictionary, BuildError, ImageError, version };
