"""Matches and the data texts of keys."""

from typing import AnyStr, Generic, NamedTuple


def fields(data: AnyStr) -> tuple[AnyStr, ...]:
    """The fields of a data text. A key that occurred more than once keeps the fields of all its
    records, those of a later one with a ``;`` in front.

    >>> fields("noun\\tTokyo\\t")
    ('noun', 'Tokyo')
    """
    tab, _ = _marks(data)
    return tuple(data.removesuffix(tab).split(tab))


def records(data: AnyStr) -> tuple[tuple[AnyStr, ...], ...]:
    """The fields of each record of a key that occurred more than once, as far as they can be told
    apart: a field that begins with ``;`` is taken for the begin of a record.

    >>> records("noun\\tbook\\t;verb\\tto book\\t")
    (('noun', 'book'), ('verb', 'to book'))
    """
    tab, semicolon = _marks(data)
    parts = data.removesuffix(tab).split(tab + semicolon)
    return tuple(tuple(part.split(tab)) for part in parts)


def _marks(data: AnyStr) -> tuple[AnyStr, AnyStr]:
    return ("\t", ";") if isinstance(data, str) else (b"\t", b";")


class Match(NamedTuple, Generic[AnyStr]):
    """A key found in a text, with ``key == text[start:end]``. It depends on nothing and outlives
    the dictionary.
    """

    start: int
    end: int
    key: AnyStr
    data: AnyStr
    """The key's data text: its fields, each followed by a tab."""

    # mypy does not see that a generic tuple is one of its own kind.
    @property
    def fields(self) -> tuple[AnyStr, ...]:  # type: ignore[misc]
        """As the function ``fields`` gives them."""
        return fields(self.data)

    @property
    def records(self) -> tuple[tuple[AnyStr, ...], ...]:  # type: ignore[misc]
        """As the function ``records`` gives them."""
        return records(self.data)
