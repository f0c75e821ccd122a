#!/usr/bin/env python3
"""Holds image_reader.py against the library: what the example hosts find, every record of a source,
and the worked example of docs/format.md.

usage: image_reader_test.py CLASSIC_HOST CPP_HOST FORMAT_MD SOURCE TEXT
"""

import re
import subprocess
import sys

import image_reader

IMAGE = "image_reader.bin"


def read(name):
    with open(name, encoding="utf-8") as file:
        return file.read()


def lines_of_host(host, source, text):
    """What a host prints after it has built IMAGE, with its progress line in front."""
    done = subprocess.run([host, source, text, IMAGE], check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL)
    return done.stdout.decode().split("\n")


def lines_of_reader(*arguments):
    done = subprocess.run([sys.executable, image_reader.__file__, IMAGE, *arguments], check=True,
                          stdout=subprocess.PIPE)
    return done.stdout.decode().split("\n")


def opened_image():
    with open(IMAGE, "rb") as file:
        return image_reader.Image(file.read())


def check_longest_keys(host, source, text):
    _, _, *keys = lines_of_host(host, source, text)[1:]
    assert lines_of_reader(text) == keys and len(keys) > 1, keys


def check_words_and_all_keys(host, source, text):
    found = [line for line in lines_of_host(host, source, text) if re.match(r"\[| +\d", line)]
    image = opened_image()
    expected = []
    offset = 0
    for line in read(text).splitlines():
        words = (line[start:end] for start, end, _ in image.segment(line))
        expected.append("".join(f"[{word}]" for word in words))
        for start in range(len(line)):
            position = offset + len(line[:start].encode())
            expected += (f"{position:8}  {line[start:end]} "
                         for end, _ in image.keys_at(line, start))
        offset += len(line.encode()) + 1
    assert len(found) == len(expected) > 1
    assert all(line.startswith(start) for line, start in zip(found, expected))


def check_records(source):
    words = {}
    for record in read(source).splitlines():
        key, *fields = record.split("\t")
        words.setdefault(key, []).append("".join(field + "\t" for field in fields))
    image = opened_image()
    for key, data in words.items():
        assert image.lookup(key) == ";".join(data).encode(), key
        for other in (key[:-1], key + "x", "\0" + key, "\U0001F600"):
            assert (image.lookup(other) is not None) == (other in words), other


def check_worked_example(host, page, text):
    """The blocks of the page: its source, in which blanks stand for tabs, and its cells."""
    blocks = re.findall(r"^```text\n(.*?)^```", read(page), re.S | re.M)
    source, cells = next(pair for pair in zip(blocks, blocks[1:]) if pair[1].startswith("cell 0:"))
    with open("format.tsv", "w", encoding="utf-8") as file:
        file.write(re.sub(" +", "\t", source))
    lines_of_host(host, "format.tsv", text)
    assert lines_of_reader() == cells.split("\n")


def main(classic_host, cpp_host, page, source, text):
    check_longest_keys(classic_host, source, text)
    check_words_and_all_keys(cpp_host, source, text)
    check_records(source)
    check_worked_example(classic_host, page, text)


main(*sys.argv[1:])
