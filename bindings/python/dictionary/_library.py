"""The shared library: where it is found, and its functions and structs as ctypes sees them."""

import ctypes
import os
from ctypes import POINTER, c_bool, c_char_p, c_int, c_int64, c_size_t, c_uint, c_uint64, c_void_p
from pathlib import Path
from typing import Any

NAME = "libdictionary.so.1"
CHOSEN = "DICTIONARY_LIBRARY"

FIND_ALL, FIND_LONGEST, FIND_SEGMENT = range(3)
UNIT_BYTE, UNIT_CODE_POINT = range(2)
OPEN_MAP, OPEN_COPY = range(2)
BUILT, BUILT_WITHOUT_SOME, NOT_BUILT, STOPPED = range(4)


class ImageFault(ctypes.Structure):
    _fields_ = [("code", c_int), ("systemError", c_int), ("cell", c_int64), ("offset", c_int64),
                ("text", c_char_p)]


class SourceProblem(ctypes.Structure):
    _fields_ = [("code", c_int), ("severity", c_int), ("systemError", c_int), ("line", c_uint64),
                ("column", c_uint64), ("text", c_char_p)]


OnProblem = ctypes.CFUNCTYPE(None, c_void_p, POINTER(SourceProblem))
OnProgress = ctypes.CFUNCTYPE(c_bool, c_void_p, c_int, c_uint64, c_uint64)


class BuildOptions(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("fieldSeparator", c_char_p), ("recordSeparator", c_char_p),
                ("problemLimit", c_uint), ("lenient", c_bool), ("onProblem", OnProblem),
                ("onProgress", OnProgress), ("context", c_void_p)]


class BuildCounts(ctypes.Structure):
    _fields_ = [("size", c_size_t), ("records", c_uint64), ("keys", c_uint64),
                ("refused", c_uint64), ("problems", c_uint64), ("imageBytes", c_uint64)]


class MatchList(ctypes.Structure):
    _fields_ = [("items", c_void_p), ("count", c_size_t), ("capacity", c_size_t)]


# Array arguments go as plain addresses, which spares a check of their type in every call.
_TEXTS = _SIZES = _MATCHES = c_void_p

_FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "destroyBin": (None, [c_void_p]),
    "dictionaryBuild": (c_int, [c_char_p, c_char_p, POINTER(BuildOptions), POINTER(BuildCounts)]),
    "dictionaryBuildBytes": (c_int, [c_char_p, c_size_t, c_char_p, POINTER(BuildOptions),
                                     POINTER(BuildCounts)]),
    "dictionaryFind": (c_bool, [c_void_p, c_int, c_int, c_char_p, c_size_t, _MATCHES]),
    "dictionaryFindInEach": (c_bool, [c_void_p, c_int, c_int, _TEXTS, _SIZES, c_size_t, _MATCHES,
                                      _SIZES]),
    "dictionaryLookup": (c_bool, [c_void_p, c_char_p, c_size_t, c_void_p, c_void_p]),
    "dictionaryOpen": (c_void_p, [c_char_p, c_int, POINTER(ImageFault)]),
    "dictionaryFaultName": (c_char_p, [c_int]),
    "dictionaryProblemName": (c_char_p, [c_int]),
    "dictionaryReleaseMatches": (None, [_MATCHES]),
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
    """A path for the library; ValueError if it would be cut off there."""
    encoded = os.fsencode(path)
    if b"\0" in encoded:
        raise ValueError("embedded null byte")
    return encoded


library = _load(_place())
