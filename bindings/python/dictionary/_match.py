"""Matches and the data texts of keys."""

from typing import AnyStr, Generic, NamedTuple


def records(data: AnyStr) -> list[list[AnyStr]]:
    """The fields of each record of a data text; a key that occurred more than once has several. A
    field after the first that begins with ``;`` begins a record.

    >>> records("noun\\tbook\\t;verb\\tto book\\t")
    [['noun', 'book'], ['verb', 'to book']]
    """
    if not data:
        return []
    tab, mark = ("\t", "\t;") if isinstance(data, str) else (b"\t", b"\t;")
    return [record.split(tab) for record in data.removesuffix(tab).split(mark)]


def fields(data: AnyStr) -> list[AnyStr]:
    """The fields of the first record.

    >>> fields("noun\\tTokyo\\t")
    ['noun', 'Tokyo']
    """
    return next(iter(records(data)), [])


class Match(NamedTuple, Generic[AnyStr]):
    """A key found in a text, with ``key == text[start:end]`` (in a folded dictionary the text may
    have its letters in other forms). It depends on nothing and outlives the dictionary.
    """

    start: int
    end: int
    key: AnyStr
    """As it is in the text."""
    data: AnyStr
    """The key's data text: its fields, each followed by a tab."""
    image: int = 0
    """Of a set, the number of the dictionary that has the key."""

    # mypy does not see that a generic tuple is one of its own kind.
    @property
    def fields(self) -> list[AnyStr]:  # type: ignore[misc]
        """As the function ``fields`` returns them."""
        return fields(self.data)

    @property
    def records(self) -> list[list[AnyStr]]:  # type: ignore[misc]
        """As the function ``records`` returns them."""
        return records(self.data)
