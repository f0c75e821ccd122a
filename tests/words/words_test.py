#!/usr/bin/env python3
"""Compares whole words, folding and sets with other software, over real text in many languages.

usage: LIBRARY=PATH words_test.py [-v]

Whole words are compared with those of the package python3-regex, folding with that of Python, and
what a set finds with what one image of all its sources finds. The texts are those of the package
debian-handbook.
"""

import ctypes
import glob
import html
import os
import random
import re
import sys
import unicodedata
import unittest
from ctypes import byref, c_char_p, c_double, c_int, c_int64, c_size_t, c_uint32, c_uint64

try:
    import regex
except ImportError:
    sys.exit(77)
if not glob.glob("/usr/share/doc/debian-handbook/html/en-US"):
    sys.exit(77)

LANGUAGES = ("en-US", "de-DE", "ru-RU", "zh-CN", "ja-JP", "ko-KR", "fa-IR", "el-GR")
PAGES = "/usr/share/doc/debian-handbook/html/%s/*.html"
MARKUP = re.compile(r"<(script|style).*?</\1>|<[^>]*>", re.S)
CHARACTERS_OF_EACH = 15_000

ALL, LONGEST, SEGMENT = range(3)
CLASSIC = 5
CODE_POINTS = 1
BORROW = 3

# The classes as the documentation has them, in terms of another implementation of Unicode.
WITHOUT_BLANKS = """Hani Hira Kana Bopo Yiii Tang Nshu Kits Thai Laoo Khmr Mymr Tale Talu Lana Tavt
    Ahom Tibt Java Bali""".split()
SCRIPTS = "".join(rf"\p{{sc={name}}}" for name in WITHOUT_BLANKS)
USERS = "".join(rf"\p{{scx={name}}}" for name in WITHOUT_BLANKS)
SHARED = rf"[[\p{{sc=Zyyy}}&&[{USERS}]]--[\p{{scx=Latn}}\p{{scx=Bugi}}]]"
LETTER = rf"[[\p{{L}}\p{{Nd}}]--[{SCRIPTS}{SHARED}]]"
WORD = regex.compile(rf"{LETTER}(?:{LETTER}|[\p{{M}}\u00AD\u200C\u200D])*", regex.V1)


class Text(ctypes.Structure):
    _fields_ = [("bytes", c_char_p), ("size", c_size_t)]

    def __init__(self, content=b""):
        super().__init__(content, len(content))


class Error(ctypes.Structure):
    _fields_ = [("code", c_int), ("severity", c_int), ("systemError", c_int), ("file", c_int),
                ("path", c_char_p), ("line", c_uint64), ("column", c_uint64), ("cell", c_int64),
                ("offset", c_int64), ("text", ctypes.c_char * 256)]


class FindOptions(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("mode", c_int), ("unit", c_int),
                ("segmenter", ctypes.c_void_p), ("wholeWords", ctypes.c_bool),
                ("everyImage", ctypes.c_bool), ("unknownPieces", ctypes.c_bool),
                ("joinedRuns", ctypes.c_bool)]


class Match(ctypes.Structure):
    _fields_ = [("start", c_size_t), ("length", c_size_t), ("data", ctypes.c_void_p),
                ("dataSize", c_size_t), ("dataNumber", c_uint32), ("image", c_uint32)]


class Matches(ctypes.Structure):
    _fields_ = [("items", ctypes.POINTER(Match)), ("count", c_size_t), ("capacity", c_size_t)]


class Source(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("path", c_char_p), ("bytes", Text),
                ("nextItem", ctypes.c_void_p), ("context", ctypes.c_void_p)]


class Buffer(ctypes.Structure):
    _fields_ = [("bytes", ctypes.POINTER(ctypes.c_char)), ("size", c_size_t)]


class Target(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("path", c_char_p), ("buffer", ctypes.POINTER(Buffer))]


class BuildOptions(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("fieldSeparator", c_char_p), ("recordSeparator", c_char_p),
                ("problemLimit", ctypes.c_uint), ("lenient", ctypes.c_bool),
                ("fromWindows", ctypes.c_bool), ("allowEmpty", ctypes.c_bool),
                ("folded", ctypes.c_bool), ("onProblem", ctypes.c_void_p),
                ("onProgress", ctypes.c_void_p), ("context", ctypes.c_void_p)]


