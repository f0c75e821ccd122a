#!/usr/bin/env python3
"""Measures the package with a real dictionary. It searches a text line by line, beside the
library's `search` called in a loop and a longest match in Python over a dict of the keys. It looks
up and lists keys, beside a dict and Debian's python3-marisa, if that is installed.

usage: bench.py SOURCE TEXT
"""

import ctypes
import itertools
import random
import sys
import tempfile
import time
from bisect import bisect_left
from collections.abc import Callable, Iterable
from pathlib import Path

from dictionary import Dictionary, Match, fields
from dictionary._library import library

ROUNDS = 3


class Search:
    """The classic entry point: one string for all matches, with byte offsets."""

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
    """The CPU time of the shortest of several runs. Results are dropped as they come."""
    times = []
    for _ in range(ROUNDS):
        begin = time.process_time()
        for _ in run():
            pass
        times.append(time.process_time() - begin)
    return min(times)


def measure_searches(words: Dictionary, search: Search, pure: PurePython,
                     lines: list[str]) -> None:
    first = [line[0] for line in lines]
    assert list(map(pure, lines)) == list(words.find_longest_each(lines)), "they differ"
    raw = [line.encode() for line in lines]
    whole = "\n".join(lines)
    print(f"{len(lines)} lines, {sum(map(len, raw))} bytes, "
          f"{sum(map(len, words.find_longest_each(lines)))} longest keys; us a line:")
    for name, run in {
        "Python, longest keys": lambda: map(pure, lines),
        "search in a loop, one string": lambda: map(search, lines),
        "find_longest": lambda: map(words.find_longest, lines),
        "find_longest, the text at once": lambda: words.find_longest(whole),
        "find_longest_each": lambda: words.find_longest_each(lines),
        "find_longest_each, bytes": lambda: words.find_longest_each(raw),
        "find_columns, longest": lambda: words.find_columns(lines, "longest").start,
        "find_columns, longest, bytes": lambda: words.find_columns(raw, "longest").start,
        "find_all": lambda: map(words.find_all, lines),
        "find_all_each": lambda: words.find_all_each(lines),
        "find_columns, all": lambda: words.find_columns(lines).start,
        "segment": lambda: map(words.segment, lines),
        "segment_each": lambda: words.segment_each(lines),
        "words_each": lambda: words.words_each(lines),
        "replace_each": lambda: words.replace_each(lines),
        "segment, its first character": lambda: map(words.segment, first),
        "segment_each, its first character": lambda: words.segment_each(first),
        "lookup, its first character": lambda: map(words.lookup, first),
    }.items():
        print(f"{name:36}{seconds(run) / len(lines) * 1e6:9.2f}")


def measure_keys(words: Dictionary, data: dict[str, str]) -> None:
    """A million lookups, half of them near misses, and lists of keys. marisa has no data."""
    chance = random.Random(1)
    queries = [key + "x" * (number % 2)
               for number, key in enumerate(chance.choices(list(data), k=1_000_000))]
    prefixes = [key[:2] for key in queries[:1000]]
    ordered = sorted(data)
    print(f"{len(words)} keys, {len(queries)} queries, {len(prefixes)} prefixes; ns each:")
    runs: dict[str, tuple[Callable[[], Iterable[object]], int]] = {
        "lookup_each": (lambda: words.lookup_each(queries), len(queries)),
        "lookup": (lambda: map(words.lookup, queries), len(queries)),
        "dict, get": (lambda: map(data.get, queries), len(queries)),
        "len, the dictionary just opened": (lambda: [len(Dictionary(words.path or "", copy=True))],
                                            1),
        "keys": (words.keys, len(data)),
        "items": (words.items, len(data)),
        "dict, sorted": (lambda: sorted(data), len(data)),
        "keys(prefix), the first ten": (
            lambda: (list(itertools.islice(words.keys(prefix), 10)) for prefix in prefixes),
            len(prefixes)),
        "keys(prefix)": (lambda: (list(words.keys(prefix)) for prefix in prefixes), len(prefixes)),
        "dict, sorted keys and bisect": (
            lambda: (with_prefix(ordered, prefix) for prefix in prefixes), len(prefixes)),
        **marisa_runs(data, queries, prefixes)}
    for name, (run, count) in runs.items():
        print(f"{name:36}{seconds(run) / count * 1e9:14.0f}")


def with_prefix(ordered: list[str], prefix: str) -> list[str]:
    return ordered[bisect_left(ordered, prefix):bisect_left(ordered, prefix + "\U0010ffff")]


def marisa_runs(data: dict[str, str], queries: list[str],
                prefixes: list[str]) -> dict[str, tuple[Callable[[], Iterable[object]], int]]:
    try:
        import marisa
    except ImportError:
        return {}
    keys = marisa.Keyset()
    for key in data:
        keys.push_back(key)
    trie, agent = marisa.Trie(), marisa.Agent()
    trie.build(keys)

    def has(key: str) -> bool:
        agent.set_query(key)
        return bool(trie.lookup(agent))

    def predict(prefix: str) -> list[str]:
        agent.set_query(prefix)
        found = []
        while trie.predictive_search(agent):
            found.append(agent.key_str())
        return found

    return {"marisa, lookup": (lambda: map(has, queries), len(queries)),
            "marisa, all keys": (lambda: predict(""), len(data)),
            "marisa, keys with a prefix": (lambda: map(predict, prefixes), len(prefixes))}


def measure(source: str, lines: list[str], image: str) -> None:
    begin = time.perf_counter()
    report = Dictionary.build(source, image)
    print(f"{report.keys} keys built in {time.perf_counter() - begin:.2f} s")
    data = data_of(source)
    begin = time.perf_counter()
    Dictionary.of((key, fields(text)) for key, text in data.items())
    print(f"from items in memory in {time.perf_counter() - begin:.2f} s")
    words = Dictionary.open(image)
    measure_searches(words, Search(image), PurePython(data), lines)
    measure_keys(words, data)


def main(source: str, text: str) -> None:
    lines = [line for line in Path(text).read_text("utf-8").split("\n") if line]
    with tempfile.TemporaryDirectory() as folder:
        measure(source, lines, f"{folder}/image.bin")


if __name__ == "__main__":
    main(*sys.argv[1:])
