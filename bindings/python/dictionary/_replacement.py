"""Texts with their keys replaced."""

import struct
from ctypes import byref, string_at
from itertools import chain
from typing import Any, AnyStr, Generic, NamedTuple

from . import _library
from ._errors import exception_of
from ._image import Image, Search
from ._library import Error, ReplaceOptions, library

_EDIT = struct.Struct("@4N")


class Edit(NamedTuple):
    """A stretch of a text that was replaced, and what it became in the result."""

    start: int
    end: int
    result_start: int
    result_end: int


class Replacement(NamedTuple, Generic[AnyStr]):
    """A text with its keys replaced."""

    text: AnyStr
    edits: list[Edit]


class Replacer:
    """Replaces the keys that a search finds by a data field."""

    def __init__(self, image: Image, search: Search, field: int, alternatives: str | None,
                 remove_empty: bool) -> None:
        if field < 1:
            raise ValueError("fields are counted from 1")
        self._image, self._search = image, search
        separator = None if alternatives is None else alternatives.encode()
        self._options = ReplaceOptions(field=field, alternatives=separator,
                                       removeEmpty=remove_empty)
        self._edit_options = ReplaceOptions(field=field, alternatives=separator,
                                            removeEmpty=remove_empty, wantEdits=True)

    def replace(self, text: AnyStr) -> AnyStr:
        if isinstance(text, str) and not _is_encodable(text):
            return self.replace_with_edits(text).text
        return self._run(text, self._options).text

    def replace_with_edits(self, text: AnyStr) -> Replacement[AnyStr]:
        result = self._run(text, self._edit_options)
        if isinstance(text, bytes) or _is_encodable(text):
            return result
        return Replacement(_with_own_gaps(text, result), result.edits)

    def _run(self, text: AnyStr, options: ReplaceOptions) -> Replacement[AnyStr]:
        codec = self._image.codec(text)
        raw = codec.encode(text)
        result, error = _library.Replacement(), Error()
        try:
            if library.dictionaryReplaceKeys(self._image.handle, self._search[codec.unit],
                                             byref(options), raw, len(raw), byref(result),
                                             byref(error)):
                raise exception_of(error)
            return Replacement(codec.decode(string_at(result.bytes, result.size)), _edits(result))
        finally:
            library.dictionaryFreeReplacement(byref(result))


def _edits(result: _library.Replacement) -> list[Edit]:
    raw = string_at(result.edits, result.editCount * _EDIT.size)
    return list(map(Edit._make, _EDIT.iter_unpack(raw)))


def _is_encodable(text: str) -> bool:
    try:
        text.encode()
    except UnicodeEncodeError:
        return False
    return True


def _with_own_gaps(text: Any, result: Replacement[Any]) -> Any:
    """The result, with all that was not replaced as ``text`` itself has it, surrogates included."""
    end = Edit(len(text), len(text), len(result.text), len(result.text))
    before = (Edit(0, 0, 0, 0), *result.edits)
    return text[:0].join(chain.from_iterable(
        (result.text[last.result_start:last.result_end], text[last.end:edit.start])
        for last, edit in zip(before, (*result.edits, end))))
