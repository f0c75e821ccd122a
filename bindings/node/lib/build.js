'use strict';

const { BuildError, DictionaryError, problemOf, wrongType } = require('./errors.js');
const native = require('./native.js');
const { isPath, pathOf } = require('./path.js');

// Errors that are not the fault of a source.
const NOT_OF_SOURCES = ['bad-argument', 'no-memory', 'stopped'];

// The source in the form that the native function takes.
function sourceOf(source) {
  if (isPath(source)) return { path: pathOf(source) };
  if (source?.bytes !== undefined) return { bytes: source.bytes };
  if (source?.[Symbol.iterator]) return { items: Array.from(source, fieldsOf) };
  throw wrongType('a source is a path, { bytes } or an iterable of items');
}

const LONE_SURROGATE = /\p{Surrogate}/u;

// The key and the data fields of an item.
function fieldsOf(item, number) {
  const fields = Array.isArray(item) ? item.flat() : [item];
  if (!Array.isArray(item) || !fields.every((field) => typeof field === 'string')) {
    throw wrongType(`item ${number} (from 0): expected an array of a key and its data, strings`);
  }
  // In a key, the library itself reports a surrogate.
  if (fields.slice(1).some((field) => LONE_SURROGATE.test(field))) {
    const error = new TypeError(`item ${number} (from 0): its data has an unpaired surrogate`);
    throw Object.assign(error, { code: 'ERR_INVALID_ARG_VALUE' });
  }
  return fields;
}

// Passes progress from a build to JavaScript, and a stop from JavaScript to the build.
class Watch {
  stop = native.makeStop();
  failure;
  #resolve;
  allIsHeard = new Promise((resolve) => { this.#resolve = resolve; });

  constructor(onProgress) {
    if (onProgress === undefined) this.#resolve();
    else this.onProgress = (...event) => this.#hear(onProgress, event);
  }

  #hear(onProgress, [stage, done, total]) {
    if (stage === undefined) return this.#resolve();
    try {
      if (onProgress({ stage, done, total }) === false) native.stop(this.stop);
    } catch (error) {
      this.end(error);
    }
  }

  end(error) {
    this.failure ??= { error };
    native.stop(this.stop);
  }
}

function errorOf(error, report) {
  if (NOT_OF_SOURCES.includes(error.kind)) return new DictionaryError(error);
  return new BuildError(error, report);
}

// Resolves with the report, and with the image's bytes if they are wanted.
async function build(source, target, { onProgress, signal, ...options } = {}) {
  const given = sourceOf(source);
  signal?.throwIfAborted();
  const watch = new Watch(onProgress);
  const abort = () => watch.end(signal.reason);
  signal?.addEventListener('abort', abort);
  try {
    const built = native.buildLater(given, target, options, watch.onProgress, watch.stop);
    const [{ error, bytes, report }] = await Promise.all([built, watch.allIsHeard]);
    report.problems = report.problems.map(problemOf);
    if (error && watch.failure) throw watch.failure.error;
    if (error) throw errorOf(error, report);
    return { report, bytes };
  } finally {
    signal?.removeEventListener('abort', abort);
  }
}

module.exports = { build };