LIBRARY = ctypes.CDLL(os.environ["LIBRARY"])
for opener in (LIBRARY.dictionaryOpenBytes, LIBRARY.dictionaryOpenSet):
    opener.restype = ctypes.c_void_p


def sized(record):
    record.size = ctypes.sizeof(record)
    return record


def build(words, folded=False):
    """The image of keys with their data, one field each."""
    source = "".join(f"{key}\t{data}\n" for key, data in words.items()).encode()
    buffer = Buffer()
    error = Error()
    LIBRARY.dictionaryBuildFrom(
        byref(sized(Source(bytes=Text(source)))),
        byref(sized(Target(buffer=ctypes.pointer(buffer)))),
        byref(sized(BuildOptions(folded=folded))), None, byref(error))
    assert error.code == 0, error.text
    image = ctypes.string_at(buffer.bytes, buffer.size)
    LIBRARY.dictionaryFreeBuffer(byref(buffer))
    return image


class Dictionary:
    """An open image, or a set of several."""

    def __init__(self, *images):
        self.images = images
        error = Error()
        handles = [LIBRARY.dictionaryOpenBytes(Text(image), BORROW, byref(error))
                   for image in images]
        assert all(handles), error.text
        self.handle = ctypes.c_void_p(handles[0])
        if len(handles) > 1:
            several = (ctypes.c_void_p * len(handles))(*handles)
            self.handle = ctypes.c_void_p(
                LIBRARY.dictionaryOpenSet(several, c_size_t(len(handles)), byref(error)))

    def find(self, text, **options):
        """Start, length and data of each match; with everyImage the image, too."""
        found = Matches()
        error = Error()
        given = sized(FindOptions(unit=CODE_POINTS, **options))
        LIBRARY.dictionaryFindMatches(self.handle, byref(given), Text(text.encode()),
                                      byref(found), byref(error))
        assert error.code == 0, error.text
        matches = [(match.start, match.length, ctypes.string_at(match.data, match.dataSize),
                    *[match.image][: given.everyImage]) for match in found.items[: found.count]]
        LIBRARY.dictionaryFreeMatches(byref(found))
        return matches


def handbook(language):
    for path in sorted(glob.glob(PAGES % language)):
        with open(path, encoding="utf-8") as page:
            yield " ".join(html.unescape(MARKUP.sub(" ", page.read())).split())


def ascii_share(text):
    return sum(map(str.isascii, text)) / (len(text) or 1)


def texts():
    """A text in each language, from its best translated pages, and one of all of them mixed."""
    found = []
    for language in LANGUAGES:
        pages = sorted(handbook(language), key=ascii_share)
        found.append(" ".join(pages)[:CHARACTERS_OF_EACH])
    pieces = [text[start : start + 40] for text in found for start in range(0, 8000, 80)]
    random.Random(1).shuffle(pieces)
    return [*found, "".join(pieces)]


TEXTS = texts()


def pieces_of(text, seed):
    """Words, beginnings of words, and any other stretches, each with its own data."""
    chance = random.Random(seed)
    keys = set(text.split()[::7])
    for _ in range(2000):
        start = chance.randrange(len(text))
        keys.add(text[start : start + chance.randint(1, 12)])
    return {key: f"{seed}:{number}" for number, key in enumerate(sorted(keys)) if key.strip(" ")}


def longest_of(matches):
    return list({start: (start, length, *rest) for start, length, *rest in matches}.values())


def segments_of(matches):
    end = 0
    for start, length, *rest in longest_of(matches):
        if start >= end:
            end = start + length
            yield start, length, *rest


def by_mode(every):
    return {ALL: every, LONGEST: longest_of(every), SEGMENT: list(segments_of(every))}


def fold(character):
    """Simple case folding, made from Python's full one, and ASCII for full-width forms."""
    if "\uFF01" <= character <= "\uFF5E" or character == "\u3000":
        character = unicodedata.normalize("NFKC", character)
    for other in (character.casefold(), character.lower()):
        if len(other) == 1 and other.casefold() == character.casefold():
            return other
    return character


