"""Many texts for one call of the library."""

import reprlib
from array import array
from collections.abc import Iterable, Iterator, Sequence
from ctypes import c_char_p, c_uint64, c_void_p, cast, sizeof
from io import BytesIO
from itertools import accumulate, islice
from typing import Any, AnyStr

from ._codec import Codec, Codecs

_ADDRESS, _ADDRESS_SIZE = "Q", sizeof(c_uint64)


def address_of(content: bytes) -> int:
    return cast(c_char_p(content), c_void_p).value or 0


class PackedTexts:
    """An array of DictionaryText."""

    def __init__(self, texts: Iterable[bytes]) -> None:
        written = BytesIO()
        sizes = list(map(written.write, texts))
        self.count = len(sizes)
        self._bytes = written.getvalue()
        places = accumulate(sizes, initial=address_of(self._bytes))
        self._items = array(_ADDRESS, bytes(2 * _ADDRESS_SIZE * self.count))
        self._items[0::2] = array(_ADDRESS, list(islice(places, self.count)))
        self._items[1::2] = array(_ADDRESS, sizes)
        self.address = self._items.buffer_info()[0]


class Batch(list[Any]):
    """Texts of one kind. With ``skip_missing``, None and NaN count as empty texts."""

    def __init__(self, texts: Iterable[Any], first: int, codecs: Codecs,
                 skip_missing: bool) -> None:
        super().__init__(texts)
        self.first = first
        """How many texts were in the batches before."""
        self.codec: Codec[Any] = codecs.str
        if self._has_bytes():
            self.codec = codecs.bytes
        if set(map(type, self)) != {self.codec.kind}:
            self._check(skip_missing)
        self.packed = self.codec.encode_all(self, PackedTexts)

    def _has_bytes(self) -> bool:
        return isinstance(next((text for text in self if not _is_missing(text)), None), bytes)

    def _check(self, skip_missing: bool) -> None:
        kind = self.codec.kind
        for number, text in enumerate(self):
            if skip_missing and _is_missing(text):
                self[number] = kind()
            elif not isinstance(text, kind):
                raise TypeError(f"item {self.first + number} (from 0) is {reprlib.repr(text)}: "
                                "expected str, all of them, or bytes")


def require_many(texts: object) -> None:
    if isinstance(texts, (str, bytes)):
        raise TypeError("expected many texts, not one")


def batches(texts: Iterable[AnyStr], size: int, codecs: Codecs,
            skip_missing: bool) -> Iterator[Batch]:
    require_many(texts)
    return _batches(iter(texts), size, codecs, skip_missing)


def _batches(texts: Iterator[Any], size: int, codecs: Codecs,
             skip_missing: bool) -> Iterator[Batch]:
    first = 0
    while batch := Batch(islice(texts, size), first, codecs, skip_missing):
        yield batch
        first += len(batch)


def _is_missing(text: object) -> bool:
    return text is None or (isinstance(text, float) and text != text)
