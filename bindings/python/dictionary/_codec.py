"""The two kinds of text, str and bytes: their units, and how they are encoded and decoded."""

import codecs
import struct
from collections.abc import Callable, Iterable, Iterator, Sequence
from ctypes import string_at
from itertools import chain
from typing import Any, AnyStr, TypeVar

from ._library import UNIT_BYTE, UNIT_CODE_POINT

_Used = TypeVar("_Used")
_MOST_TEXTS = 1 << 16

# The place of a data text, as matches and lookups hold it: address and length.
_PLACE = struct.Struct("@PN")
PLACE_SIZE = _PLACE.size
_PLACES = struct.Struct(f"{PLACE_SIZE}s")
_NO_PLACE = bytes(PLACE_SIZE)

# No UTF-8 sequence begins with it, so it counts as one character that is in no key.
_IN_NO_KEY = b"\xff"
_SURROGATES = "dictionary.surrogates"


def _replace_surrogates(error: UnicodeError) -> tuple[bytes, int]:
    assert isinstance(error, UnicodeEncodeError)
    return _IN_NO_KEY * (error.end - error.start), error.end


codecs.register_error(_SURROGATES, _replace_surrogates)


class Codec(dict[bytes, AnyStr | None]):
    """Encodes one kind of text and decodes its data texts. As a dict, it maps the place of a data
    text, the 16 bytes that a match holds, to the text. Most keys share their data text with others,
    and a dict lookup costs less than a new string.
    """

    kind: type[AnyStr]
    unit: int

    def encode(self, text: AnyStr) -> bytes:
        """The text for the library, with the same number of units."""
        raise NotImplementedError

    def decode(self, data: bytes) -> AnyStr:
        raise NotImplementedError

    def encode_all(self, texts: Sequence[AnyStr], use: Callable[[Iterable[bytes]], _Used]) -> _Used:
        """What ``use`` returns for the encoded texts, which it takes one by one."""
        return use(map(self.encode, texts))

    def data_texts(self, places: bytes) -> Iterator[AnyStr | None]:
        """The data texts at consecutive places; None where there is none."""
        return map(self.__getitem__, chain.from_iterable(_PLACES.iter_unpack(places)))

    def __missing__(self, place: bytes) -> AnyStr | None:
        if len(self) >= _MOST_TEXTS:
            self.clear()
        text = None if place == _NO_PLACE else self.decode(string_at(*_PLACE.unpack(place)))
        self[place] = text
        return text


class StrCodec(Codec[str]):
    """Counts code points. A surrogate in a text is a character that is in no key. Data that is not
    UTF-8 is decoded with surrogateescape.
    """

    kind = str
    unit = UNIT_CODE_POINT

    def encode(self, text: str) -> bytes:
        return text.encode(errors=_SURROGATES)

    def encode_all(self, texts: Sequence[str], use: Callable[[Iterable[bytes]], _Used]) -> _Used:
        try:
            return use(map(str.encode, texts))
        except UnicodeEncodeError:
            return super().encode_all(texts, use)

    def decode(self, data: bytes) -> str:
        return data.decode(errors="surrogateescape")


class BytesCodec(Codec[bytes]):
    kind = bytes
    unit = UNIT_BYTE

    def encode(self, text: bytes) -> bytes:
        return text

    def encode_all(self, texts: Sequence[bytes], use: Callable[[Iterable[bytes]], _Used]) -> _Used:
        return use(texts)

    def decode(self, data: bytes) -> bytes:
        return data


class Codecs:
    """The codecs of one image."""

    def __init__(self) -> None:
        self.str = StrCodec()
        self.bytes = BytesCodec()

    def of(self, text: AnyStr) -> Codec[AnyStr]:
        codec: Any = self.str if isinstance(text, str) else self.bytes
        if not isinstance(text, codec.kind):
            raise TypeError(f"expected str or bytes, not {type(text).__name__}")
        found: Codec[AnyStr] = codec
        return found
