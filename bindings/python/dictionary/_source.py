"""Sources of images, in the library's form."""

import os
from array import array
from collections.abc import Iterable, Iterator, Mapping
from ctypes import sizeof
from itertools import chain, islice
from typing import IO, Any

from . import _library
from ._library import NextItem, Text, path_bytes
from ._texts import PackedTexts, address_of

_Text = str | bytes
_Item = tuple[_Text, _Text | Iterable[_Text]]
Source = (str | bytes | os.PathLike[Any] | IO[str] | IO[bytes] | Mapping[Any, Any] |
          Iterable[_Item])

_ITEMS_AT_ONCE = 4096


def struct_of(source: Source) -> _library.Source:
    """The struct. It keeps alive what it refers to. Raises what a file or an iterator raises."""
    if isinstance(source, (str, bytes, os.PathLike)):
        return _library.Source(path=path_bytes(source))
    content: Any = source
    if is_file(source):
        return _Bytes(content.read())
    items = content.items() if isinstance(source, Mapping) else content
    return _library.Source(nextItem=_reader(list(_chunks(items))))


def is_file(source: Source) -> bool:
    return hasattr(source, "read") and not isinstance(source, Mapping)


class _Bytes(_library.Source):
    def __init__(self, content: _Text) -> None:
        self._content = _encoded(content)
        super().__init__(bytes=Text(address_of(self._content), len(self._content)))


class _Chunk:
    """Some items in the library's form, so that its calls run little Python."""

    def __init__(self, items: list[tuple[int, Any]]) -> None:
        records = [_fields(number, item) for number, item in items]
        self._counts = array("I", map(len, records))
        self._packed = PackedTexts(chain.from_iterable(records))

    def __iter__(self) -> Iterator[tuple[int, int]]:
        """The address and the number of the fields of each item."""
        address = self._packed.address
        for count in self._counts:
            yield address, count
            address += count * sizeof(Text)


def _chunks(items: Iterable[Any]) -> Iterator[_Chunk]:
    numbered = enumerate(items)
    while chunk := list(islice(numbered, _ITEMS_AT_ONCE)):
        yield _Chunk(chunk)


def _reader(chunks: Iterable[_Chunk]) -> Any:
    items = chain.from_iterable(chunks)

    def next_item(_: object, fields: Any, count: Any) -> bool:
        for fields[0], count[0] in items:
            return True
        return False
    return NextItem(next_item)


def _fields(number: int, item: Any) -> list[bytes]:
    """The key and the data fields of an item."""
    try:
        if isinstance(item, (str, bytes)):
            raise TypeError("expected a key and its data")
        key, data = item
        if not isinstance(data, Iterable):
            raise TypeError("expected a data field or an iterable of some, "
                            f"not {type(data).__name__}")
        return list(map(_encoded, (key, data) if isinstance(data, (str, bytes)) else (key, *data)))
    except TypeError as error:
        raise TypeError(f"item {number} (from 0): {error}") from None
    except ValueError as error:
        raise ValueError(f"item {number} (from 0): {error}") from None


def _encoded(text: _Text) -> bytes:
    if isinstance(text, str):
        return text.encode()
    if not isinstance(text, bytes):
        raise TypeError(f"expected str or bytes, not {type(text).__name__}")
    return text
