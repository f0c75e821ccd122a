#!/usr/bin/env python3
"""Reads dictionary images without the library; docs/format.md explains them.

usage: image_reader.py IMAGE         the header and all cells that are in use
       image_reader.py IMAGE TEXT    the longest key at every position of the file TEXT
"""

import struct
import sys

CELL = struct.Struct("<iii")  # base, check, feature
LENGTH = struct.Struct("<i")
ROOT = -1  # as a check: a child of the root
FREE = (0, 0, -1)


class Image:
    """An image in anything that holds bytes, an mmap, too."""

    def __init__(self, data):
        self.data = data
        self.feature_bytes, _, self.cell_bytes = CELL.unpack_from(data)
        if self.cell_bytes % CELL.size or self.cell_bytes + self.feature_bytes != len(data):
            raise ValueError("not a dictionary image")
        self.cell_count = self.cell_bytes // CELL.size

    def cell(self, index):
        """Base, check and feature of a cell, those of a free one beyond the last."""
        return CELL.unpack_from(self.data, index * CELL.size) if index < self.cell_count else FREE

    def data_at(self, feature):
        """The data text of the record at an offset that a cell holds."""
        start = self.cell_bytes + feature + LENGTH.size
        return self.data[start:start + LENGTH.unpack_from(self.data, start - LENGTH.size)[0]]

    def keys_at(self, text, start):
        """Gives (end, feature) for every key that begins at text[start], shortest first."""
        parent, index = ROOT, ord(text[start])
        for end in range(start + 1, len(text) + 1):
            base, check, feature = self.cell(index)
            if check != parent:
                return
            if base < 0:
                yield end, feature
            if end < len(text):
                parent, index = index, abs(base) + ord(text[end])

    def lookup(self, key):
        """The data text of a key, None when it is not in the dictionary."""
        ends = dict(self.keys_at(key, 0)) if key else {}
        return self.data_at(ends[len(key)]) if len(key) in ends else None

    def longest(self, text):
        """Gives (start, end, feature) for the longest key at every position that has one."""
        for start in range(len(text)):
            keys = list(self.keys_at(text, start))
            if keys:
                yield start, *keys[-1]

    def segment(self, text):
        """Gives the same for the longest keys that follow each other without overlapping."""
        reached = 0
        for start, end, feature in self.longest(text):
            if start >= reached:
                yield start, end, feature
                reached = end


def print_cells(image):
    print("cell 0:", *image.cell(0))
    for index in range(1, image.cell_count):
        if image.cell(index) != FREE:
            print(f"cell {index}:", *image.cell(index))


def print_keys(image, text):
    for start, end, feature in image.longest(text):
        position = len(text[:start].encode())
        data = image.data_at(feature).decode().replace("\t", " ").rstrip(" ")
        print(f"{text[start:end]}/{position}:{data}")


def main(name, text=None):
    with open(name, "rb") as file:
        image = Image(file.read())
    if text is None:
        return print_cells(image)
    with open(text, encoding="utf-8", newline="") as file:
        print_keys(image, file.read())


if __name__ == "__main__":
    main(*sys.argv[1:])
