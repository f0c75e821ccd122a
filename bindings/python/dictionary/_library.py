"""The shared library: where it is, and its functions and structs for ctypes."""

import ctypes
import os
from ctypes import (POINTER, c_bool, c_char, c_char_p, c_double, c_int, c_int64, c_size_t, c_uint,
                    c_uint32, c_uint64, c_void_p, sizeof)
from pathlib import Path
from typing import Any

NAME = "libdictionary.so.1"
CHOSEN = "DICTIONARY_LIBRARY"

OK, BAD_ARGUMENT, NO_MEMORY, STOPPED = range(4)
TEXT_TOO_LONG = 6
FIND_ALL, FIND_LONGEST, FIND_SEGMENT, FIND_WEIGHTED, FIND_PREFIXES = range(5)
UNIT_BYTE, UNIT_CODE_POINT = range(2)
OPEN_COPY, OPEN_SHARE, OPEN_BORROW = 1, 2, 3
WEIGHTS_COUNTS, WEIGHTS_COSTS = range(2)


class Text(ctypes.Structure):
    _fields_ = [("bytes", c_void_p), ("size", c_size_t)]


class Error(ctypes.Structure):
    _fields_ = [("code", c_int), ("severity", c_int), ("systemError", c_int), ("file", c_int),
                ("path", c_char_p), ("line", c_uint64), ("column", c_uint64), ("cell", c_int64),
                ("offset", c_int64), ("text", c_char * 256)]


class Sized(ctypes.Structure):
    """A struct that begins with its own size, so that later versions can add members."""

    def __init__(self, **members: Any) -> None:
        super().__init__(sizeof(self), **members)


class Description(Sized):
    _fields_ = [("size", c_size_t), ("imageBytes", c_uint64), ("cells", c_uint64),
                ("featureBytes", c_uint64), ("keys", c_uint64), ("images", c_uint32),
                ("folded", c_bool)]


class FindOptions(Sized):
    _fields_ = [("size", c_size_t), ("mode", c_int), ("unit", c_int), ("segmenter", c_void_p),
                ("wholeWords", c_bool), ("everyImage", c_bool), ("unknownPieces", c_bool),
                ("joinedRuns", c_bool)]


class Matches(ctypes.Structure):
    _fields_ = [("items", c_void_p), ("count", c_size_t), ("capacity", c_size_t)]


class Columns(ctypes.Structure):
    _fields_ = [("text", c_void_p), ("start", c_void_p), ("end", c_void_p),
                ("dataNumber", c_void_p), ("image", c_void_p), ("count", c_size_t),
                ("capacity", c_size_t)]


class SegmenterOptions(Sized):
    _fields_ = [("size", c_size_t), ("weights", c_int), ("field", c_uint),
                ("unknownCost", c_double)]


class ReplaceOptions(Sized):
    _fields_ = [("size", c_size_t), ("field", c_uint), ("alternatives", c_char_p),
                ("removeEmpty", c_bool), ("wantEdits", c_bool)]


class Replacement(ctypes.Structure):
    _fields_ = [("bytes", c_void_p), ("size", c_size_t), ("capacity", c_size_t),
                ("edits", c_void_p), ("editCount", c_size_t), ("editCapacity", c_size_t)]


NextItem = ctypes.CFUNCTYPE(c_bool, c_void_p, POINTER(c_void_p), POINTER(c_size_t))
OnProblem = ctypes.CFUNCTYPE(None, c_void_p, POINTER(Error))
OnProgress = ctypes.CFUNCTYPE(c_bool, c_void_p, c_int, c_uint64, c_uint64)


class Source(Sized):
    _fields_ = [("size", c_size_t), ("path", c_char_p), ("bytes", Text), ("nextItem", NextItem),
                ("context", c_void_p)]


class ImageBuffer(ctypes.Structure):
    _fields_ = [("bytes", c_void_p), ("size", c_size_t)]


class Target(Sized):
    _fields_ = [("size", c_size_t), ("path", c_char_p), ("buffer", POINTER(ImageBuffer))]


class BuildOptions(Sized):
    _fields_ = [("size", c_size_t), ("fieldSeparator", c_char_p), ("recordSeparator", c_char_p),
                ("problemLimit", c_uint), ("lenient", c_bool), ("fromWindows", c_bool),
                ("allowEmpty", c_bool), ("folded", c_bool), ("onProblem", OnProblem),
                ("onProgress", OnProgress), ("context", c_void_p)]


