#!/usr/bin/env python3
"""Compares segmentation by weight and replacement with the tools that people use for them.

usage: peers_test.py DATA LIBRARY DICTOOL FOLDER

DATA is bench/data, which makes dictionaries and texts in FOLDER.
"""

import ctypes
import re
import struct
import subprocess
import sys
import unittest

DATA, LIBRARY, DICTOOL, FOLDER = sys.argv[1:5]

FIND_SEGMENT, FIND_WEIGHTED = 2, 3
UNIT_BYTE, UNIT_CODE_POINT = 0, 1
MATCH = struct.Struct("NNPNII")  # start, length, data with its size, data number, image


class Text(ctypes.Structure):
    _fields_ = [("bytes", ctypes.c_char_p), ("size", ctypes.c_size_t)]

    @staticmethod
    def of(data):
        return Text(data, len(data))


class SegmenterOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("weights", ctypes.c_int), ("field", ctypes.c_uint),
                ("unknown_cost", ctypes.c_double)]


class FindOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("mode", ctypes.c_int), ("unit", ctypes.c_int),
                ("segmenter", ctypes.c_void_p), ("whole_words", ctypes.c_bool),
                ("every_image", ctypes.c_bool), ("unknown_pieces", ctypes.c_bool),
                ("joined_runs", ctypes.c_bool)]


class ReplaceOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("field", ctypes.c_uint),
                ("alternatives", ctypes.c_char_p), ("remove_empty", ctypes.c_bool),
                ("want_edits", ctypes.c_bool)]


class Items(ctypes.Structure):
    _fields_ = [("items", ctypes.c_void_p), ("count", ctypes.c_size_t),
                ("capacity", ctypes.c_size_t)]


class Replacement(ctypes.Structure):
    _fields_ = [("bytes", ctypes.c_void_p), ("size", ctypes.c_size_t),
                ("capacity", ctypes.c_size_t), ("edits", Items)]


library = ctypes.CDLL(LIBRARY)
library.dictionaryOpenFile.restype = ctypes.c_void_p
library.dictionaryMakeSegmenter.restype = ctypes.c_void_p


def sized(structure):
    structure.size = ctypes.sizeof(structure)
    return ctypes.byref(structure)


def succeed(code):
    assert code == 0, f"code {code}"


class Dictionary:
    """An image made from a source of bench/data."""

    def __init__(self, name):
        subprocess.run([DATA, FOLDER, f"{name}.tsv"], check=True, stdout=subprocess.DEVNULL)
        image = f"{FOLDER}/{name}.bin"
        subprocess.run([DICTOOL, "build", f"{FOLDER}/{name}.tsv", image], check=True)
        self.handle = ctypes.c_void_p(library.dictionaryOpenFile(image.encode(), 0, None))
        assert self.handle

    def segment_each(self, texts, count_field):
        """The pieces of every text."""
        made = library.dictionaryMakeSegmenter(
            self.handle, sized(SegmenterOptions(weights=0, field=count_field)), None)
        options = FindOptions(mode=FIND_WEIGHTED, unit=UNIT_CODE_POINT, segmenter=made,
                              unknown_pieces=True)
        views = (Text * len(texts))(*(Text.of(text.encode()) for text in texts))
        ends = (ctypes.c_size_t * len(texts))()
        found = Items()
        succeed(library.dictionaryFindInTexts(self.handle, sized(options), views,
                                              ctypes.c_size_t(len(texts)), ctypes.byref(found),
                                              ends, None))
        matches = list(MATCH.iter_unpack(ctypes.string_at(found.items, found.count * MATCH.size)))
        library.dictionaryFreeMatches(ctypes.byref(found))
        library.dictionaryFreeSegmenter(ctypes.c_void_p(made))
        for text, begin, end in zip(texts, [0, *ends], ends):
            yield [text[start:start + length] for start, length, *_ in matches[begin:end]]

    def replace(self, text):
        result = Replacement()
        options = ReplaceOptions(field=1, alternatives=b" ")
        succeed(library.dictionaryReplaceKeys(self.handle, None, sized(options), Text.of(text),
                                              ctypes.byref(result), None))
        replaced = ctypes.string_at(result.bytes, result.size)
        library.dictionaryFreeReplacement(ctypes.byref(result))
        return replaced


def chinese():
    subprocess.run([DATA, FOLDER, "chinese.txt"], check=True, stdout=subprocess.DEVNULL)
    with open(f"{FOLDER}/chinese.txt", encoding="utf-8") as text:
        return text.read()


class Peers(unittest.TestCase):
    def test_segments_every_run_of_han_as_jieba(self):
        import jieba
        jieba.setLogLevel(60)
        text = chinese()
        self.assertGreater(len(text), 1_000_000)
        runs = re.findall("[\u4e00-\u9fd5]+", text)
        segmented = Dictionary("chinese").segment_each(runs, count_field=1)
        for run, pieces in zip(runs, segmented, strict=True):
            if pieces != list(jieba.cut(run, HMM=False)):
                self.fail(f"{run}: {'/'.join(pieces)}")

    def test_converts_scripts_as_opencc(self):
        text = chinese().encode()
        for direction in ("s2t", "t2s"):
            converted = subprocess.run(["opencc", "-c", f"{direction}.json"], input=text,
                                       stdout=subprocess.PIPE, check=True).stdout
            self.assertNotEqual(converted, text)
            self.assertEqual(Dictionary(direction).replace(text), converted)
            text = converted


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
