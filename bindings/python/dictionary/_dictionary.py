"""The class that users open, search and close."""

import os
from collections.abc import Iterable, Iterator
from typing import Any, AnyStr

from ._build import build
from ._image import Image
from ._library import FIND_ALL, FIND_LONGEST, FIND_SEGMENT
from ._match import Match


class Dictionary:
    """An open image, which can be searched by any number of threads at once.

    A str is searched by characters and gives str, bytes are searched as UTF-8 and give bytes;
    anything else is a TypeError. Offsets count characters of a str and bytes of bytes. A character
    above U+FFFF, a surrogate, a NUL and a byte that is not UTF-8 are in no key and are passed over.
    Data that is not UTF-8 comes with surrogateescape in a str.

    The searches for many texts, ``..._each``, spread the cost of a call over them: they take texts
    from any iterable, 64 at a time, and give a list of matches for each, in order.

    A text may take 2,147,483,647 bytes of UTF-8; a longer one is a ValueError. Searching a closed
    dictionary is a ValueError, too. A search that is under way when another thread closes the
    dictionary ends as if nothing had happened.

    A dictionary is pickled as its path and opened again there.
    """

    build = staticmethod(build)

    def __init__(self, path: str | bytes | os.PathLike[Any], copy: bool = False) -> None:
        self._path = os.path.abspath(os.fsdecode(path))
        self._copy = copy
        self._image: Image | None = Image(self._path, copy)

    @classmethod
    def open(cls, path: str | bytes | os.PathLike[Any], copy: bool = False) -> "Dictionary":
        """Verifies and opens an image file. Its pages are shared with all processes that have it
        open, and it must not change meanwhile, though another may be put into its place; with
        ``copy`` the file is read into memory and may change.

        Raises ImageError when the file is no sound image, and what the system says, such as
        FileNotFoundError, when it cannot be read.
        """
        return cls(path, copy)

    @property
    def path(self) -> str:
        """The image file, as an absolute path."""
        return self._path

    @property
    def closed(self) -> bool:
        return self._image is None

    def close(self) -> None:
        """Gives the image up. It goes when the searches that are under way are done."""
        self._image = None

    def lookup(self, key: AnyStr) -> AnyStr | None:
        """The data text of a key, None if there is no such key.

        >>> Dictionary.open("sample.bin").lookup("東京")
        'noun\\tTokyo\\t'
        """
        return self._opened().lookup(key)

    def __contains__(self, key: AnyStr) -> bool:
        """Whether there is such a key.

        >>> "東京" in Dictionary.open("sample.bin")
        True
        """
        return self._opened().has(key)

    def find_all(self, text: AnyStr) -> list[Match[AnyStr]]:
        """Every key at every position, by start, the shortest first.

        >>> [match.key for match in Dictionary.open("sample.bin").find_all("東京都")]
        ['東京', '東京都', '京']
        """
        return self._opened().find(FIND_ALL, text)

    def find_longest(self, text: AnyStr) -> list[Match[AnyStr]]:
        """The longest key at every position.

        >>> [match.key for match in Dictionary.open("sample.bin").find_longest("東京都")]
        ['東京都', '京']
        """
        return self._opened().find(FIND_LONGEST, text)

    def segment(self, text: AnyStr) -> list[Match[AnyStr]]:
        """The longest key at the first position that has one, then the same behind it, and so on.

        >>> Dictionary.open("sample.bin").segment("東京都")
        [Match(start=0, end=3, key='東京都', data='noun\\tTokyo Metropolis\\t')]
        """
        return self._opened().find(FIND_SEGMENT, text)

    def find_all_each(self, texts: Iterable[AnyStr]) -> Iterator[list[Match[AnyStr]]]:
        """``find_all`` for each of many texts."""
        return self._find_each(FIND_ALL, texts)

    def find_longest_each(self, texts: Iterable[AnyStr]) -> Iterator[list[Match[AnyStr]]]:
        """``find_longest`` for each of many texts."""
        return self._find_each(FIND_LONGEST, texts)

    def segment_each(self, texts: Iterable[AnyStr]) -> Iterator[list[Match[AnyStr]]]:
        """``segment`` for each of many texts.

        >>> lines = ["東京都", "", "京東京"]
        >>> for matches in Dictionary.open("sample.bin").segment_each(lines):
        ...     print([match.key for match in matches])
        ['東京都']
        []
        ['京', '東京']
        """
        return self._find_each(FIND_SEGMENT, texts)

    def _find_each(self, mode: int, texts: Iterable[AnyStr]) -> Iterator[list[Match[AnyStr]]]:
        image = self._opened()
        if isinstance(texts, (str, bytes)):
            raise TypeError("expected many texts, not one")
        return image.find_each(mode, iter(texts))

    def _opened(self) -> Image:
        if self._image is None:
            raise ValueError("the dictionary is closed")
        return self._image

    def __enter__(self) -> "Dictionary":
        self._opened()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __reduce__(self) -> tuple[Any, ...]:
        self._opened()
        return type(self), (self._path, self._copy)

    def __repr__(self) -> str:
        return f"<{'closed ' if self.closed else ''}Dictionary {self._path!r}>"
