"""Handles of the library, and its answers as Python objects."""

import contextlib
import struct
from array import array
from collections.abc import Callable, Iterable, Iterator, Sequence
from ctypes import (Array, addressof, byref, c_bool, c_char, c_void_p, create_string_buffer,
                    string_at)
from functools import lru_cache
from itertools import chain, islice, repeat
from typing import Any, AnyStr

from . import _collector
from ._columns import Columns
from ._errors import ImageError, exception_of
from ._codec import PLACE_SIZE, Codec, Codecs
from ._library import (OPEN_BORROW, OPEN_COPY, OPEN_SHARE, UNIT_BYTE, UNIT_CODE_POINT, Description,
                       Error, FindOptions, Matches, library, path_bytes)
from ._match import Match
from ._texts import Batch, batches, require_many

_TEXTS_PER_CALL = 64
_KEYS_PER_CALL = 1024
_FIRST_KEYS = 16
_MANY_MATCHES = 1000
_MOST_KEPT_MATCHES = 1 << 12
_MOST_SPARE_LISTS = 16

# A match in the library's form: start, length, place of the data, image.
_MATCH = struct.Struct("@NN16s4xI")
# A listed key: where its text begins, its size, place of the data.
_KEY = struct.Struct("@PN16s8x")
_NUL = b"\0"
_Rows = Iterator[tuple[Any, ...]]

Search = tuple[Any, Any]
"""Find options, by unit."""


@lru_cache
def search_of(mode: int, whole_words: bool = False, every_image: bool = False,
              unknown_pieces: bool = False, joined_runs: bool = False,
              segmenter: int | None = None) -> Search:
    def options(unit: int) -> Any:
        return byref(FindOptions(
            mode=mode, unit=unit, segmenter=segmenter, wholeWords=whole_words,
            everyImage=every_image, unknownPieces=unknown_pieces, joinedRuns=joined_runs))
    return options(UNIT_BYTE), options(UNIT_CODE_POINT)


class _Found(Matches):
    """A list of matches, with an error record for the calls that fill it."""

    def __init__(self) -> None:
        super().__init__()
        self.error = Error()
        self.address, self.error_address = addressof(self), addressof(self.error)

    def rows(self) -> _Rows:
        return _MATCH.iter_unpack(string_at(self.items, self.count * _MATCH.size))

    def __del__(self, free: Any = library.dictionaryFreeMatches) -> None:
        free(self.address)


class _FoundLists:
    """Lists to be used again, because making one takes as long as a search."""

    def __init__(self) -> None:
        self._spare: list[_Found] = []

    def take(self) -> _Found:
        try:
            return self._spare.pop()
        except IndexError:
            return _Found()

    def give_back(self, found: _Found) -> None:
        if found.capacity <= _MOST_KEPT_MATCHES and len(self._spare) < _MOST_SPARE_LISTS:
            self._spare.append(found)


def matches_of(text: AnyStr, rows: _Rows, data: Codec[AnyStr]) -> list[Match[AnyStr]]:
    # Match(...) would take apart what already is a tuple.
    new = tuple.__new__
    return [new(Match, (start, start + length, text[start:start + length], data[place], image))
            for start, length, place, image in rows]


def pieces_of(text: AnyStr, rows: _Rows, _: object) -> list[AnyStr]:
    return [text[start:start + length] for start, length, *_ in rows]


_Make = Callable[[Any, _Rows, Codec[Any]], list[Any]]


