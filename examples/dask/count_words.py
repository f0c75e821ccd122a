#!/usr/bin/env python3
"""Counts the words in a folder of text files by part of speech, on a cluster of dask.

usage: count_words.py SCHEDULER IMAGE FOLDER [FIELD]

FOLDER is one that every worker can read. FIELD is the number of the data field that has the part of
speech, 1 unless given.
"""

import sys
from collections import Counter
from pathlib import Path

from distributed import Client

from dictionary import fields
from dictionary.cluster import upload


def count(path, image, field):
    """How often each part of speech is in a file, which is segmented into words."""
    words = image.dictionary
    with open(path, "rb") as lines:
        found = Counter(words.find_columns(lines, "segment").data_number)
    counts = Counter()
    for number, times in found.items():
        counts[fields(words.data_at(number))[field - 1]] += times
    return counts


def main(scheduler, image, folder, field=1):
    with Client(scheduler) as client:
        counts = client.map(count, sorted(Path(folder).resolve().iterdir()),
                            image=upload(client, image), field=int(field))
        for part_of_speech, times in sorted(sum(client.gather(counts), Counter()).items()):
            print(f"{part_of_speech}\t{times}")


if __name__ == "__main__":
    main(*sys.argv[1:])
