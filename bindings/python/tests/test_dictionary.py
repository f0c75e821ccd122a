"""Tests of the package and of the examples in its documentation."""

import contextlib
import doctest
import gc
import io
import math
import os
import pickle
import random
import signal
import tempfile
import threading
import time
import tomllib
import unittest
import warnings
from collections.abc import Mapping
from pathlib import Path
from unittest import mock

import dictionary
from dictionary import (BuildError, BuildStopped, DigestError, Dictionary, DictionaryError,
                        DictionarySet, ImageError, Match, Reloader, Segmenter, _build,
                        _dictionary, _match, _reloader, _searchable, _segmenter)

PROJECT = Path(__file__).parents[1]
SAMPLE = "京\tnoun\tcapital\n東京\tnoun\tTokyo\n東京都\tnoun\tTokyo Metropolis\n"
SEARCHES = ("find_all", "find_longest", "segment")


def enter_folder(test):
    """Goes into a new folder with an image of SAMPLE."""
    test.stack = contextlib.ExitStack()
    folder = test.stack.enter_context(tempfile.TemporaryDirectory())
    test.stack.enter_context(contextlib.chdir(folder))
    build(SAMPLE, "sample.bin")


def load_tests(_loader, tests, _pattern):
    options = {"setUp": enter_folder, "tearDown": lambda test: test.stack.close(),
               "optionflags": doctest.ELLIPSIS}
    for module in (dictionary, _build, _dictionary, _match, _reloader, _searchable, _segmenter):
        tests.addTest(doctest.DocTestSuite(module, extraglobs={"Dictionary": Dictionary},
                                           **options))
    tests.addTest(doctest.DocFileSuite("../README.md", **options))
    return tests


def build(source, image="image.bin", **options):
    file = io.BytesIO(source) if isinstance(source, bytes) else io.StringIO(source)
    return Dictionary.build(file, image, **options)


def mappings_of(name):
    return Path("/proc/self/maps").read_text().count(os.path.abspath(name))


def wait_until(holds):
    end = time.monotonic() + 20
    while not holds():
        assert time.monotonic() < end, "it takes too long"
        time.sleep(0.001)


