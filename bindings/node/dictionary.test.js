'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const { after, before, test } = require('node:test');
const { Worker } = require('node:worker_threads');

const { Dictionary, BuildError, ImageError, version } = require('dictionary');

const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'dictionary-'));
const inFolder = (name) => path.join(folder, name);
const image = inFolder('words.bin');
const words = { 京: '1', 京都: '2', 東京: '3', 東京都: '4', é: 'e', '\uFFFD': 'r', a: '', '😐': 'x' };
let dictionary;

function write(name, content) {
  fs.writeFileSync(inFolder(name), content);
  return inFolder(name);
}

const record = ([key, data]) => `${key}\t${data}\n`;

before(async () => {
  const report = await Dictionary.build(
    write('words.tsv', Object.entries(words).map(record).join('')), image);
  assert.deepEqual({ ...report, problems: report.problems.map(({ code }) => code) }, {
    records: 8, keys: 7, refused: 1, imageBytes: fs.statSync(image).size, problemCount: 1,
    problems: ['beyond-bmp'],
  });
  dictionary = Dictionary.open(image);
});

after(() => fs.rmSync(folder, { recursive: true }));

// As the image holds it: a tab ends each field.
const dataOf = (key) => `${words[key]}\t`;
const found = (text, matches) =>
  matches.map(({ start, end, data }) => [start, text.slice(start, end), data]);

test('matches carry UTF-16 offsets and data, the same at once and later', async () => {
  const all = [[0, '東京'], [0, '東京都'], [1, '京'], [1, '京都']];
  const table = [
    // text, findAll, findLongest, segment: [start, key]
    ['東京都', all, [all[1], all[3]], [all[1]]],
    ['é😐京', [[0, 'é'], [3, '京']]],
    ['\uD83D京\uDE10é', [[1, '京'], [3, 'é']]],
    ['\uDE10\uD83D\uD83D\uDE10京\uD83D', [[4, '京']]],
    ['a\0a\uFFFD', [[0, 'a'], [2, 'a'], [3, '\uFFFD']]],
    ['', []],
    ['none', []],
  ];
  for (const [text, findAll, findLongest = findAll, segment = findAll] of table) {
    for (const [name, keys] of Object.entries({ findAll, findLongest, segment })) {
      const expected = keys.map(([start, key]) => [start, key, dataOf(key)]);
      assert.deepEqual(found(text, dictionary[name](text)), expected, name);
      assert.deepEqual(found(text, await dictionary[`${name}Async`](text)), expected, name);
    }
  }
});

test('keys are looked up whole', () => {
  for (const key of ['東京', '東京都', 'é', 'a']) {
    assert.equal(dictionary.lookup(key), dataOf(key));
    assert.ok(dictionary.has(key));
  }
  for (const key of ['', '東', '東京都京', 'a\0', '\uD83D', '😐']) {
    assert.equal(dictionary.lookup(key), undefined);
    assert.ok(!dictionary.has(key));
  }
});

test('a build that fails says where and leaves the old image', async () => {
  const source = write('bad.tsv', 'good\t1\n\xC3\n\nno field\n');
  const old = fs.readFileSync(image);
  await assert.rejects(Dictionary.build(source, image), (error) => {
    assert.ok(error instanceof BuildError);
    const { file, line, code, problemCount } = error;
    assert.deepEqual({ file, line, code, problemCount },
      { file: source, line: 2, code: 'no-field', problemCount: 3 });
    assert.deepEqual(error.problems.map((problem) => problem.code),
      ['no-field', 'empty-record', 'no-field']);
    return error.message.startsWith(`${source}:2:`);
  });
  assert.deepEqual(fs.readFileSync(image), old);
  const unwritable = inFolder('nowhere/image');
  await assert.rejects(Dictionary.build(inFolder('words.tsv'), unwritable),
    { code: 'cannot-write', file: unwritable, systemError: 'ENOENT' });
  await assert.rejects(Dictionary.build(inFolder('none'), image), { code: 'cannot-read' });
  await assert.rejects(Dictionary.build(`${source}\0`, image), TypeError);
});

test('options of a build reach it', async () => {
  const source = write('other.txt', '=empty;k=v;');
  const options = { fieldSeparator: '=', recordSeparator: '\\059' };
  await assert.rejects(Dictionary.build(source, inFolder('o'), options), { code: 'empty-key' });
  const report = await Dictionary.build(source, inFolder('o'), { ...options, lenient: true });
  assert.equal(report.problems[0].severity, 'warning');
  assert.ok(Dictionary.open(inFolder('o')).has('k'));
});

test('images that are none are refused', async () => {
  const broken = write('broken', fs.readFileSync(image).subarray(0, -1));
  for (const [file, expected] of [
    [inFolder('none'), { code: 'unreadable', systemError: 'ENOENT' }],
    [broken, { code: 'header' }],
  ]) {
    assert.throws(() => Dictionary.open(file), { file, ...expected });
    await assert.rejects(Dictionary.openAsync(file, { copy: true }), ImageError);
  }
});

test('a closed dictionary is closed, but for searches under way', async () => {
  const text = '東京都'.repeat(100000);
  const other = await Dictionary.openAsync(image, { copy: true });
  const underWay = Array.from({ length: 8 }, () => other.findAllAsync(text));
  other.close();
  other.close();
  for (const matches of await Promise.all(underWay)) assert.equal(matches.length, 400000);
  assert.throws(() => other.lookup('a'), { code: 'closed' });
  await assert.rejects(other.segmentAsync('a'), { code: 'closed' });
  if (Symbol.dispose) assert.equal(other[Symbol.dispose](), undefined);
});

test('values of other types are refused', async () => {
  for (const value of [undefined, null, 1, Buffer.from('a')]) {
    assert.throws(() => dictionary.findAll(value), TypeError);
    assert.throws(() => dictionary.lookup(value), TypeError);
    assert.throws(() => Dictionary.open(value), TypeError);
    await assert.rejects(dictionary.findAllAsync(value), TypeError);
  }
});

test('workers and modules have it, too', async () => {
  const search = `const { parentPort, workerData } = require('node:worker_threads');
    const { Dictionary } = require(workerData.module);
    parentPort.postMessage(Dictionary.open(workerData.image).segment('東京都').length);`;
  const workerData = { module: require.resolve('dictionary'), image };
  for (let i = 0; i < 2; i++) {
    const worker = new Worker(search, { eval: true, workerData });
    assert.equal(await new Promise((resolve) => worker.once('message', resolve)), 1);
    await worker.terminate();
  }
  assert.equal((await import('dictionary')).Dictionary, Dictionary);
  assert.equal(version, require('dictionary/package.json').version);
});
