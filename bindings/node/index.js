'use strict';

const { Dictionary, DictionarySet, Segmenter } = require('./lib/dictionary.js');
const { BuildError, DictionaryError } = require('./lib/errors.js');
const { Match, fields, records } = require('./lib/match.js');
const { version } = require('./lib/native.js');

module.exports = {
  BuildError,
  Dictionary,
  DictionaryError,
  DictionarySet,
  Match,
  Segmenter,
  fields,
  records,
  version,
};
