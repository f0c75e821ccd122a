'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const { after, before, test } = require('node:test');
const { pathToFileURL } = require('node:url');
const { Worker } = require('node:worker_threads');

const {
  BuildError, Dictionary, DictionaryError, DictionarySet, Segmenter, fields, records, version,
} = require('dictionary');

const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'dictionary-'));
const inFolder = (name) => path.join(folder, name);
const image = inFolder('words.bin');
const words = new Map(Object.entries({
  京: '1', 京都: '2', 東京: '3', 東京都: '4', é: 'e', '\uFFFD': 'r', a: '', '😐': 'x',
}));
let dictionary;

function write(name, content) {
  fs.writeFileSync(inFolder(name), content);
  return inFolder(name);
}

before(async () => {
  const source = write('words.tsv', [...words].map(([key, data]) => `${key}\t${data}\n`).join(''));
  assert.deepEqual(await Dictionary.build(source, image), {
    records: 8, keys: 8, imageBytes: fs.statSync(image).size, problemCount: 0, problems: [],
  });
  dictionary = Dictionary.open(image);
});

after(() => fs.rmSync(folder, { recursive: true }));

// Data as the image holds it: a tab ends each field.
const dataOf = (key) => `${words.get(key)}\t`;
const spansOf = (matches) => matches.map(({ start, end, key, data }) => [start, end, key, data]);

test('matches carry UTF-16 offsets, key and data, in every form of a call', async () => {
  const all = [[0, '東京'], [0, '東京都'], [1, '京'], [1, '京都']];
  const table = [
    // text, findAll, findLongest, segment, findPrefixes: [start, key]
    ['東京都', all, [all[1], all[3]], [all[1]], [all[0], all[1]]],
    ['é😐京', [[0, 'é'], [1, '😐'], [3, '京']], , , [[0, 'é']]],
    ['\uD83D京\uDE10é', [[1, '京'], [3, 'é']], , , []],
    ['\uDE10\uD83D\uD83D\uDE10京\uD83D', [[2, '😐'], [4, '京']], , , []],
    ['a\0a\uFFFD', [[0, 'a'], [2, 'a'], [3, '\uFFFD']], , , [[0, 'a']]],
    ['', []],
    ['none', []],
  ];
  const expected = { findAll: [], findLongest: [], segment: [], findPrefixes: [] };
  for (const [text, findAll, findLongest = findAll, segment = findAll, findPrefixes = findAll]
    of table) {
    for (const [name, keys] of Object.entries({ findAll, findLongest, segment, findPrefixes })) {
      const spans = keys.map(([start, key]) => [start, start + key.length, key, dataOf(key)]);
      expected[name].push(spans);
      assert.deepEqual(spansOf(dictionary[name](text)), spans, name);
      assert.deepEqual(spansOf(await dictionary[`${name}Async`](text)), spans, name);
    }
    assert.equal(dictionary.test(text), findAll.length > 0);
  }
  const texts = new Set(table.map(([text]) => text));
  for (const [name, spans] of Object.entries(expected)) {
    assert.deepEqual(dictionary[`${name}Each`](texts).map(spansOf), spans, name);
    assert.deepEqual((await dictionary[`${name}EachAsync`](texts)).map(spansOf), spans, name);
  }
});

