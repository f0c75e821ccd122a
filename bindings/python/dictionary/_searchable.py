"""What a dictionary and a set of dictionaries have in common."""

from collections.abc import Iterable, Iterator, Mapping
from typing import Any, AnyStr, Literal, NamedTuple, TypeVar, overload

from ._columns import Columns
from ._image import Image, Search, search_of
from ._library import FIND_ALL, FIND_LONGEST, FIND_PREFIXES, FIND_SEGMENT
from ._match import Match
from ._segmentation import Segmentation
from ._views import Items, Keys, Values

_Default = TypeVar("_Default")
_Self = TypeVar("_Self", bound="Searchable")

_MODES = {"all": FIND_ALL, "longest": FIND_LONGEST, "prefixes": FIND_PREFIXES,
          "segment": FIND_SEGMENT}


class Description(NamedTuple):
    """What an image holds. For a set, the sums: a key of several dictionaries counts in each."""

    image_bytes: int
    cells: int
    """Cells of the double array, including the header."""
    feature_bytes: int
    """The size of the data texts with their lengths."""
    keys: int
    images: int
    folded: bool
    """Whether keys and texts are folded."""


class Searchable(Mapping[str, str], Segmentation):
    """A mapping of keys to their data texts that finds its keys in texts. The keys are in the order
    of their code points. Any number of threads may use it at once.

    A search of a ``str`` returns ``str``. A search of ``bytes``, which are read as UTF-8, returns
    ``bytes``. Anything else is a TypeError. Offsets count characters in a ``str`` and bytes in
    ``bytes``. A surrogate, a NUL and a byte that is not UTF-8 are in no key and are passed over.
    Data that is not UTF-8 is decoded with surrogateescape in a ``str``.

    ``segment``, ``words`` and ``replace`` cut a text into segments: the longest key at the first
    position that has one, then the same after it, and so on. With ``whole_words``, a match neither
    begins nor ends inside a word.

    The functions that end in ``_each`` take many texts, from any iterable, and yield one result per
    text, in order. All but ``replace_each`` search several texts in one call, which takes less
    time. With ``skip_missing``, None and NaN are texts without matches.

    A text of more than 2,147,483,647 bytes of UTF-8 is a ValueError. Using a closed dictionary is a
    ValueError, too. A search that is under way when another thread closes the dictionary ends as if
    nothing had happened.
    """

    _image: Image | None = None

    # ---- Keys ----

    def __getitem__(self, key: AnyStr) -> AnyStr:
        data = self.lookup(key)
        if data is None:
            raise KeyError(key)
        return data

    @overload
    def get(self, key: AnyStr) -> AnyStr | None: ...
    @overload
    def get(self, key: AnyStr, default: _Default) -> AnyStr | _Default: ...

    def get(self, key: Any, default: Any = None) -> Any:
        data = self.lookup(key)
        return default if data is None else data

    def lookup(self, key: AnyStr) -> AnyStr | None:
        """The data text of a key, or None if there is no such key.

        >>> Dictionary.open("sample.bin").lookup("東京")
        'noun\\tTokyo\\t'
        """
        return self._opened().lookup(key)

    def lookup_each(self, keys: Iterable[AnyStr], *,
                    skip_missing: bool = False) -> Iterator[AnyStr | None]:
        """``lookup`` for each of many keys, 1024 at a time.

        >>> list(Dictionary.open("sample.bin").lookup_each(["京", "都"]))
        ['noun\\tcapital\\t', None]
        """
        return self._opened().lookup_each(keys, skip_missing)

    def __contains__(self, key: object) -> bool:
        """Whether there is such a key. TypeError if it is neither str nor bytes."""
        any_key: Any = key
        return self._opened().has(any_key)

    def __iter__(self) -> Iterator[str]:
        return self._opened().keys("")

    @overload
    def keys(self) -> Keys[str]: ...
    @overload
    def keys(self, prefix: AnyStr) -> Keys[AnyStr]: ...

    def keys(self, prefix: Any = "") -> Any:
        """The keys that begin with a prefix, in order. The first listing of an image makes an index
        of its keys.

        >>> list(Dictionary.open("sample.bin").keys("東"))
        ['東京', '東京都']
        """
        return Keys(self, prefix)

    @overload
    def values(self) -> Values[str]: ...
    @overload
    def values(self, prefix: AnyStr) -> Values[AnyStr]: ...

    def values(self, prefix: Any = "") -> Any:
        """The data texts of the keys that begin with a prefix."""
        return Values(self, prefix)

    @overload
    def items(self) -> Items[str]: ...
    @overload
    def items(self, prefix: AnyStr) -> Items[AnyStr]: ...

    def items(self, prefix: Any = "") -> Any:
        """The keys that begin with a prefix, each with its data text."""
        return Items(self, prefix)

    def describe(self) -> Description:
        """The image in numbers. The first call counts the keys, in one pass over the image."""
        found = self._opened().describe()
        return Description(found.imageBytes, found.cells, found.featureBytes, found.keys,
                           found.images, found.folded)

    # ---- Keys in texts ----

    def prefixes(self, text: AnyStr, *, whole_words: bool = False,
                 every_image: bool = False) -> list[Match[AnyStr]]:
        """Every key that the text begins with, the shortest first.

        >>> [match.key for match in Dictionary.open("sample.bin").prefixes("東京都に")]
        ['東京', '東京都']
        """
        return self._opened().find(search_of(FIND_PREFIXES, whole_words, every_image), text)

    def any_in(self, text: AnyStr, *, whole_words: bool = False) -> bool:
        """Whether any key is in the text. Stops at the first one.

        >>> list(filter(Dictionary.open("sample.bin").any_in, ["京都", "大阪"]))
        ['京都']
        """
        return self._opened().contains_key(search_of(FIND_ALL, whole_words), text)

    def find_all(self, text: AnyStr, *, whole_words: bool = False,
                 every_image: bool = False) -> list[Match[AnyStr]]:
        """Every key at every position, by start, the shortest first.

        >>> [match.key for match in Dictionary.open("sample.bin").find_all("東京都")]
        ['東京', '東京都', '京']
        """
        return self._opened().find(search_of(FIND_ALL, whole_words, every_image), text)

    def find_longest(self, text: AnyStr, *, whole_words: bool = False,
                     every_image: bool = False) -> list[Match[AnyStr]]:
        """The longest key at every position.

        >>> [match.key for match in Dictionary.open("sample.bin").find_longest("東京都")]
        ['東京都', '京']
        """
        return self._opened().find(search_of(FIND_LONGEST, whole_words, every_image), text)

    def find_all_each(self, texts: Iterable[AnyStr], *, whole_words: bool = False,
                      every_image: bool = False,
                      skip_missing: bool = False) -> Iterator[list[Match[AnyStr]]]:
        """``find_all`` for each of many texts."""
        search = search_of(FIND_ALL, whole_words, every_image)
        return self._opened().find_each(search, texts, skip_missing)

    def find_longest_each(self, texts: Iterable[AnyStr], *, whole_words: bool = False,
                          every_image: bool = False,
                          skip_missing: bool = False) -> Iterator[list[Match[AnyStr]]]:
        """``find_longest`` for each of many texts."""
        search = search_of(FIND_LONGEST, whole_words, every_image)
        return self._opened().find_each(search, texts, skip_missing)

    def find_columns(self, texts: Iterable[AnyStr],
                     mode: Literal["all", "longest", "prefixes", "segment"] = "all", *,
                     whole_words: bool = False, every_image: bool = False,
                     skip_missing: bool = False) -> Columns:
        """The matches of many texts as arrays, in one call.

        >>> columns = Dictionary.open("sample.bin").find_columns(["京", "", "東京"], "longest")
        >>> list(columns.text), list(columns.start), list(columns.end)
        ([0, 2, 2], [0, 0, 1], [1, 2, 2])
        """
        if mode not in _MODES:
            raise ValueError(f"mode must be one of {', '.join(map(repr, _MODES))}")
        search = search_of(_MODES[mode], whole_words, every_image)
        return self._opened().find_columns(search, texts, skip_missing)

    def data_at(self, number: int, image: int = 0) -> str | None:
        """The data text with a number from ``find_columns``; None if no data text has it."""
        return self._opened().data_at(number, image)

    def _segmentation(self, whole_words: bool, unknown_pieces: bool, joined_runs: bool) -> Search:
        return search_of(FIND_SEGMENT, whole_words, False, unknown_pieces, joined_runs)

    # ---- Lifetime ----

    @property
    def closed(self) -> bool:
        return self._image is None

    def close(self) -> None:
        """Releases the image, once the searches that are under way are done."""
        self._image = None

    def _opened(self) -> Image:
        if self._image is None:
            raise ValueError("the dictionary is closed")
        return self._image

    def __enter__(self: _Self) -> _Self:
        self._opened()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()
