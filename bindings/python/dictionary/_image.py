"""Open images, the searches over them and why they are refused."""

import os
import struct
from collections.abc import Iterable, Iterator, Sequence
from ctypes import byref, c_char_p, c_size_t, c_void_p, string_at
from itertools import islice
from typing import Any, AnyStr

from ._form import BytesForm, Form, StrForm
from ._library import OPEN_COPY, OPEN_MAP, ImageFault, MatchList, library, path_bytes
from ._match import Match

_LONGEST_TEXT = 2**31 - 1
_TEXTS_PER_CALL = 64

# A match as the library gives it: start, length and the place of the data.
_MATCH = struct.Struct("@NN16s")
_Rows = Iterator[tuple[Any, ...]]


class ImageError(Exception):
    """An image file that is refused: no image, or a damaged one.

    ``code`` is the reason as a name ("header"), ``text`` the same in words; ``cell`` and ``offset``
    (in bytes from the start of the file) say where, if that is known.
    """

    def __init__(self, path: str, code: str, text: str, cell: int | None, offset: int | None):
        super().__init__(path, code, text, cell, offset)
        self.path, self.code, self.text, self.cell, self.offset = path, code, text, cell, offset

    def __str__(self) -> str:
        places = {"cell": self.cell, "byte": self.offset}
        return f"{self.path}: {self.text}" + "".join(
            f", {unit} {number}" for unit, number in places.items() if number is not None)


def _refusal(path: str, fault: ImageFault) -> Exception:
    code = library.dictionaryFaultName(fault.code).decode()
    text = fault.text.decode()
    if code == "no-memory":
        return MemoryError(text)
    if fault.systemError:
        return OSError(fault.systemError, os.strerror(fault.systemError), path)
    cell, offset = (number if number >= 0 else None for number in (fault.cell, fault.offset))
    return ImageError(path, code, text, cell, offset)


def _failure(texts: Iterable[bytes]) -> Exception:
    if any(len(text) > _LONGEST_TEXT for text in texts):
        return ValueError(f"a text is over {_LONGEST_TEXT} bytes of UTF-8 long")
    return MemoryError()


def _rows(found: MatchList) -> _Rows:
    return _MATCH.iter_unpack(string_at(found.items, found.count * _MATCH.size))


def _matches(text: AnyStr, rows: _Rows, data: Form[AnyStr]) -> list[Match[AnyStr]]:
    # Match(...) would take arguments apart that are a tuple already.
    new = tuple.__new__
    return [new(Match, (start, start + length, text[start:start + length], data[place]))
            for start, length, place in rows]


class Image:
    """A handle of the library and what is known of its data texts. It is destroyed when nobody
    refers to it any more; whoever searches it does.
    """

    _handle: int | None = None

    def __init__(self, path: str, copy: bool) -> None:
        fault = ImageFault()
        mode = OPEN_COPY if copy else OPEN_MAP
        self._handle = library.dictionaryOpen(path_bytes(path), mode, byref(fault))
        if self._handle is None:
            raise _refusal(path, fault)
        self._forms: tuple[Form[Any], ...] = (StrForm(), BytesForm())

    def __del__(self, destroy: Any = library.destroyBin) -> None:
        destroy(self._handle)

    def lookup(self, key: AnyStr) -> AnyStr | None:
        form = self._form(key)
        raw = form.encode(key)
        address, length = c_void_p(), c_size_t()
        if not library.dictionaryLookup(self._handle, raw, len(raw), byref(address), byref(length)):
            return None
        return form.decode(string_at(address, length.value))

    def has(self, key: AnyStr) -> bool:
        raw = self._form(key).encode(key)
        return bool(library.dictionaryLookup(self._handle, raw, len(raw), None, None))

    def find(self, mode: int, text: AnyStr) -> list[Match[AnyStr]]:
        form = self._form(text)
        raw = form.encode(text)
        found = MatchList()
        try:
            if not library.dictionaryFind(self._handle, mode, form.unit, raw, len(raw),
                                          byref(found)):
                raise _failure([raw])
            return _matches(text, _rows(found), form)
        finally:
            library.dictionaryReleaseMatches(byref(found))

    def find_each(self, mode: int, texts: Iterator[AnyStr]) -> Iterator[list[Match[AnyStr]]]:
        found = MatchList()
        try:
            while batch := list(islice(texts, _TEXTS_PER_CALL)):
                form = self._form(batch[0])
                begin, ends = 0, self._find_in_each(mode, form, batch, found)
                rows = _rows(found)
                for text, end in zip(batch, ends):
                    yield _matches(text, islice(rows, end - begin), form)
                    begin = end
        finally:
            library.dictionaryReleaseMatches(byref(found))

    def _find_in_each(self, mode: int, form: Form[AnyStr], batch: Sequence[AnyStr],
                      found: MatchList) -> Iterable[int]:
        raws, count = form.encode_all(batch), len(batch)
        texts, sizes = (c_char_p * count)(*raws), (c_size_t * count)(*map(len, raws))
        ends = (c_size_t * count)()
        if not library.dictionaryFindInEach(self._handle, mode, form.unit, texts, sizes, count,
                                            byref(found), ends):
            raise _failure(raws)
        return ends

    def _form(self, text: AnyStr) -> Form[AnyStr]:
        for form in self._forms:
            if isinstance(text, form.kind):
                return form
        raise TypeError(f"expected str or bytes, not {type(text).__name__}")