class BuildReport(Sized):
    _fields_ = [("size", c_size_t), ("records", c_uint64), ("keys", c_uint64),
                ("problems", c_uint64), ("imageBytes", c_uint64)]


# Pointers are passed as plain addresses, which saves a type check in every call.
_HANDLE = _CURSOR = _SEGMENTER = _POINTER = c_void_p
_ERROR = c_void_p

# A DictionaryText is passed as its two members, which takes a third of the time: the calling
# conventions of 64-bit Linux pass a struct of a pointer and a size just as they pass the two.
_TEXT = (c_char_p, c_size_t)

_FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "dictionaryBuildFrom": (c_int, [_POINTER, _POINTER, _POINTER, _POINTER, _ERROR]),
    "dictionaryClose": (None, [_HANDLE]),
    "dictionaryCloseCursor": (None, [_CURSOR]),
    "dictionaryCodeName": (c_char_p, [c_int]),
    "dictionaryContainsKey": (c_int, [_HANDLE, _POINTER, *_TEXT, _POINTER, _ERROR]),
    "dictionaryDataAt": (Text, [_HANDLE, c_uint32, c_uint32]),
    "dictionaryDescribe": (c_int, [_HANDLE, _POINTER, _ERROR]),
    "dictionaryErrorMessage": (c_size_t, [_ERROR, c_char_p, c_size_t]),
    "dictionaryFindColumns": (c_int, [_HANDLE, _POINTER, _POINTER, c_size_t, _POINTER, _ERROR]),
    "dictionaryFindInTexts": (c_int, [_HANDLE, _POINTER, _POINTER, c_size_t, _POINTER, _POINTER,
                                      _ERROR]),
    "dictionaryFindMatches": (c_int, [_HANDLE, _POINTER, *_TEXT, _POINTER, _ERROR]),
    "dictionaryFreeBuffer": (None, [_POINTER]),
    "dictionaryFreeColumns": (None, [_POINTER]),
    "dictionaryFreeMatches": (None, [_POINTER]),
    "dictionaryFreeReplacement": (None, [_POINTER]),
    "dictionaryFreeSegmenter": (None, [_SEGMENTER]),
    "dictionaryImageBytes": (Text, [_HANDLE, c_uint32]),
    "dictionaryLookupKey": (c_bool, [_HANDLE, *_TEXT, _POINTER]),
    "dictionaryLookupKeys": (c_size_t, [_HANDLE, _POINTER, c_size_t, _POINTER]),
    "dictionaryMakeSegmenter": (_SEGMENTER, [_HANDLE, _POINTER, _ERROR]),
    "dictionaryNextKeys": (c_size_t, [_CURSOR, _POINTER, c_size_t]),
    "dictionaryOpenBytes": (_HANDLE, [*_TEXT, c_int, _ERROR]),
    "dictionaryOpenCursor": (_CURSOR, [_HANDLE, _ERROR]),
    "dictionaryOpenFile": (_HANDLE, [c_char_p, c_int, _ERROR]),
    "dictionaryOpenSet": (_HANDLE, [_POINTER, c_size_t, _ERROR]),
    "dictionaryReplaceKeys": (c_int, [_HANDLE, _POINTER, _POINTER, *_TEXT, _POINTER, _ERROR]),
    "dictionarySeekPrefix": (None, [_CURSOR, *_TEXT]),
    "dictionaryVersion": (c_char_p, []),
}


def _place() -> str:
    """The file that the environment names, the one beside this module, or the system's."""
    beside = Path(__file__).with_name(NAME)
    return os.environ.get(CHOSEN) or (str(beside) if beside.exists() else NAME)


def _load(place: str) -> ctypes.CDLL:
    try:
        loaded = ctypes.CDLL(place)
        for name, (result, arguments) in _FUNCTIONS.items():
            function = getattr(loaded, name)
            function.restype, function.argtypes = result, arguments
    except (OSError, AttributeError) as error:
        raise ImportError(f"{error}; install {NAME} or name its file in {CHOSEN}") from error
    return loaded


def path_bytes(path: str | bytes | os.PathLike[Any]) -> bytes:
    """A path for the library; ValueError for one with a NUL, where it would be cut off."""
    encoded = os.fsencode(path)
    if b"\0" in encoded:
        raise ValueError("embedded null byte")
    return encoded


library = _load(_place())
