"""Matches of many texts as arrays."""

from ctypes import c_uint32, byref
from typing import Any

from . import _library
from ._library import library

NO_KEY = 2**32 - 1


class _Memory(_library.Columns):
    """The library's arrays. They last as long as this object."""

    def __del__(self, free: Any = library.dictionaryFreeColumns) -> None:
        free(byref(self))


class Columns:
    """The matches of many texts as arrays. Entry i of each array belongs to match i. The arrays are
    the library's memory, which ``numpy.frombuffer(columns.start, "u4")`` takes without a copy. They
    outlive the dictionary.
    """

    def __init__(self) -> None:
        self.memory = _Memory()

    @property
    def text(self) -> memoryview:
        """The number of the text, from 0."""
        return self._array(self.memory.text)

    @property
    def start(self) -> memoryview:
        return self._array(self.memory.start)

    @property
    def end(self) -> memoryview:
        return self._array(self.memory.end)

    @property
    def data_number(self) -> memoryview:
        """The number of the data text in its image, for ``data_at``; the same for equal texts."""
        return self._array(self.memory.dataNumber)

    @property
    def image(self) -> memoryview:
        """In a set, the number of the dictionary that has the key; else 0."""
        return self._array(self.memory.image)

    def __len__(self) -> int:
        return int(self.memory.count)

    def _array(self, address: int) -> memoryview:
        if not len(self):
            return memoryview(b"").cast("I")
        items: Any = (c_uint32 * len(self)).from_address(address)
        items.memory = self.memory
        return memoryview(items).cast("B").cast("I")
