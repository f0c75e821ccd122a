"""Tests of the package and of the examples in its documentation."""

import contextlib
import doctest
import io
import os
import pickle
import random
import signal
import tempfile
import threading
import time
import tomllib
import unittest
from pathlib import Path

import dictionary
from dictionary import (BuildError, BuildStopped, Dictionary, ImageError, Match, Reloader, _build,
                        _dictionary, _match, _reloader)

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
    for module in (dictionary, _build, _dictionary, _match, _reloader):
        tests.addTest(doctest.DocTestSuite(module, **options))
    tests.addTest(doctest.DocFileSuite("../README.md", **options))
    return tests


def build(source, image="image.bin", **options):
    file = io.BytesIO(source) if isinstance(source, bytes) else io.StringIO(source)
    return Dictionary.build(file, image, **options)


def is_mapped(name):
    return name in Path("/proc/self/maps").read_text()


def wait_until(holds):
    end = time.monotonic() + 20
    while not holds():
        assert time.monotonic() < end, "it takes too long"
        time.sleep(0.001)


class FolderTest(unittest.TestCase):
    def setUp(self):
        enter_folder(self)
        self.addCleanup(self.stack.close)


class SearchTest(FolderTest):
    def reference(self, keys, text):
        """What each search finds, the slow way. Every key is its data, too."""
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
        keys = ("a", "é", "京", "?", "ab", "éa", "東京", "abb", "東京都")
        build("".join(f"{key}\t{key}\n" for key in keys))
        chance = random.Random(1)
        characters = [*"abé京東都?x\0\n", "\uffff", "\U0001f600", "\ud800", "\udfff"]
        texts = ["".join(chance.choices(characters, k=chance.randrange(30))) for _ in range(300)]
        raw = [text.encode(errors="surrogatepass")[chance.randrange(2):] for text in texts]
        words = Dictionary.open("image.bin")
        for keys, many in ((keys, texts), ([key.encode() for key in keys], raw)):
            expected = [self.reference(keys, text) for text in many]
            for name in SEARCHES:
                found = list(getattr(words, name + "_each")(iter(many)))
                self.assertEqual(found, [each[name] for each in expected])
                self.assertEqual(found, list(map(getattr(words, name), many)))

    def test_lookup_takes_whole_keys(self):
        words = Dictionary.open("sample.bin")
        self.assertEqual(words.lookup("東京".encode()), b"noun\tTokyo\t")
        for key in ("", "東", "東京x", "東京\0", "\U0001f600", "\ud800", b"\xe6", b""):
            self.assertIsNone(words.lookup(key), key)
            self.assertNotIn(key, words)

    def test_arguments_of_other_types_are_refused(self):
        words = Dictionary.open("sample.bin")
        for method in (words.lookup, words.find_all, words.__contains__):
            for argument in (None, 1, bytearray(b"a"), ["a"]):
                self.assertRaises(TypeError, method, argument)
        for texts in ("text", b"text", 1, [1], ["a", b"a"], [b"a", "a"]):
            self.assertRaises(TypeError, lambda: list(words.find_all_each(texts)))

    def test_data_of_any_bytes(self):
        build(b"k\t\xff\xc3\t\nk\t;b\n")
        words = Dictionary.open("image.bin")
        self.assertEqual(words.segment(b"k")[0].data, b"\xff\xc3\t\t;;b\t")
        match, = words.segment("k")
        self.assertEqual(match.fields, ("\udcff\udcc3", "", ";;b"))
        self.assertEqual(match.records, (("\udcff\udcc3", ""), (";b",)))

    def test_other_threads_run_during_a_search(self):
        build("a" * 4000 + "b\t\n")
        words = Dictionary.open("image.bin")
        search = threading.Thread(target=words.find_all, args=(b"a" * 60000,))
        search.start()
        ticks = 0
        while search.is_alive():
            time.sleep(0.001)
            ticks += 1
        self.assertGreater(ticks, 10)