test('a dictionary is used like a Map', async () => {
  const map = new Map([...words.keys()].sort((a, b) => Buffer.compare(...[a, b].map(Buffer.from)))
    .map((key) => [key, dataOf(key)]));
  assert.equal(dictionary.size, map.size);
  assert.deepEqual(new Map(dictionary), map);
  assert.deepEqual([...dictionary.values()], [...map.values()]);
  assert.deepEqual([...dictionary.keys('京')], ['京', '京都']);
  assert.deepEqual([...dictionary.entries('東京都')], [['東京都', dataOf('東京都')]]);
  const seen = [];
  dictionary.forEach((data, key, self) => seen.push([key, data, self]));
  assert.deepEqual(seen, [...map].map((entry) => [...entry, dictionary]));
  const asked = [...map.keys(), '', '東', '東京都京', 'a\0', '\uD83D', '\uD83D\uDE11'];
  for (const key of asked) {
    assert.equal(dictionary.get(key), map.get(key));
    assert.equal(dictionary.has(key), map.has(key));
  }
  assert.deepEqual(dictionary.getEach(asked), asked.map((key) => map.get(key)));
  const many = Array.from({ length: 5000 }, (_, i) => [String(i).padStart(4, '0'), '']);
  assert.deepEqual([...(await Dictionary.of(many)).keys()], many.map(([key]) => key));
});

test('a repeated key has several records', async () => {
  const book = await Dictionary.of([['book', 'noun', ''], ['book', ['verb', 'to book']]]);
  const [match] = book.segment('a book');
  assert.deepEqual([match.fields, match.records],
    [['noun', ''], [['noun', ''], ['verb', 'to book']]]);
  for (const [data, expected] of [['', []], ['\t', [['']]], ['a\t;\t', [['a'], ['']]],
    [';a\tb\t', [[';a', 'b']]], [undefined, []]]) {
    assert.deepEqual(records(data), expected);
    assert.deepEqual(fields(data), expected[0] ?? []);
  }
});

test('segments are the longest or the cheapest, words cover the text', async () => {
  const counted = await Dictionary.of(
    [['北京', '5', '7'], ['北京大', '1', '9'], ['大学', '9', '2'], ['学生', '2', '3'], ['生', '2', '3']]);
  const byCount = new Segmenter(counted, { countField: 1 });
  const byCost = new Segmenter(counted, { costField: 2, unknownCost: 0.5 });
  const text = '北京大学生\uD800ab😐';
  const table = [
    [counted, ['北京大', '学生', '\uD800', 'ab', '😐']],
    [byCount, ['北京', '大学', '生', '\uD800', 'ab', '😐']],
    // Of equal costs, the one with the longer first word wins.
    [byCost, ['北京大', '学生', '\uD800', 'ab', '😐']],
  ];
  for (const [segmenter, words] of table) {
    const options = { joinedRuns: true };
    assert.deepEqual(segmenter.words(text, options), words);
    assert.deepEqual(await segmenter.wordsEachAsync([text, ''], options), [words, []]);
    assert.deepEqual(segmenter.words('ab'), ['a', 'b']);
    const keys = words.slice(0, -3);
    assert.deepEqual(segmenter.segment(text).map(({ key }) => key), keys);
    assert.deepEqual((await segmenter.segmentAsync(text)).map(({ key }) => key), keys);
    segmenter.close();
    assert.throws(() => segmenter.words(text), { code: 'closed' });
  }
  for (const [options, expected] of [[{ countField: 2 }, { code: 'no-weight' }],
    [{ countField: 0 }, RangeError], [{}, TypeError], [{ costField: 1 }, TypeError]]) {
    assert.throws(() => new Segmenter(dictionary, options), expected);
  }
});

test('keys are replaced, and all else stays', async () => {
  const script = await Dictionary.of([['后', '後 后', 'x'], ['东西', '東西', ''], ['é', '', '😐']]);
  const text = '\uD83D后\0东西é\uDE10';
  const table = [
    [{}, '\uD83D後 后\0東西é\uDE10'],
    [{ alternatives: ' ' }, '\uD83D後\0東西é\uDE10'],
    [{ field: 2 }, '\uD83Dx\0东西😐\uDE10'],
    [{ field: 2, removeEmpty: true }, '\uD83Dx\0😐\uDE10'],
    [{ field: 3, removeEmpty: true }, '\uD83D\0\uDE10'],
  ];
  for (const [options, expected] of table) {
    assert.equal(script.replace(text, options), expected);
    assert.equal(await script.replaceAsync(text, options), expected);
    const pair = [text, '东西'];
    const both = pair.map((one) => script.replace(one, options));
    assert.deepEqual(script.replaceEach(pair, options), both);
    assert.deepEqual(await script.replaceEachAsync(new Set(pair), options), both);
    const { text: result, edits } = script.replaceWithEdits(text, options);
    assert.deepEqual(await script.replaceWithEditsAsync(text, options), { text: result, edits });
    // Rebuilds the text from the result and the edits.
    let again = '';
    let end = 0;
    for (const edit of edits) {
      again += result.slice(end, edit.resultStart) + text.slice(edit.start, edit.end);
      end = edit.resultEnd;
    }
    assert.deepEqual([result, again + result.slice(end)], [expected, text]);
  }
  assert.throws(() => script.replace(text, { field: 0 }), RangeError);
});

