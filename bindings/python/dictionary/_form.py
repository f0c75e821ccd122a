"""What searching a str has different from searching bytes: units, encoding, data texts."""

import re
import struct
from collections.abc import Sequence
from ctypes import string_at
from typing import AnyStr

from ._library import UNIT_BYTE, UNIT_CODE_POINT

_MOST_TEXTS = 1 << 16

# Where a data text lies, as a match holds it: address and length.
_PLACE = struct.Struct("@PN")

_SURROGATE = re.compile("[\ud800-\udfff]")
_IN_NO_KEY = "\U0010ffff"


class Form(dict[bytes, AnyStr]):
    """One of the two ways to search an image. As a dict it maps places of data texts, 16 bytes as
    they stand in a match, to the texts: most keys share theirs with others, and a look into a dict
    costs less than a new string.
    """

    kind: type[AnyStr]
    unit: int

    def encode(self, text: AnyStr) -> bytes:
        """The text for the library, with as many units in it."""
        raise NotImplementedError

    def decode(self, data: bytes) -> AnyStr:
        raise NotImplementedError

    def encode_all(self, texts: Sequence[AnyStr]) -> list[bytes]:
        if not all(isinstance(text, self.kind) for text in texts):
            raise TypeError("the texts must be str, all of them, or bytes")
        return list(map(self.encode, texts))

    def __missing__(self, place: bytes) -> AnyStr:
        if len(self) >= _MOST_TEXTS:
            self.clear()
        text = self[place] = self.decode(string_at(*_PLACE.unpack(place)))
        return text


class StrForm(Form[str]):
    """Counts code points. A surrogate in a text is a character that is in no key; data that is not
    UTF-8 is decoded with surrogateescape.
    """

    kind = str
    unit = UNIT_CODE_POINT

    def encode(self, text: str) -> bytes:
        try:
            return text.encode()
        except UnicodeEncodeError:
            return _SURROGATE.sub(_IN_NO_KEY, text).encode()

    def decode(self, data: bytes) -> str:
        return data.decode(errors="surrogateescape")


class BytesForm(Form[bytes]):
    kind = bytes
    unit = UNIT_BYTE

    def encode(self, text: bytes) -> bytes:
        return text

    def decode(self, data: bytes) -> bytes:
        return data