def status_of_child(run):
    """The status of a forked process that runs something: 0, or 1 if that fails."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # forking with threads is what is tested
        child = os.fork()
    if child:
        return os.waitpid(child, 0)[1]
    status = 1
    try:
        signal.alarm(20)
        status = 0 if run() else 1
    finally:
        os._exit(status)


class FolderTest(unittest.TestCase):
    def setUp(self):
        enter_folder(self)
        self.addCleanup(self.stack.close)


class SearchTest(FolderTest):
    def reference(self, keys, text):
        """What each search finds, the slow way. Every key has itself as data."""
        tab = text[:0] + ("\t" if isinstance(text, str) else b"\t")
        everything = [Match(start, start + len(key), key, key + tab) for start in range(len(text))
                      for key in keys if text.startswith(key, start)]
        longest = list({match.start: match for match in everything}.values())
        segments = []
        for match in longest:
            if not segments or match.start >= segments[-1].end:
                segments.append(match)
        return dict(zip(SEARCHES, (everything, longest, segments)))

    def test_every_search_in_any_text(self):
        keys = ("a", "é", "京", "?", "😀", "ab", "éa", "東京", "😀a", "abb", "東京都")
        words = Dictionary.of({key: key for key in keys})
        chance = random.Random(1)
        characters = [*"abé京東都?x\0\n😀", "\uffff", "\U0010ffff", "\ud800", "\udfff"]
        texts = ["".join(chance.choices(characters, k=chance.randrange(30))) for _ in range(300)]
        raw = [text.encode(errors="surrogatepass")[chance.randrange(2):] for text in texts]
        for keys, many in ((keys, texts), ([key.encode() for key in keys], raw)):
            expected = [self.reference(keys, text) for text in many]
            for name in SEARCHES:
                found = list(getattr(words, name + "_each")(iter(many)))
                self.assertEqual(found, [each[name] for each in expected])
                self.assertEqual(found, list(map(getattr(words, name), many)))
                self.check_columns(words, many, name.removeprefix("find_"), found)
            everything = [each["find_all"] for each in expected]
            self.assertEqual(list(map(words.any_in, many)), list(map(bool, everything)))
            prefixes = [[match for match in found if not match.start] for found in everything]
            self.assertEqual(list(map(words.prefixes, many)), prefixes)
            self.check_columns(words, many, "prefixes", prefixes)
            self.check_pieces(words, many)

    def check_columns(self, words, texts, mode, found):
        columns = words.find_columns(texts, mode)
        self.assertEqual(
            [(text, start, end, words.data_at(data))
             for text, start, end, data in zip(columns.text, columns.start, columns.end,
                                               columns.data_number)],
            [(number, match.start, match.end, match.data if isinstance(match.data, str) else
              match.data.decode()) for number, each in enumerate(found) for match in each])
        self.assertEqual(set(columns.image), {0})

    def check_pieces(self, words, texts):
        pieces = list(words.words_each(texts))
        self.assertEqual([text[:0].join(each) for text, each in zip(texts, pieces)], texts)
        self.assertEqual(pieces, list(map(words.words, texts)))
        self.assertEqual(list(words.replace_each(texts)), texts)

    def test_arguments_of_other_types_are_refused(self):
        words = Dictionary.open("sample.bin")
        for method in (words.lookup, words.find_all, words.__contains__, words.keys().__class__):
            for argument in (None, 1, bytearray(b"a"), ["a"]):
                self.assertRaises(TypeError, method, argument)
        for many in (words.find_all_each, words.lookup_each, words.find_columns,
                     words.replace_each):
            for texts in ("text", b"text", 1, [1], ["a", b"a"], [b"a", "a"]):
                if many != words.replace_each or not isinstance(texts, list) or texts == [1]:
                    # Columns are not iterable, so one of their arrays is listed.
                    self.assertRaises(TypeError, lambda: [*many(texts).text] if
                                      many == words.find_columns else list(many(texts)))

    def test_missing_texts_have_no_matches(self):
        words = Dictionary.open("sample.bin")
        for key, data in (("京", "noun\tcapital\t"), ("京".encode(), b"noun\tcapital\t")):
            column = [math.nan, *[None] * 100, key]
            self.assertEqual(list(words.lookup_each(column, skip_missing=True)),
                             [None] * 101 + [data])
            found = list(words.segment_each(column, skip_missing=True))
            self.assertEqual(found, [[]] * 101 + [[Match(0, len(key), key, data)]])
            columns = words.find_columns(column, skip_missing=True)
            self.assertEqual([*columns.text, *columns.end], [101, len(key)])
            with self.assertRaisesRegex(TypeError, r"item 70 \(from 0\) is None: "):
                list(words.segment_each([key] * 70 + [None]))

    def test_data_of_any_bytes(self):
        build(b"k\t\xff\xc3\t\nk\t;b\n")
        words = Dictionary.open("image.bin")
        self.assertEqual(words.segment(b"k")[0].data, b"\xff\xc3\t\t;;b\t")
        match, = words.segment("k")
        self.assertEqual(match.fields, ["\udcff\udcc3", ""])
        self.assertEqual(match.records, [["\udcff\udcc3", ""], [";b"]])
        self.assertEqual(dictionary.records(""), [])

    def test_other_threads_run_during_a_search(self):
        words = Dictionary.of({"a" * 4000 + "b": ""})
        search = threading.Thread(target=words.find_all, args=(b"a" * 60000,))
        search.start()
        ticks = 0
        while search.is_alive():
            time.sleep(0.001)
            ticks += 1
        self.assertGreater(ticks, 10)

    def test_the_collector_waits_for_many_matches_and_then_goes_on(self):
        words, runs = Dictionary.of({"a": "b"}), []
        gc.callbacks.append(lambda *_: runs.append(1))
        self.addCleanup(gc.callbacks.pop)
        self.assertEqual(len(words.find_all("a" * 50000)), 50000)
        self.assertLess(len(runs), 5)
        self.assertTrue(gc.isenabled())
        gc.disable()
        self.addCleanup(gc.enable)
        words.find_all("a" * 5000)
        self.assertFalse(gc.isenabled())


class MappingTest(FolderTest):
    def test_equals_a_dict_in_order(self):
        chance = random.Random(2)
        alphabet = ["a", "b", "é", "東", "京", "\uffff", "😀", "\U0010ffff"]
        model = {"".join(chance.choices(alphabet, k=chance.randrange(1, 6))): str(number % 7)
                 for number in range(3000)}
        words = Dictionary.of(model)
        model = {key: model[key] + "\t" for key in sorted(model)}
        self.assertIsInstance(words, Mapping)
        self.assertEqual((len(words), list(words.items())), (len(model), list(model.items())))
        self.assertEqual(words, model)
        self.assertEqual(words.keys() & {"a", "none"}, model.keys() & {"a"})
        for prefix in ("", "a", "東京", "😀", "\ud83d", "none", "\0"):
            some = {key: data for key, data in model.items() if key.startswith(prefix)}
            keys, values, items = words.keys(prefix), words.values(prefix), words.items(prefix)
            self.assertEqual((list(keys), list(values), list(items)),
                             (list(some), list(some.values()), list(some.items())))
            self.assertEqual((len(keys), len(values), len(items)), (len(some),) * 3)
            for key in ("a", "東京", "none"):
                self.assertEqual(
                    (key in keys, (key, model.get(key)) in items), (key in some,) * 2)
            if prefix != "\ud83d":
                self.assertEqual([key.decode() for key in words.keys(prefix.encode())], list(some))
        self.assertEqual(list(words.keys(b"\xe6\x9d")), [])

    def test_lookups_take_whole_keys(self):
        words = Dictionary.open("sample.bin")
        misses = ["", "東", "東京x", "東京\0", "😀", "\ud800"]
        for many in (["東京", *misses] * 500, [b"\xe4\xba\xac", b"\xe6", b"", b"\xed\xa0\x80"]):
            expected = [many[0] in words and words[many[0]], *[None] * (len(many) - 1)]
            found = list(words.lookup_each(iter(many)))
            self.assertEqual(found, list(map(words.lookup, many)))
            self.assertEqual(found, list(map(words.get, many)))
            self.assertEqual([key in words for key in many], [data is not None for data in found])
            self.assertEqual(found[:4], expected[:4])
        for miss in misses:
            self.assertEqual(words.get(miss, 5), 5)
            self.assertRaises(KeyError, words.__getitem__, miss)

    def test_sets_folding_and_whole_words(self):
        general = Dictionary.of({"he": "1", "hello": "2", "東京": "3"}, folded=True)
        own = Dictionary.of({"東京": "4", "Ll": "5"}, folded=True)
        both = DictionarySet([general, own])
        self.assertTrue(both.describe().folded)
        text = "HEllow東京 he"
        for words, everything, whole in (
                (general, "HE 1, HEllo 2, 東京 3, he 1", "東京 3, he 1"),
                (own, "ll 5, 東京 4", "東京 4"),
                (both, "HE 1, HEllo 2, ll 5, 東京 4, he 1", "東京 4, he 1")):
            for matches, expected in ((words.find_all(text), everything),
                                      (words.find_longest(text, whole_words=True), whole)):
                found = (f"{match.key} {match.fields[0]}" for match in matches)
                self.assertEqual(", ".join(found), expected)
            self.assertFalse(words.any_in("hell", whole_words=True))
            keys = list(words)
            self.assertEqual((keys, len(words)), (sorted(keys), len(keys)))
            self.assertEqual(list(words.keys("Ｈ")), [key for key in keys if key[0] == "h"])
            self.assertEqual(list(words.lookup_each(["HELLO", "LL", "東京"])),
                             [words.get("hello"), words.get("ＬＬ"), words["東京"]])
        self.assertEqual([match.image for match in both.find_all("東京")], [1])
        self.assertEqual([match.image for match in both.find_all("東京", every_image=True)], [0, 1])
        self.assertEqual(list(both.find_columns(["東京"], every_image=True).image), [0, 1])
        general.close()
        self.assertEqual(both["hello"], "2\t")
        self.assertRaises(ValueError, DictionarySet, [general])
        self.assertRaises(ValueError, DictionarySet, [])
        self.assertRaises(ValueError, both.find_columns, ["a"], "weighted")
        for dictionaries in ([None], own, [both]):
            self.assertRaisesRegex(TypeError, r"^item 0 \(from 0\)", DictionarySet, dictionaries)


class SegmentationTest(FolderTest):
    COUNTS = {"北京": ["noun", "5"], "北京大": ["noun", "1"], "大学": ["noun", "9"],
              "生": ["verb", "2"], "😀": ["face", "1"]}

    def test_segments_of_least_cost(self):
        words = Dictionary.of(self.COUNTS)
        text = "北京大学生 ab1 x😀\ud800"
        pieces = ["北京", "大学", "生", " ", "ab1", " ", "x", "😀", "\ud800"]
        for segmenter in (Segmenter(words, count_field=2),
                          Segmenter(DictionarySet([words]), count_field=2),
                          pickle.loads(pickle.dumps(Segmenter(words, count_field=2))),
                          Segmenter(Dictionary.of({key: ["", str(10 - int(count))] for
                                                   key, (_, count) in self.COUNTS.items()}),
                                    cost_field=2, unknown_cost=20)):
            self.assertEqual(segmenter.words(text, joined_runs=True), pieces)
            self.assertEqual(list(segmenter.words_each([text] * 99, joined_runs=True)),
                             [pieces] * 99)
            self.assertEqual("".join(segmenter.words(text)), text)
            matches = segmenter.segment(text)
            self.assertEqual([match.key for match in matches], ["北京", "大学", "生", "😀"])
            self.assertEqual(list(segmenter.segment_each([text])), [matches])
        words.close()
        self.assertEqual(segmenter.segment("北京".encode())[0].end, 6)

    def test_weights_that_are_none(self):
        words = Dictionary.of({"a": "x", "b": "1"})
        with self.assertRaisesRegex(DictionaryError, 'bad-weight: .*"a".*"x"') as raised:
            Segmenter(words, count_field=1)
        self.assertEqual(raised.exception.code, "bad-weight")
        with self.assertRaisesRegex(DictionaryError, "no-weight"):
            Segmenter(words, cost_field=2, unknown_cost=1)
        for arguments in ({}, {"count_field": 1, "cost_field": 1}, {"cost_field": 1},
                          {"count_field": 1, "unknown_cost": 1}):
            self.assertRaises(TypeError, Segmenter, words, **arguments)
        self.assertRaises(ValueError, Segmenter, words, count_field=0)

    def test_replacement(self):
        words = Dictionary.of({"東京": ["Tokyo|Edo", ""], "京": ["", "x"], "😀": [":)\ud800"[:2]]})
        for text, options, expected in (
                ("私は東京\ud800京😀\udcff", {}, "私はTokyo|Edo\ud800京:)\udcff"),
                ("東京東京", {"alternatives": "|"}, "TokyoTokyo"),
                ("a東京b京", {"field": 2, "remove_empty": True}, "abx"),
                ("東京".encode() + b"\xff\0", {"alternatives": "|"}, b"Tokyo\xff\0")):
            self.assertEqual(words.replace(text, **options), expected)
            result, edits = words.replace_with_edits(text, **options)
            self.assertEqual(result, expected)
            rest, rest_of_result = text, result
            for edit in reversed(edits):
                self.assertIn(text[edit.start:edit.end],
                              words if options.get("field") != 2 else ("東京", "京"))
                rest = rest[:edit.start] + rest[edit.end:]
                rest_of_result = rest_of_result[:edit.result_start] + \
                    rest_of_result[edit.result_end:]
            self.assertEqual(rest, rest_of_result)
        self.assertRaises(ValueError, words.replace, "", 0)


class LifetimeTest(FolderTest):
    def test_a_closed_dictionary_raises_and_goes_with_its_last_search(self):
        with Dictionary.open("sample.bin") as words:
            pending, keys = words.find_all_each(["京"]), iter(words)
            next(keys)
        for use in (lambda: words.lookup("京"), lambda: "京" in words, words.__enter__,
                    lambda: words.find_all("京"), lambda: words.segment_each(["京"]),
                    lambda: pickle.dumps(words), lambda: len(words), lambda: list(words.keys("")),
                    lambda: Segmenter(words, count_field=1), lambda: words.digest):
            self.assertRaisesRegex(ValueError, "closed", use)
        self.assertEqual((len(next(pending)), next(keys)), (1, "東京"))
        del pending, keys
        self.assertEqual(mappings_of("sample.bin"), 0)

    def test_columns_outlive_the_dictionary(self):
        starts = Dictionary.of({"a": ""}).find_columns(["xxa"] * 10000).start
        gc.collect()
        self.assertEqual((list(starts), starts.format, starts.contiguous),
                         ([2] * 10000, "I", True))

    def test_pickling_keeps_path_mode_and_content(self):
        words = [Dictionary.open("sample.bin", copy) for copy in (False, True)]
        words += [Dictionary.from_bytes(Path("sample.bin").read_bytes()), DictionarySet(words)]
        for each in words:
            with contextlib.chdir("/"):
                self.assertEqual(pickle.loads(pickle.dumps(each)), each)
        self.assertEqual(words[0].digest, words[2].digest)
        self.assertEqual(words[2].to_bytes(), Path("sample.bin").read_bytes())
        pickled = pickle.dumps(words[0])
        copies = [pickle.loads(pickled) for _ in range(100)]
        self.assertEqual(mappings_of("sample.bin"), 1)
        del copies
        build("new\tword\n", "sample.bin")
        with self.assertRaisesRegex(DigestError, "sample.bin: not the image that was pickled"):
            pickle.loads(pickled)

    def test_images_that_cannot_be_opened(self):
        for path, error in (("none", FileNotFoundError), (".", IsADirectoryError),
                            ("a\0b", ValueError), (None, TypeError)):
            self.assertRaises(error, Dictionary.open, path)
        bad = Path("sample.bin").read_bytes()[:-1]
        Path("bad.bin").write_bytes(bad)
        for use, path in ((lambda: Dictionary.open("bad.bin"), os.path.abspath("bad.bin")),
                          (lambda: Dictionary.from_bytes(bad), None)):
            with self.assertRaisesRegex(ImageError, f"^{path}: header: " if path else "^header: "
                                        ) as raised:
                use()
            error = pickle.loads(pickle.dumps(raised.exception))
            self.assertEqual((error.code, error.path, str(error)),
                             ("header", path, str(raised.exception)))


class ReloaderTest(FolderTest):
    def test_it_swaps_images_under_readers_but_takes_no_bad_one(self):
        words = Reloader("sample.bin", interval=0)
        old = words.dictionary
        build("new\tword\n", "sample.bin")
        wait_until(lambda: "new" in words.dictionary)
        self.assertIn("東京", old)
        del old
        self.assertEqual(mappings_of("sample.bin (deleted)"), 0)
        self.assertIn("new", pickle.loads(pickle.dumps(words)).dictionary)

        Path("bad").write_bytes(b"no image")
        os.replace("bad", "sample.bin")
        wait_until(lambda: words.dictionary is not None and words.error)
        self.assertRaises(ImageError, words.reload)
        self.assertIn("new", words.dictionary)
        build(SAMPLE, "sample.bin")
        self.assertIs(words.reload(), words.dictionary)
        self.assertIsNone(words.error)

    def test_it_goes_on_when_a_thread_cannot_start(self):
        words = Reloader("sample.bin", interval=0)
        build("new\tword\n", "sample.bin")
        with mock.patch.object(threading.Thread, "start", side_effect=RuntimeError("no thread")):
            self.assertIn("東京", words.dictionary)
            self.assertIsInstance(words.error, RuntimeError)
        wait_until(lambda: "new" in words.dictionary)

    @unittest.skipIf(os.environ.get("EMULATED") == "TRUE",
                     "QEMU may end where a forked process starts a thread")
    def test_a_child_process_goes_on_where_a_load_was_under_way(self):
        words = Reloader("sample.bin", interval=0)
        build("new\tword\n", "sample.bin")
        loading, forked = threading.Event(), threading.Event()

        def load_slowly(*_):
            loading.set()
            forked.wait()
            return Dictionary("sample.bin")

        def reloads():
            wait_until(lambda: "new" in words.dictionary)
            return "new" in words.reload()

        with mock.patch.object(Dictionary, "open", load_slowly):
            self.assertIn("東京", words.dictionary)
            loading.wait()
        self.assertEqual(status_of_child(reloads), 0)
        forked.set()
        wait_until(lambda: "new" in words.dictionary)


class BuildTest(FolderTest):
    def test_errors_say_what_and_where(self):
        Path("source.tsv").write_text("a\n")
        opened = self.stack.enter_context(open("source.tsv", encoding="utf-8"))
        for source, place, code in (
                (io.StringIO("a\tb\nc\n"), "2:2", "no-field"),
                (io.BytesIO(b"a\t\nb\xff\t\n"), "2:2", "bad-utf8"),
                ([("a", "b"), ("c", [])], "2:2", "no-field"),
                ([("a", "b"), ("c", ["x", "y\tz"])], "2:6", "bad-separator"),
                ({"a": b"x\0"}, "1:4", "nul"),
                ("source.tsv", "source.tsv:1:2", "no-field"),
                (opened, "source.tsv:1:2", "no-field")):
            with self.assertRaisesRegex(BuildError, f"^{place}: {code}: ") as raised:
                Dictionary.build(source, "image.bin")
            error = pickle.loads(pickle.dumps(raised.exception))
            self.assertEqual((f"{error.line}:{error.column}", error.code, str(error.problems[0])),
                             (place.removeprefix("source.tsv:"), code, str(error)))
        for source, image, code in (("none", "image.bin", "cannot-read"),
                                    ("sample.bin", "none/image.bin", "cannot-write")):
            with self.assertRaisesRegex(BuildError, f"^none.*: {code}: ") as raised:
                Dictionary.build(source, image)
            self.assertEqual((raised.exception.errno, raised.exception.line), (2, None))
        for data, words in (([], "the item has no data"), ("y\tz", "a field has a tab")):
            with self.assertRaisesRegex(BuildError, words):
                Dictionary.build([("a", data)], None)
        for items, error in ((["ab"], TypeError), ([("a", 1)], TypeError), ([("a", None)], TypeError),
                             ([("a", [1])], TypeError), ([("a",)], ValueError),
                             ([("a", "\ud800")], ValueError),
                             ((1 / 0 for _ in "a"), ZeroDivisionError), (5, TypeError)):
            self.assertRaises(error, Dictionary.build, items, "image.bin")
        self.assertFalse(Path("image.bin").exists())

    def test_every_kind_of_source_and_target(self):
        Path("source.tsv").write_text(SAMPLE)
        records = [(key, dictionary.fields(data)) for key, data in Dictionary.open("sample.bin")
                   .items()]
        expected = Path("sample.bin").read_bytes()
        for source in ("source.tsv", b"source.tsv", Path("source.tsv"), io.StringIO(SAMPLE),
                       io.BytesIO(SAMPLE.encode()), records, dict(records), iter(records)):
            image = io.BytesIO()
            self.assertEqual(Dictionary.build(source, image).keys, 3)
            self.assertEqual(image.getvalue(), expected)
        many = {f"key{number}": ["line\nof", str(number)] for number in range(10000)}
        self.assertEqual(list(Dictionary.of(many).lookup_each(many)),
                         [f"{line}\t{number}\t" for line, number in many.values()])

    def test_reports_and_options(self):
        Path("source").write_text("a|\\009|b;😀|x;|y;a|z;", "utf-8")
        for image in (None, Path("image.bin")):
            report = Dictionary.build(Path("source"), image, lenient=True, field_separator="|",
                                      record_separator=";")
            self.assertEqual((report.records, report.problem_count), (4, 1))
            self.assertEqual([problem.severity for problem in report.problems], ["warning"])
        self.assertEqual((report.keys, report.image_bytes), (2, os.path.getsize("image.bin")))
        self.assertEqual(Dictionary.open("image.bin").lookup("a"), "\\009\tb\t;z\t")
        with self.assertRaises(BuildError) as raised:
            build("a\nb\nc\n", problem_limit=2)
        self.assertEqual([problem.line for problem in raised.exception.problems], [1, 2])
        for separator in ("", "\0", "a\0"):
            with self.assertRaisesRegex(BuildError, "bad-separator"):
                build(SAMPLE, field_separator=separator)
        self.assertEqual(build("\ufeffa\tb\r\n", from_windows=True).problem_count, 0)
        self.assertEqual(Dictionary.open("image.bin").lookup("a"), "b\t")
        self.assertEqual(build("", allow_empty=True).keys, 0)
        self.assertEqual(list(Dictionary.open("image.bin")), [])

    def test_progress_tells_and_stops(self):
        reported = []
        build(SAMPLE, progress=lambda *step: reported.append(step))
        self.assertEqual(list(dict(step[:2] for step in reported)),
                         ["read", "place", "write"])
        self.assertEqual(reported[-1], ("write", *[os.path.getsize("image.bin")] * 2))

        interrupts = [signal.SIGINT]  # one stops the build; another might come after it

        def interrupt(*_):
            if interrupts:
                os.kill(os.getpid(), interrupts.pop())
            time.sleep(0.2)

        for progress, error in ((lambda *_: False, BuildStopped), (interrupt, KeyboardInterrupt),
                                (lambda *_: 1 / 0, ZeroDivisionError)):
            self.assertRaises(error, build, SAMPLE, "stopped.bin", progress=progress)
            self.assertFalse(Path("stopped.bin").exists())


class PackageTest(unittest.TestCase):
    def test_package_and_library_have_one_version(self):
        project = tomllib.loads((PROJECT / "pyproject.toml").read_text("utf-8"))["project"]
        self.assertEqual(project["version"], dictionary.__version__)
