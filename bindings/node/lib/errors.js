'use strict';

const { getSystemErrorName } = require('node:util');

// An error of the library in its public form, without the members that it does not have.
function problemOf({ kind, severity, path, errno, line, column, cell, offset, text, message }) {
  const problem = { code: errno ? getSystemErrorName(-errno) : kind, kind, severity, text, message };
  if (path !== undefined) problem.path = path;
  if (errno) problem.errno = -errno;
  if (line) problem.line = line;
  if (column) problem.column = column;
  if (cell >= 0) problem.cell = cell;
  if (offset >= 0) problem.offset = offset;
  return problem;
}

class DictionaryError extends Error {
  constructor(error) {
    const { message, ...rest } = problemOf(error);
    super(message);
    Object.assign(this, rest);
  }
}

class BuildError extends DictionaryError {
  constructor(error, { problems, problemCount }) {
    super(error);
    Object.assign(this, { problems, problemCount });
  }
}

for (const Class of [DictionaryError, BuildError]) {
  Object.defineProperty(Class.prototype, 'name', { value: Class.name, configurable: true });
}

// The error that Node.js throws for an argument of the wrong type.
const wrongType = (message) =>
  Object.assign(new TypeError(message), { code: 'ERR_INVALID_ARG_TYPE' });

// The value that a native function returned. Throws if it returned an error.
function valueOf({ value, error }) {
  if (error) throw new DictionaryError(error);
  return value;
}

module.exports = { BuildError, DictionaryError, problemOf, valueOf, wrongType };