def folded(text):
    return "".join(map(fold, text))


def assigned():
    return [chr(code) for code in (*range(1, 0x20000), *range(0xE0000, 0xE0200))
            if unicodedata.category(chr(code)) not in ("Cn", "Cs")]


class WholeWords(unittest.TestCase):
    def whole(self, text, matches):
        """Those of the matches that are whole words."""
        inside = {place for word in WORD.finditer(text) for place in range(*word.span())[1:]}
        return [match for match in matches if not {match[0], match[0] + match[1]} & inside]

    def test_equal_a_filter_by_regular_expression(self):
        for number, text in enumerate(TEXTS):
            words = Dictionary(build(pieces_of(text, number)))
            every = words.find(text)
            whole = self.whole(text, every)
            self.assertLess(500, len(whole))
            self.assertLess(len(whole), len(every))
            for mode, expected in by_mode(whole).items():
                self.assertEqual(words.find(text, mode=mode, wholeWords=True), expected)

    def test_equal_it_for_every_character(self):
        words = Dictionary(build({"a": "", "東": ""}))
        text = "".join(f" a{character}a東{character}東a" for character in assigned())
        self.assertEqual(words.find(text, wholeWords=True), self.whole(text, words.find(text)))


class Folding(unittest.TestCase):
    def setUp(self):
        self.pieces = [pieces_of(text, number) for number, text in enumerate(TEXTS)]
        self.images = [build(pieces, folded=True) for pieces in self.pieces]
        self.folded_before = [self.joined(pieces) for pieces in self.pieces]

    def joined(self, pieces):
        """Folded keys, each with the data of all keys that fold to it."""
        keys = {}
        for key, data in pieces.items():
            keys.setdefault(folded(key), []).append(data)
        return {key: "\t;".join(every) for key, every in keys.items()}

    def test_equals_a_search_in_text_folded_before(self):
        for text, image, keys in zip(TEXTS, self.images, self.folded_before):
            plain = Dictionary(build(keys))
            shouting = "".join(character.upper() if len(character.upper()) == 1 else character
                               for character in text)
            for given in (text, shouting):
                expected = plain.find(folded(given))
                self.assertLess(500, len(expected))
                for mode, matches in by_mode(expected).items():
                    self.assertEqual(Dictionary(image).find(given, mode=mode), matches)
            classic = plain.find(text, mode=CLASSIC)
            self.assertEqual(Dictionary(image).find(text, mode=CLASSIC), classic)

    def test_folds_what_is_folded_to_itself(self):
        for image, keys in zip(self.images, self.folded_before):
            self.assertEqual(build(keys, folded=True), image)

    def test_is_that_of_python_for_every_character(self):
        characters = [character for character in assigned() if character not in "\t\n\\"]
        keys = {fold(character): f"{ord(fold(character)):X}" for character in characters}
        found = Dictionary(build(keys, folded=True)).find("".join(characters))
        self.assertEqual([match[2].decode() for match in found],
                         [f"{ord(fold(character)):X}\t" for character in characters])


class Sets(unittest.TestCase):
    def test_find_what_one_image_of_all_sources_finds(self):
        for number, text in enumerate(TEXTS):
            sources = [pieces_of(text, number + part) for part in (100, 200, 300)]
            union = {key: data for source in sources for key, data in source.items()}
            several = Dictionary(*map(build, sources))
            for mode, expected in by_mode(Dictionary(build(union)).find(text)).items():
                self.assertEqual(several.find(text, mode=mode), expected)

    def test_find_a_stretch_in_every_image_when_told_so(self):
        text = TEXTS[-1]
        sources = [pieces_of(text, part) for part in (100, 200)]
        images = [build(sources[0]), build(sources[1], folded=True)]
        every = sorted(((*match[:2], image, match[2]) for image in range(2)
                        for match in Dictionary(images[image]).find(text)))
        expected = [(start, length, data, image) for start, length, image, data in every]
        self.assertEqual(Dictionary(*images).find(text, everyImage=True), expected)


if __name__ == "__main__":
    unittest.main()