test('words are whole, letters folded, and sets searched as one', async () => {
  const large = await Dictionary.of([['he', '1'], ['hello', '2'], ['东', '3']]);
  const own = await Dictionary.of([['HELLO', '4'], ['it', '5']], { folded: true });
  assert.ok(own.has('Hello') && own.describe().folded);
  const keys = (matches) => matches.map(({ key, fields: [field], image: n }) => `${n}${key}${field}`);
  assert.deepEqual(keys(large.findAll('he hello东', { wholeWords: true })), ['0he1', '0hello2', '0东3']);
  assert.ok(!large.test('hem', { wholeWords: true }));
  const set = new DictionarySet([large, own]);
  large.close();
  own.close();
  const text = 'hello It';
  assert.deepEqual(keys(set.findLongest(text)), ['1hello4', '1It5']);
  assert.deepEqual(keys(set.findLongest(text, { everyImage: true })), ['0hello2', '1hello4', '1It5']);
  assert.deepEqual([set.size, [...set.keys()]], [4, ['he', 'hello', 'it', '东']]);
  assert.equal(set.get('hello'), '4\t');
  assert.equal(new Segmenter(set, { countField: 1 }).segment(text).length, 2);
  assert.throws(() => new DictionarySet([]), { code: 'bad-argument' });
  assert.throws(() => new DictionarySet([large]), { code: 'closed' });
  assert.throws(() => new DictionarySet([null]), { code: 'ERR_INVALID_ARG_TYPE' });
});

test('columns have what matches have', async () => {
  const texts = ['东', '東京都', '', 'é😐京'];
  const set = new DictionarySet([await Dictionary.of([['东', 'x']]), dictionary]);
  for (const searched of [dictionary, set]) {
    for (const [mode, name] of [['all', 'findAllEach'], ['segment', 'segmentEach']]) {
      const expected = searched[name](texts).flatMap((matches, number) =>
        matches.map(({ start, end, data, image: n }) => [number, start, end, data, n]));
      for (const columns of [searched.findColumns(texts, { mode }),
        await searched.findColumnsAsync(new Set(texts), { mode })]) {
        assert.ok(Object.values(columns).every((column) => column instanceof Uint32Array));
        const { text, start, end, dataNumber, image: images } = columns;
        assert.deepEqual(Array.from(text, (number, i) => [number, start[i], end[i],
          searched.dataAt(dataNumber[i], images[i]), images[i]]), expected);
      }
    }
  }
  assert.equal(dictionary.findColumns([]).start.length, 0);
  assert.equal(dictionary.dataAt(0xFFFFFFFF), undefined);
  assert.throws(() => dictionary.findColumns(texts, { mode: 'none' }), TypeError);
});

