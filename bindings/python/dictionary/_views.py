"""Keys, values and items of the keys that begin with a prefix, in the order of the keys."""

from __future__ import annotations

from collections.abc import ItemsView, Iterator, KeysView, ValuesView
from typing import TYPE_CHECKING, Any, AnyStr, Generic

if TYPE_CHECKING:
    from ._searchable import Searchable


class _View(Generic[AnyStr]):
    def __init__(self, dictionary: Searchable, prefix: AnyStr) -> None:
        self._mapping: Any = dictionary
        self._prefix: AnyStr = prefix

    def _items(self) -> Iterator[tuple[AnyStr, AnyStr]]:
        items: Iterator[tuple[AnyStr, AnyStr]] = self._mapping._opened().items(self._prefix)
        return items

    def __len__(self) -> int:
        if not self._prefix:
            return len(self._mapping)
        return int(self._mapping._opened().count_keys(self._prefix))

    def __repr__(self) -> str:
        return f"<{type(self).__name__} of {self._mapping!r} with prefix {self._prefix!r}>"


class Keys(_View[AnyStr], KeysView[AnyStr]):
    def __iter__(self) -> Iterator[AnyStr]:
        keys: Iterator[AnyStr] = self._mapping._opened().keys(self._prefix)
        return keys

    def __contains__(self, key: object) -> bool:
        return any(key == other for other in self) if self._prefix else key in self._mapping


class Values(_View[AnyStr], ValuesView[AnyStr]):
    def __iter__(self) -> Iterator[AnyStr]:
        return (data for _, data in self._items())

    def __contains__(self, data: object) -> bool:
        return any(data == other for other in self)


class Items(_View[AnyStr], ItemsView[AnyStr, AnyStr]):
    def __iter__(self) -> Iterator[tuple[AnyStr, AnyStr]]:
        return self._items()

    def __contains__(self, item: object) -> bool:
        return any(item == other for other in self)
