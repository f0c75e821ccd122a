"""Segmentation by weight."""

from collections.abc import Callable
from ctypes import byref
from typing import Any

from ._dictionary import Dictionary, DictionarySet
from ._errors import exception_of
from ._image import Image, Search, search_of
from ._library import (FIND_WEIGHTED, WEIGHTS_COSTS, WEIGHTS_COUNTS, Error, SegmenterOptions,
                       library)
from ._segmentation import Segmentation


class _Weights:
    """The library's segmenter of an image."""

    handle: int | None = None

    def __init__(self, image: Image, options: SegmenterOptions) -> None:
        error = Error()
        self.image = image
        self.handle = library.dictionaryMakeSegmenter(image.handle, byref(options), byref(error))
        if self.handle is None:
            raise exception_of(error)

    def __del__(self, free: Any = library.dictionaryFreeSegmenter) -> None:
        free(self.handle)


class Segmenter(Segmentation):
    """Cuts texts into the words with the least total cost. Of several ways that cost the same, it
    takes the one whose first word is longer. The cost of a key comes from a data field of its first
    record, counted from 1:

    - ``count_field``: how often the word was counted. A key costs log(total) - log(count), where
      total is the sum of all counts. A character where no key begins has the count 1.
    - ``cost_field``: the cost. A character where no key begins costs ``unknown_cost``.

    Any number of threads may use one segmenter. It is pickled with its dictionary, and still works
    when that is closed. Raises DictionaryError if a key lacks the field or has no number in it; the
    error names the key.

    >>> words = Dictionary.of({"北京": "5", "北京大": "1", "大学": "9", "生": "2"})
    >>> Segmenter(words, count_field=1).words("北京大学生")
    ['北京', '大学', '生']
    """

    def __init__(self, dictionary: Dictionary | DictionarySet, *, count_field: int | None = None,
                 cost_field: int | None = None, unknown_cost: float | None = None) -> None:
        if (count_field is None) == (cost_field is None):
            raise TypeError("expected either count_field or cost_field")
        if (cost_field is None) != (unknown_cost is None):
            raise TypeError("cost_field and unknown_cost go together")
        field = count_field or cost_field or 0
        if field < 1:
            raise ValueError("fields are counted from 1")
        self._arguments = (dictionary, count_field, cost_field, unknown_cost)
        self._weights = _Weights(dictionary._opened(), SegmenterOptions(
            weights=WEIGHTS_COUNTS if cost_field is None else WEIGHTS_COSTS, field=field,
            unknownCost=unknown_cost or 0))

    def _opened(self) -> Image:
        return self._weights.image

    def _segmentation(self, whole_words: bool, unknown_pieces: bool, joined_runs: bool) -> Search:
        return search_of(FIND_WEIGHTED, whole_words, False, unknown_pieces, joined_runs,
                         self._weights.handle)

    def __reduce__(self) -> tuple[Callable[..., "Segmenter"], tuple[Any, ...]]:
        return _segmenter, self._arguments


def _segmenter(dictionary: Dictionary, count_field: int | None, cost_field: int | None,
               unknown_cost: float | None) -> Segmenter:
    return Segmenter(dictionary, count_field=count_field, cost_field=cost_field,
                     unknown_cost=unknown_cost)
