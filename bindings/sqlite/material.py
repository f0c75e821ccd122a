"""A dictionary and a text of Chinese and Japanese from Debian packages: python3-jieba, edict,
manpages-zh and manpages-ja."""

import importlib.machinery
import importlib.util
import itertools
import os
import subprocess

JAPANESE_WORDS = "/usr/share/edict/edict"
PAGES = (("manpages-zh", "/man/zh_CN/"), ("manpages-ja", "/man/ja/"))
LINES_OF_EACH = 30_000


def load_data():
    """The program that makes the benchmarks' data, as a module."""
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../bench/data")
    loader = importlib.machinery.SourceFileLoader("bench_data", path)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench_data", loader))
    loader.exec_module(module)
    return module


data = load_data()


def words():
    """Pairs of a word and its fields; the first field is a count."""
    for word, *fields in data.chinese():
        yield word, tuple(fields)
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


def lines_of(package, folder):
    for page in data.manual_pages(package, folder):
        yield from filter(None, (" ".join(line.split()) for line in page.split("\n")))


def lines():
    """Lines of prose, Chinese ones first."""
    return [line for pages in PAGES
            for line in itertools.islice(lines_of(*pages), LINES_OF_EACH)]