test('sources and images are files, bytes and items', async () => {
  const bytes = fs.readFileSync(image);
  const items = [...words];
  const content = fs.readFileSync(inFolder('words.tsv'));
  const changing = Buffer.from(content);
  const building = Dictionary.buildBytes({ bytes: changing });
  changing.fill(0);
  assert.deepEqual(Buffer.from(await building), bytes);
  for (const source of [words, items, items.values(), pathToFileURL(inFolder('words.tsv')),
    Buffer.from(inFolder('words.tsv'))]) {
    assert.deepEqual(Buffer.from(await Dictionary.buildBytes(source)), bytes);
  }
  assert.equal((await Dictionary.check(words)).records, words.size);
  for (const open of ['open', 'openAsync']) {
    for (const file of [image, pathToFileURL(image), Buffer.from(image)]) {
      assert.equal((await Dictionary[open](file, { copy: true })).size, words.size);
    }
  }
  for (const open of ['fromBytes', 'fromBytesAsync']) {
    const opened = Dictionary[open](bytes);
    const kept = Buffer.from(bytes);
    if (open === 'fromBytesAsync') bytes.fill(0);
    assert.deepEqual(Buffer.from((await opened).toBytes()), kept);
  }
});

test('what is wrong with a source is reported, and the old image stays', async () => {
  const source = write('bad.tsv', 'good\t1\n\xC3\n\nno field\n');
  const old = fs.readFileSync(image);
  for (const build of ['build', 'check']) {
    const rest = build === 'build' ? [image] : [];
    await assert.rejects(Dictionary[build](source, ...rest), (error) => {
      assert.ok(error instanceof BuildError && error instanceof DictionaryError);
      const { code, kind, path: file, line, severity, problemCount } = error;
      assert.deepEqual({ code, kind, file, line, severity, problemCount },
        { code: 'no-field', kind: 'no-field', file: source, line: 2, severity: 'error',
          problemCount: 3 });
      assert.deepEqual(error.problems.map((problem) => problem.code),
        ['no-field', 'empty-record', 'no-field']);
      return error.message.startsWith(`${source}:2:`) && error.name === 'BuildError';
    });
  }
  assert.deepEqual(fs.readFileSync(image), old);
  const unwritable = inFolder('nowhere/image');
  const table = [
    [words, unwritable, { kind: 'cannot-write', path: unwritable, code: 'ENOENT', errno: -2 }],
    [inFolder('none'), image, { kind: 'cannot-read', code: 'ENOENT', name: 'BuildError' }],
    [[['a', 'x'], ['b']], image, { code: 'no-field', line: 2 }],
    [[['a\uD800', 'x']], image, { code: 'bad-utf8', line: 1, column: 2 }],
    [[['a', 'x\ty']], image, { code: 'bad-separator', line: 1 }],
    [[], image, { code: 'no-records' }],
    [[['a', 'x'], ['b', 1]], image, { code: 'ERR_INVALID_ARG_TYPE', message: /^item 1 \(from 0\)/ }],
    [['ab'], image, { code: 'ERR_INVALID_ARG_TYPE', message: /^item 0 \(from 0\)/ }],
    [[['a', 'x'], ['b', '😐', '\uD83D']], image,
      { code: 'ERR_INVALID_ARG_VALUE', message: /^item 1 \(from 0\).*surrogate/ }],
    [{ bytes: 'a\tb\n' }, image, { code: 'ERR_INVALID_ARG_TYPE', message: /Uint8Array/ }],
    [`${source}\0`, image, TypeError],
    [1, image, { name: 'TypeError', code: 'ERR_INVALID_ARG_TYPE' }],
    [words, undefined, TypeError],
  ];
  for (const [from, to, expected] of table) {
    await assert.rejects(Dictionary.build(from, to), expected);
  }
});

test('options of a build reach it', async () => {
  const source = write('other.txt', '=empty;k=v;');
  const options = { fieldSeparator: '=', recordSeparator: '\\059' };
  await assert.rejects(Dictionary.check(source, options), { code: 'empty-key' });
  const report = await Dictionary.check(source, { ...options, lenient: true });
  assert.deepEqual(report.problems.map(({ severity }) => severity), ['warning']);
  const windows = await Dictionary.of({ bytes: Buffer.from('\uFEFFa\tb\r\n') }, { fromWindows: true });
  assert.equal(windows.get('a'), 'b\t');
  assert.equal((await Dictionary.of([], { allowEmpty: true })).size, 0);
  await assert.rejects(Dictionary.check([['', 'a'], ['', 'b']], { problemLimit: 1 }),
    ({ problems, problemCount }) => problems.length === 1 && problemCount === 2);
});

