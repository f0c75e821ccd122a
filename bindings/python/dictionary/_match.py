"""Matches and the data texts of keys."""

from typing import AnyStr, Generic, NamedTuple


def records(data: AnyStr) -> list[list[AnyStr]]:
    """The fields of each record of a data text. A key that occurred more than once has several
    records. A field after the first that begins with ``;`` begins a new record.

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
    """A key found in a text: ``key == text[start:end]``. In a folded dictionary the text may have
    its letters in other forms. A match depends on nothing and outlives the dictionary.
    """

    start: int
    end: int
    key: AnyStr
    """The key as the text has it."""
    data: AnyStr
    """The key's data text: its fields, each followed by a tab."""
    image: int = 0
    """In a set, the number of the dictionary that has the key; else 0."""

    # mypy takes the self of a generic named tuple for another type.
    @property
    def fields(self) -> list[AnyStr]:  # type: ignore[misc]
        """What the function ``fields`` returns for the data."""
        return fields(self.data)

    @property
    def records(self) -> list[list[AnyStr]]:  # type: ignore[misc]
        """What the function ``records`` returns for the data."""
        return records(self.data)
