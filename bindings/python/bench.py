#!/usr/bin/env python3
"""Measures the package over a real dictionary, line by line of a text: against the library's
`search` called in a loop and against a longest match in Python over a dict of the keys.

usage: bench.py SOURCE TEXT
"""

import ctypes
import sys
import tempfile
import time
from collections.abc import Callable, Iterable
from pathlib import Path

from dictionary import Dictionary, Match
from dictionary._library import library

ROUNDS = 5


class Search:
    """The entry point of hosts in C: one string for all matches, with byte offsets."""

    def __init__(self, image: str) -> None:
        library.loadBin.restype = ctypes.c_void_p
        library.search.restype = ctypes.c_void_p
        library.search.argtypes = [ctypes.c_char_p, ctypes.c_void_p, ctypes.c_bool]
        library.freeResult.argtypes = [ctypes.c_void_p]
        self._handle = library.loadBin(image.encode())

    def __call__(self, line: str) -> str:
        result = library.search(line.encode(), self._handle, True)
        try:
            return ctypes.string_at(result).decode()
        finally:
            library.freeResult(result)


class PurePython:
    """Tries the lengths that keys with the same first character have, the longest first."""

    def __init__(self, data: dict[str, str]) -> None:
        self._data = data
        lengths: dict[str, set[int]] = {}
        for key in data:
            lengths.setdefault(key[0], set()).add(len(key))
        self._lengths = {first: sorted(found, reverse=True) for first, found in lengths.items()}

    def __call__(self, line: str) -> list[Match[str]]:
        return [match for start in range(len(line)) for match in self._longest(line, start)]

    def _longest(self, line: str, start: int) -> Iterable[Match[str]]:
        for length in self._lengths.get(line[start], ()):
            key = line[start:start + length]
            if key in self._data:
                return (Match(start, start + len(key), key, self._data[key]),)
        return ()


def data_of(source: str) -> dict[str, str]:
    data: dict[str, list[str]] = {}
    for record in Path(source).read_text("utf-8").split("\n")[:-1]:
        key, _, fields = record.partition("\t")
        data.setdefault(key, []).append(fields + "\t")
    return {key: ";".join(records) for key, records in data.items()}


def seconds(run: Callable[[], Iterable[object]]) -> float:
    """The processor's time in the shortest of several runs. Results are dropped as they come."""
    times = []
    for _ in range(ROUNDS):
        begin = time.process_time()
        for _ in run():
            pass
        times.append(time.process_time() - begin)
    return min(times)


def measure(source: str, lines: list[str], image: str) -> None:
    begin = time.perf_counter()
    report = Dictionary.build(source, image)
    print(f"{report.keys} keys built in {time.perf_counter() - begin:.2f} s")
    words, search, pure = Dictionary.open(image), Search(image), PurePython(data_of(source))
    first = [line[0] for line in lines]
    assert list(map(pure, lines)) == list(words.find_longest_each(lines)), "they differ"

    raw = [line.encode() for line in lines]
    print(f"{len(lines)} lines, {sum(map(len, raw))} bytes, "
          f"{sum(map(len, words.find_longest_each(lines)))} longest keys; us a line:")
    for name, run in {
        "Python, longest keys": lambda: map(pure, lines),
        "search in a loop, one string": lambda: map(search, lines),
        "find_longest": lambda: map(words.find_longest, lines),
        "find_longest_each": lambda: words.find_longest_each(lines),
        "find_longest_each, bytes": lambda: words.find_longest_each(raw),
        "find_all": lambda: map(words.find_all, lines),
        "find_all_each": lambda: words.find_all_each(lines),
        "segment": lambda: map(words.segment, lines),
        "segment_each": lambda: words.segment_each(lines),
        "segment, its first character": lambda: map(words.segment, first),
        "segment_each, its first character": lambda: words.segment_each(first),
        "lookup, its first character": lambda: map(words.lookup, first),
    }.items():
        print(f"{name:36}{seconds(run) / len(lines) * 1e6:7.2f}")


def main(source: str, text: str) -> None:
    lines = [line for line in Path(text).read_text("utf-8").split("\n") if line]
    with tempfile.TemporaryDirectory() as folder:
        measure(source, lines, f"{folder}/image.bin")


if __name__ == "__main__":
    main(*sys.argv[1:])