test('a build shows its progress and can be stopped', async () => {
  const events = [];
  const onProgress = (event) => { events.push(event); };
  await Dictionary.buildBytes(words, { onProgress });
  assert.deepEqual([...new Set(events.map(({ stage }) => stage))], ['read', 'place', 'write']);
  assert.equal(events.at(-1).done, events.at(-1).total);
  const many = Array.from({ length: 100000 }, (_, i) => [String(i * 7919), 'x']);
  const failure = new Error('of the caller');
  const controller = new AbortController();
  for (const [options, expected] of [
    [{ onProgress: () => false }, { code: 'stopped', name: 'DictionaryError' }],
    [{ onProgress() { throw failure; } }, failure],
    [{ onProgress: () => controller.abort(), signal: controller.signal }, { name: 'AbortError' }],
    [{ signal: AbortSignal.abort() }, { name: 'AbortError' }],
  ]) {
    await assert.rejects(Dictionary.build(many, inFolder('stopped'), options), expected);
    assert.ok(!fs.existsSync(inFolder('stopped')));
  }
});

test('images that are none are refused', async () => {
  const broken = write('broken', fs.readFileSync(image).subarray(0, -1));
  for (const [file, expected] of [
    [inFolder('none'), { code: 'ENOENT', kind: 'cannot-read' }],
    [broken, { code: 'header', cell: 0, offset: 0 }],
  ]) {
    assert.throws(() => Dictionary.open(file), { name: 'DictionaryError', path: file, ...expected });
    await assert.rejects(Dictionary.openAsync(file, { copy: true }), DictionaryError);
  }
  assert.throws(() => Dictionary.fromBytes(Buffer.from('text')), { code: 'image-too-short' });
  assert.throws(() => new Dictionary(), TypeError);
});

test('a closed dictionary is closed, but for searches under way', async () => {
  const text = '東京都'.repeat(100000);
  const other = await Dictionary.openAsync(image, { copy: true });
  const underWay = Array.from({ length: 8 }, () => other.findAllAsync(text));
  const keys = other.keys();
  keys.next();
  other.close();
  other.close();
  for (const matches of await Promise.all(underWay)) assert.equal(matches.length, 400000);
  assert.equal([...keys].length, words.size - 1);
  assert.throws(() => other.get('a'), { code: 'closed' });
  await assert.rejects(other.segmentAsync('a'), { code: 'closed' });
  if (Symbol.dispose) assert.equal(other[Symbol.dispose](), undefined);
});

test('values of other types are refused', async () => {
  const code = 'ERR_INVALID_ARG_TYPE';
  for (const value of [undefined, null, 1, {}]) {
    for (const name of ['findAll', 'get', 'test']) {
      assert.throws(() => dictionary[name](value), { name: 'TypeError', code });
    }
    for (const name of ['open', 'fromBytes']) {
      assert.throws(() => Dictionary[name](value), { name: 'TypeError', code });
    }
    await assert.rejects(dictionary.findAllAsync(value), TypeError);
    assert.throws(() => dictionary.getEach([value]), TypeError);
  }
  for (const name of ['getEach', 'findAllEach', 'findColumns', 'replaceEach']) {
    assert.throws(() => dictionary[name]('one text'), { name: 'TypeError', code });
  }
  assert.throws(() => dictionary.findAll('a', { wholeWords: 1 }), TypeError);
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
  assert.throws(() => structuredClone(dictionary), { code: 'ERR_NOT_CLONEABLE', message: /worker/ });
  assert.equal((await import('dictionary')).Dictionary, Dictionary);
  assert.equal(version, require('dictionary/package.json').version);
});
