"""Dictionaries over Unicode text: build an image once, open it anywhere, find its keys in texts.

>>> from dictionary import Dictionary
>>> source = {"東京": ["noun", "Tokyo"], "東京都": ["noun", "Tokyo Metropolis"]}
>>> Dictionary.build(source, "words.bin").keys
2
>>> with Dictionary.open("words.bin") as words:
...     for match in words.find_all("私は東京都に住む。"):
...         print(match.start, match.end, match.key, match.fields)
2 4 東京 ['noun', 'Tokyo']
2 5 東京都 ['noun', 'Tokyo Metropolis']

A search of a ``str`` returns ``str``. A search of ``bytes``, which are read as UTF-8, returns
``bytes``. Offsets are indices of the text itself: ``text[match.start:match.end] == match.key``.

Any function may be called from several threads at once. The interpreter lock is released while the
library searches, builds and opens.
"""

from ._build import BuildError, BuildReport, BuildStopped
from ._columns import Columns
from ._dictionary import Dictionary, DictionarySet
from ._digest import DigestError
from ._errors import DictionaryError, ImageError, Problem
from ._library import library
from ._match import Match, fields, records
from ._reloader import Reloader
from ._replacement import Edit, Replacement
from ._searchable import Description, Searchable
from ._segmenter import Segmenter

__version__: str = library.dictionaryVersion().decode()
"""The version of the shared library in use."""

__all__ = ["BuildError", "BuildReport", "BuildStopped", "Columns", "Description", "Dictionary",
           "DictionaryError", "DictionarySet", "DigestError", "Edit", "ImageError", "Match",
           "Problem", "Reloader", "Replacement", "Searchable", "Segmenter", "fields", "records"]
