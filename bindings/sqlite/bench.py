#!/usr/bin/python3
"""Measures the tokenizer beside trigram and unicode61, in one run, on real Chinese and Japanese text.

usage: DICTIONARY_EXTENSION=.../mod_dictionary.so DICTOOL=.../dictool bench.py
"""

import os
import random
import re
import sqlite3
import statistics
import tempfile
import time

import material

QUERIES = 500
ROUNDS = 5
WITHOUT_BLANKS = re.compile(r"[一-鿿ぁ-んァ-ヶー々]{2,}")


def measure(name, tokenizer, lines, queries, folder):
    path = os.path.join(folder, "bench.db")
    database = sqlite3.connect(path)
    database.enable_load_extension(True)
    database.load_extension(os.environ["DICTIONARY_EXTENSION"])
    database.execute(f'CREATE VIRTUAL TABLE t USING fts5(body, content="", tokenize = "{tokenizer}")')
    began = time.perf_counter()
    with database:
        database.executemany("INSERT INTO t(rowid, body) VALUES (?, ?)", enumerate(lines, 1))
    database.execute("INSERT INTO t(t) VALUES ('optimize')")
    database.commit()
    seconds = time.perf_counter() - began
    times, hits = [], 0
    for _ in range(ROUNDS):
        for query in queries:
            began = time.perf_counter()
            found = database.execute("SELECT rowid FROM t WHERE t MATCH ?", (f'"{query}"',)).fetchall()
            times.append(time.perf_counter() - began)
            hits += len(found)
    database.close()
    size = os.path.getsize(path)
    os.remove(path)
    print(f"{name:28} {seconds:8.2f} {size / 1e6:10.1f} {statistics.median(times) * 1e6:14.0f} "
          f"{statistics.mean(times) * 1e6:12.0f} {hits // ROUNDS:8}")


def main():
    lines = material.lines()
    with tempfile.TemporaryDirectory() as folder:
        image = material.build(os.environ["DICTOOL"], folder)
        drawn = sorted({word for word, _ in material.words()
                        if WITHOUT_BLANKS.fullmatch(word)})
        text = "\n".join(lines)
        random.Random(1).shuffle(drawn)
        queries = [word for word in drawn[:40 * QUERIES] if word in text][:QUERIES]
        megabytes = len(text.encode()) / 1e6
        print(f"{len(lines)} lines, {megabytes:.1f} MB, {len(queries)} words")
        print(f"{'tokenizer':28} {'index, s':>8} {'index, MB':>10} {'query, us p50':>14} "
              f"{'mean, us':>12} {'hits':>8}")
        for mode in ("all", "longest", "segment", "weighted count_field 1"):
            measure(f"dictionary {mode}", f"dictionary '{image}' mode {mode}", lines, queries, folder)
        for other in ("trigram", "unicode61"):
            measure(other, other, lines, queries, folder)


if __name__ == "__main__":
    main()
