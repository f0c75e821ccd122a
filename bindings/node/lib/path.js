'use strict';

const { fileURLToPath } = require('node:url');

const { wrongType } = require('./errors.js');

const isPath = (value) =>
  typeof value === 'string' || value instanceof URL || value instanceof Uint8Array;

// A path as bytes.
function pathOf(path) {
  if (!isPath(path)) throw wrongType('a path is a string, a URL of a file or a Buffer');
  if (path instanceof Uint8Array) return path;
  return Buffer.from(path instanceof URL ? fileURLToPath(path) : path);
}

module.exports = { isPath, pathOf };
