"""The classes that users open, search and close."""

import io
import os
import reprlib
from collections.abc import Callable, Iterable
from typing import Any

from ._build import build
from ._digest import DigestError, digest_of
from ._image import Image
from ._searchable import Searchable
from ._source import Source

_Path = str | bytes | os.PathLike[Any]


class Dictionary(Searchable):
    """An open image. ``Searchable`` has the searches.

    It is pickled as its path and a digest of its bytes. Unpickling opens the path again, and raises
    DigestError if another image is there. A dictionary that was not opened from a file is pickled
    as its bytes.
    """

    build = staticmethod(build)

    def __init__(self, path: _Path, copy: bool = False) -> None:
        """The same as ``open``."""
        self._path: str | None = os.path.abspath(os.fsdecode(path))
        self._copy = copy
        self._image = Image.of_file(self._path, copy)

    @classmethod
    def open(cls, path: _Path, copy: bool = False) -> "Dictionary":
        """Verifies and opens an image file. Its pages are shared with all processes that have it
        open. An unchanged file that this process already has open is neither mapped nor verified
        again. The file must not change while it is open, but another file may take its place. With
        ``copy``, the file is read into memory and may change.

        Raises ImageError if the file is not a valid image, and OSError, such as FileNotFoundError,
        if it cannot be read.
        """
        return cls(path, copy)

    @classmethod
    def from_bytes(cls, data: bytes | bytearray | memoryview) -> "Dictionary":
        """Verifies and opens the bytes of an image. A ``bytes`` object is not copied."""
        dictionary = cls.__new__(cls)
        dictionary._path, dictionary._copy = None, False
        dictionary._image = Image.of_bytes(bytes(data))
        return dictionary

    @classmethod
    def of(cls, source: Source, *, folded: bool = False) -> "Dictionary":
        """Builds a dictionary in memory, as ``build`` does, and opens it.

        >>> Dictionary.of({"東京": ["noun", "Tokyo"]})["東京"]
        'noun\\tTokyo\\t'
        """
        image = io.BytesIO()
        build(source, image, folded=folded)
        return cls.from_bytes(image.getvalue())

    def to_bytes(self) -> bytes:
        """The bytes of the image."""
        return bytes(self._opened().content())

    @property
    def path(self) -> str | None:
        """The image file, as an absolute path; None if it was not opened from one."""
        return self._path

    @property
    def digest(self) -> str:
        """The SHA-256 of the image's bytes, in hexadecimal."""
        return digest_of(self._opened())

    def __len__(self) -> int:
        return self.describe().keys

    def __reduce__(self) -> tuple[Callable[..., Any], tuple[Any, ...]]:
        if self._path is None:
            return type(self).from_bytes, (self.to_bytes(),)
        return _reopened, (type(self), self._path, self._copy, self.digest)

    def __repr__(self) -> str:
        place = "in memory" if self._path is None else repr(self._path)
        return f"<{'closed ' if self.closed else ''}Dictionary {place}>"


class DictionarySet(Searchable):
    """Several dictionaries that are searched as one. Where the same stretch of a text is a key of
    several, the last of them wins; with ``every_image``, it is found in each. ``Match.image`` is
    the number of the dictionary, from 0. The dictionaries may be closed before the set.

    >>> own = Dictionary.of({"東京": "my town"})
    >>> words = DictionarySet([Dictionary.open("sample.bin"), own])
    >>> [(match.key, match.data, match.image) for match in words.segment("東京、京")]
    [('東京', 'my town\\t', 1), ('京', 'noun\\tcapital\\t', 0)]
    """

    def __init__(self, dictionaries: Iterable[Dictionary]) -> None:
        self.dictionaries = tuple(dictionaries)
        """The dictionaries of the set, 1 to 64."""
        for number, each in enumerate(self.dictionaries):
            if not isinstance(each, Dictionary):
                raise TypeError(f"item {number} (from 0) is {reprlib.repr(each)}: "
                                "expected a Dictionary")
        self._image = Image.of_set([each._opened() for each in self.dictionaries])

    def __len__(self) -> int:
        return self._opened().count_keys("")

    def __reduce__(self) -> tuple[Callable[..., Any], tuple[Any, ...]]:
        return type(self), (self.dictionaries,)

    def __repr__(self) -> str:
        return f"<{'closed ' if self.closed else ''}DictionarySet of {list(self.dictionaries)}>"


def _reopened(kind: type[Dictionary], path: str, copy: bool, digest: str) -> Dictionary:
    dictionary = kind(path, copy)
    if dictionary.digest != digest:
        raise DigestError(path, digest, dictionary.digest)
    return dictionary
