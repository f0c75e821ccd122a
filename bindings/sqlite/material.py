"""A dictionary and a text of Chinese and Japanese from Debian packages: python3-jieba, edict,
manpages-zh and manpages-ja."""

import glob
import gzip
import itertools
import os
import re
import subprocess

CHINESE_WORDS = "/usr/lib/python3/dist-packages/jieba/dict.txt"
JAPANESE_WORDS = "/usr/share/edict/edict"
PAGES = ("/usr/share/man/zh_CN/man*/*.gz", "/usr/share/man/ja/man*/*.gz")
LINES_OF_EACH = 30_000
MARKUP = re.compile(r"\\f(\(..|\[.*?\]|.)|\\\(..|\\\[.*?\]|\\s[-+]?\d|\\[&|^/,%:]")


def words():
    """Pairs of a word and its fields; the first field is a count."""
    with open(CHINESE_WORDS, encoding="utf-8") as lines:
        for line in lines:
            word, count, kind = line.rstrip("\n").rsplit(" ", 2)
            yield word, (count, kind)
    with open(JAPANESE_WORDS, encoding="euc-jp", errors="ignore") as lines:
        for line in itertools.islice(lines, 1, None):
            yield line.split(" ", 1)[0], ("3", "ja")


def build(dictool, folder):
    """Builds the image in `folder` and returns its path."""
    source, image = os.path.join(folder, "words.tsv"), os.path.join(folder, "words.bin")
    with open(source, "w", encoding="utf-8") as output:
        output.writelines("\t".join((word, *fields)) + "\n" for word, fields in words())
    subprocess.run([dictool, "build", source, image], check=True, capture_output=True)
    return image


def lines_of(pattern):
    for path in sorted(glob.glob(pattern)):
        with gzip.open(path, "rt", encoding="utf-8", errors="ignore") as page:
            for line in page:
                line = " ".join(MARKUP.sub("", line).split())
                if line and not line.startswith((".", "'")):
                    yield line


def lines():
    """Lines of prose, Chinese ones first."""
    return [line for pattern in PAGES
            for line in itertools.islice(lines_of(pattern), LINES_OF_EACH)]
