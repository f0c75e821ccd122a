"""What can be done with the segments of a text, however they are chosen."""

from abc import ABC, abstractmethod
from collections.abc import Iterable, Iterator
from typing import AnyStr

from ._image import Image, Search, pieces_of
from ._match import Match
from ._replacement import Replacement, Replacer


class Segmentation(ABC):
    """Cuts texts into keys and what is between them."""

    @abstractmethod
    def _opened(self) -> Image:
        """The image to search; ValueError if it is closed."""

    @abstractmethod
    def _segmentation(self, whole_words: bool, unknown_pieces: bool, joined_runs: bool) -> Search:
        """The search that finds the segments."""

    def segment(self, text: AnyStr, *, whole_words: bool = False) -> list[Match[AnyStr]]:
        """The keys into which a text is cut, one after the other, without what is between them."""
        return self._opened().find(self._segmentation(whole_words, False, False), text)

    def segment_each(self, texts: Iterable[AnyStr], *, whole_words: bool = False,
                     skip_missing: bool = False) -> Iterator[list[Match[AnyStr]]]:
        """``segment`` for each of many texts."""
        search = self._segmentation(whole_words, False, False)
        return self._opened().find_each(search, texts, skip_missing)

    def words(self, text: AnyStr, *, whole_words: bool = False,
              joined_runs: bool = False) -> list[AnyStr]:
        """The whole text in pieces: the keys, and each character that is in none of them. With
        ``joined_runs``, a run of ASCII letters and digits that no key covers is one piece.
        """
        search = self._segmentation(whole_words, True, joined_runs)
        return self._opened().find(search, text, pieces_of)

    def words_each(self, texts: Iterable[AnyStr], *, whole_words: bool = False,
                   joined_runs: bool = False, skip_missing: bool = False) -> Iterator[list[AnyStr]]:
        """``words`` for each of many texts."""
        search = self._segmentation(whole_words, True, joined_runs)
        return self._opened().find_each(search, texts, skip_missing, pieces_of)

    def replace(self, text: AnyStr, field: int = 1, *, alternatives: str | None = None,
                remove_empty: bool = False, whole_words: bool = False) -> AnyStr:
        """The text with each key of its segmentation replaced by data field number ``field`` of the
        key's first record, counted from 1. ``alternatives`` is what separates alternatives in the
        field; the first one is taken. A key whose field is missing or empty stays; with
        ``remove_empty`` it is removed.
        """
        return self._replacer(field, alternatives, remove_empty, whole_words).replace(text)

    def replace_each(self, texts: Iterable[AnyStr], field: int = 1, *,
                     alternatives: str | None = None, remove_empty: bool = False,
                     whole_words: bool = False) -> Iterator[AnyStr]:
        """``replace`` for each of many texts."""
        if isinstance(texts, (str, bytes)):
            raise TypeError("expected many texts, not one")
        replacer = self._replacer(field, alternatives, remove_empty, whole_words)
        return map(replacer.replace, texts)

    def replace_with_edits(self, text: AnyStr, field: int = 1, *, alternatives: str | None = None,
                           remove_empty: bool = False,
                           whole_words: bool = False) -> Replacement[AnyStr]:
        """``replace``, with a list of what was replaced and where."""
        replacer = self._replacer(field, alternatives, remove_empty, whole_words)
        return replacer.replace_with_edits(text)

    def _replacer(self, field: int, alternatives: str | None, remove_empty: bool,
                  whole_words: bool) -> Replacer:
        search = self._segmentation(whole_words, False, False)
        return Replacer(self._opened(), search, field, alternatives, remove_empty)
