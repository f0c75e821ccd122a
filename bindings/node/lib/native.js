'use strict';

module.exports = require(`../prebuilds/${process.platform}-${process.arch}/dictionary.node`);
