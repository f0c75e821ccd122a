'use strict';

const { getSystemErrorName } = require('node:util');

// What the library says, without what it does not have, as it is shown.
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

// As Node.js has it for an argument of a wrong type.
const wrongType = (message) =>
  Object.assign(new TypeError(message), { code: 'ERR_INVALID_ARG_TYPE' });

// What a native function answers.
function valueOf({ value, error }) {
  if (error) throw new DictionaryError(error);
  return value;
}

module.exports = { BuildError, DictionaryError, problemOf, valueOf, wrongType };