class Image:
    """An open handle. It closes with the last reference to it; a search under way holds one."""

    handle: int | None = None
    digest: str | None = None

    def __init__(self, handle: int | None, error: Error, kept: object = None) -> None:
        """Takes over the handle, and keeps alive ``kept``, which the handle uses."""
        if handle is None:
            raise exception_of(error, ImageError)
        self.handle, self._kept = handle, kept
        self._codecs, self._lists = Codecs(), _FoundLists()

    def __del__(self, close: Any = library.dictionaryClose) -> None:
        close(self.handle)

    @classmethod
    def of_file(cls, path: str, copy: bool) -> "Image":
        error, raw = Error(), path_bytes(path)  # the error refers to raw
        mode = OPEN_COPY if copy else OPEN_SHARE
        return cls(library.dictionaryOpenFile(raw, mode, byref(error)), error)

    @classmethod
    def of_bytes(cls, data: bytes) -> "Image":
        error = Error()
        handle = library.dictionaryOpenBytes(data, len(data), OPEN_BORROW, byref(error))
        return cls(handle, error, data)

    @classmethod
    def of_set(cls, images: Sequence["Image"]) -> "Image":
        error = Error()
        handles = (c_void_p * len(images))(*(image.handle for image in images))
        handle = library.dictionaryOpenSet(handles, len(images), byref(error))
        return cls(handle, error, images)

    def describe(self) -> Description:
        description, error = Description(), Error()
        if library.dictionaryDescribe(self.handle, byref(description), byref(error)):
            raise exception_of(error)
        return description

    def content(self) -> "Array[c_char]":
        """The bytes of a single image. They last as long as this object."""
        place = library.dictionaryImageBytes(self.handle, 0)
        content: "Array[c_char]" = (c_char * place.size).from_address(place.bytes)
        return content

    def codec(self, text: AnyStr) -> Codec[AnyStr]:
        return self._codecs.of(text)

    def data_at(self, number: int, image: int) -> str | None:
        data = library.dictionaryDataAt(self.handle, image, number)
        return self._codecs.str.decode(string_at(data.bytes, data.size)) if data.bytes else None

    def lookup(self, key: AnyStr) -> AnyStr | None:
        codec = self._codecs.of(key)
        raw = codec.encode(key)
        place = create_string_buffer(PLACE_SIZE)
        if not library.dictionaryLookupKey(self.handle, raw, len(raw), place):
            return None
        return codec[place.raw]

    def has(self, key: AnyStr) -> bool:
        raw = self._codecs.of(key).encode(key)
        return bool(library.dictionaryLookupKey(self.handle, raw, len(raw), None))

    def lookup_each(self, keys: Iterable[AnyStr], skip_missing: bool) -> Iterator[AnyStr | None]:
        many = batches(keys, _KEYS_PER_CALL, self._codecs, skip_missing)
        return chain.from_iterable(map(self._look_up_batch, many))

    def _look_up_batch(self, batch: Batch) -> Iterator[Any]:
        places = bytearray(len(batch) * PLACE_SIZE)
        room = (c_char * len(places)).from_buffer(places)
        library.dictionaryLookupKeys(self.handle, batch.packed.address, len(batch), room)
        return batch.codec.data_texts(places)

    def keys(self, prefix: AnyStr) -> Iterator[AnyStr]:
        codec = self._codecs.of(prefix)
        return chain.from_iterable(_texts_of(keys, codec) for keys in self._list(prefix))

    def items(self, prefix: AnyStr) -> Iterator[tuple[AnyStr, AnyStr]]:
        codec = self._codecs.of(prefix)
        return chain.from_iterable(zip(_texts_of(keys, codec), _data_of(keys, codec))
                                   for keys in self._list(prefix))

    def count_keys(self, prefix: AnyStr) -> int:
        return sum(len(keys) // _KEY.size for keys in self._list(prefix))

    def _list(self, prefix: AnyStr) -> Iterator[memoryview]:
        """The keys that begin with a prefix, in the library's form, some at a time."""
        raw = self._codecs.of(prefix).encode(prefix)
        with _cursor(self) as cursor:
            library.dictionarySeekPrefix(cursor, raw, len(raw))
            for wanted in chain((_FIRST_KEYS,), repeat(_KEYS_PER_CALL)):
                keys = bytearray(wanted * _KEY.size)
                room = addressof(c_char.from_buffer(keys))
                count = library.dictionaryNextKeys(cursor, room, wanted)
                if not count:
                    return
                yield memoryview(keys)[:count * _KEY.size]

    def contains_key(self, search: Search, text: AnyStr) -> bool:
        raw = self._codecs.of(text).encode(text)
        contains, error = c_bool(), Error()
        if library.dictionaryContainsKey(self.handle, search[0], raw, len(raw), byref(contains),
                                         byref(error)):
            raise exception_of(error)
        return contains.value

    def find(self, search: Search, text: AnyStr,
             make: _Make = matches_of) -> list[Any]:
        codec = self._codecs.of(text)
        raw = codec.encode(text)
        found = self._lists.take()
        if library.dictionaryFindMatches(self.handle, search[codec.unit], raw, len(raw),
                                         found.address, found.error_address):
            raise exception_of(found.error)
        rows, count = found.rows(), found.count
        self._lists.give_back(found)
        if count < _MANY_MATCHES:
            return make(text, rows, codec)
        with _collector.paused():
            return make(text, rows, codec)

    def find_each(self, search: Search, texts: Iterable[AnyStr],
                  skip_missing: bool, make: _Make = matches_of) -> Iterator[list[Any]]:
        many = batches(texts, _TEXTS_PER_CALL, self._codecs, skip_missing)
        return chain.from_iterable(self._find_in_batch(search, batch, make) for batch in many)

    def _find_in_batch(self, search: Search, batch: Batch, make: _Make) -> Iterator[list[Any]]:
        found, ends = self._lists.take(), array("Q", bytes(8 * len(batch)))
        if library.dictionaryFindInTexts(
                self.handle, search[batch.codec.unit], batch.packed.address, len(batch),
                found.address, ends.buffer_info()[0], found.error_address):
            found.error.line += batch.first
            raise exception_of(found.error)
        rows, begin = found.rows(), 0
        self._lists.give_back(found)
        for text, end in zip(batch, ends):
            yield make(text, islice(rows, end - begin), batch.codec)
            begin = end

    def find_columns(self, search: Search, texts: Iterable[AnyStr], skip_missing: bool) -> Columns:
        columns, error = Columns(), Error()
        require_many(texts)
        batch = Batch(texts, 0, self._codecs, skip_missing)
        if library.dictionaryFindColumns(self.handle, search[batch.codec.unit],
                                         batch.packed.address, len(batch),
                                         byref(columns.memory), byref(error)):
            raise exception_of(error)
        return columns


def _texts_of(keys: memoryview, codec: Codec[AnyStr]) -> Iterator[AnyStr]:
    """The texts of listed keys. They follow each other in memory, each with a NUL after it."""
    begin, *_ = _KEY.unpack_from(keys)
    last, size, _ = _KEY.unpack_from(keys, len(keys) - _KEY.size)
    return iter(codec.decode(string_at(begin, last + size - begin)).split(codec.decode(_NUL)))


def _data_of(keys: memoryview, codec: Codec[AnyStr]) -> Iterator[AnyStr | None]:
    return (codec[place] for _, _, place in _KEY.iter_unpack(keys))


@contextlib.contextmanager
def _cursor(image: Image) -> Iterator[int]:
    error = Error()
    cursor = library.dictionaryOpenCursor(image.handle, byref(error))
    if cursor is None:
        raise exception_of(error)
    try:
        yield cursor
    finally:
        library.dictionaryCloseCursor(cursor)