class LifetimeTest(FolderTest):
    def test_a_closed_dictionary_raises_and_goes_with_its_last_search(self):
        with Dictionary.open("sample.bin") as words:
            pending = words.find_all_each(["京"])
        for use in (lambda: words.lookup("京"), lambda: "京" in words, words.__enter__,
                    lambda: words.find_all("京"), lambda: words.segment_each(["京"]),
                    lambda: pickle.dumps(words)):
            self.assertRaisesRegex(ValueError, "closed", use)
        self.assertEqual(len(next(pending)), 1)
        del pending
        self.assertFalse(is_mapped("sample.bin"))

    def test_pickling_keeps_path_and_mode(self):
        for copy in (False, True):
            pickled = pickle.dumps(Dictionary.open("sample.bin", copy))
            with contextlib.chdir("/"):
                words = pickle.loads(pickled)
            self.assertIn("京", words)
            self.assertEqual(is_mapped("sample.bin"), not copy)

    def test_images_that_cannot_be_opened(self):
        for path, error in (("none", FileNotFoundError), (".", IsADirectoryError),
                            ("a\0b", ValueError), (None, TypeError)):
            self.assertRaises(error, Dictionary.open, path)
        Path("bad.bin").write_bytes(Path("sample.bin").read_bytes()[:-1])
        with self.assertRaisesRegex(ImageError, "bad.bin: ") as raised:
            Dictionary.open("bad.bin")
        error = pickle.loads(pickle.dumps(raised.exception))
        self.assertEqual((error.code, error.path), ("header", os.path.abspath("bad.bin")))

    def test_reloader_swaps_images_under_readers_but_takes_no_bad_one(self):
        words = Reloader("sample.bin", interval=0)
        old = words.dictionary
        build("new\tword\n", "sample.bin")
        wait_until(lambda: "new" in words.dictionary)
        self.assertIn("東京", old)
        del old
        self.assertFalse(is_mapped("sample.bin (deleted)"))

        Path("bad").write_bytes(b"no image")
        os.replace("bad", "sample.bin")
        wait_until(lambda: words.dictionary and words.error)
        self.assertRaises(ImageError, words.reload)
        self.assertIn("new", words.dictionary)
        build(SAMPLE, "sample.bin")
        self.assertIs(words.reload(), words.dictionary)
        self.assertIsNone(words.error)


class BuildTest(FolderTest):
    def test_errors_say_what_and_where(self):
        for source, place, code in (("a\tb\nc\n", "2:2", "no-field"), ("a", "1:2", "no-field"),
                                    (b"a\t\nb\xff\t\n", "2:2", "bad-utf8")):
            with self.assertRaisesRegex(BuildError, f"<source>:{place}: {code}: ") as raised:
                build(source)
            error = pickle.loads(pickle.dumps(raised.exception))
            self.assertEqual((error.file, f"{error.line}:{error.column}", error.code),
                             ("<source>", place, code))
        for source, image, code in (("none", "image.bin", "cannot-read"),
                                    ("sample.bin", "none/image.bin", "cannot-write")):
            with self.assertRaisesRegex(BuildError, f"^none.*: {code}: ") as raised:
                Dictionary.build(source, image)
            self.assertEqual((raised.exception.errno, raised.exception.line), (2, None))

    def test_reports_and_options(self):
        Path("source").write_text("a|\\009|b;\U0001f600|x;|y;a|z;", "utf-8")
        for image in (None, Path("image.bin")):
            report = Dictionary.build(Path("source"), image, lenient=True, field_separator="|",
                                      record_separator=";")
            self.assertEqual((report.records, report.refused, report.problem_count), (4, 1, 2))
            self.assertEqual([problem.severity for problem in report.problems],
                             ["refused", "warning"])
        self.assertEqual((report.keys, report.image_bytes), (1, os.path.getsize("image.bin")))
        self.assertEqual(Dictionary.open("image.bin").lookup("a"), "\\009\tb\t;z\t")
        with self.assertRaises(BuildError) as raised:
            build("a\nb\nc\n", problem_limit=2)
        self.assertEqual([problem.line for problem in raised.exception.problems], [1, 2])
        for separator in ("", "\0", "a\0"):
            with self.assertRaisesRegex(BuildError, "bad-separator"):
                build(SAMPLE, field_separator=separator)

    def test_progress_tells_and_stops(self):
        told = []
        build(SAMPLE, progress=lambda *step: told.append(step))
        self.assertEqual(list(dict(step[:2] for step in told)),
                         ["read", "place", "write"])
        self.assertEqual(told[-1], ("write", *[os.path.getsize("image.bin")] * 2))

        interrupts = [signal.SIGINT]  # one stops the build; another might come behind it

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
