"""Digests of images."""

import hashlib
from ctypes import addressof
from weakref import WeakValueDictionary

from ._image import Image

# By the address of the bytes: an image that is mapped once may be open several times.
_digested: WeakValueDictionary[int, Image] = WeakValueDictionary()


class DigestError(Exception):
    """An image file that is not the one that was pickled."""

    def __init__(self, path: str, expected: str, found: str) -> None:
        super().__init__(path, expected, found)
        self.path, self.expected, self.found = path, expected, found

    def __str__(self) -> str:
        return (f"{self.path}: not the image that was pickled: its digest is {self.found} and not "
                f"{self.expected}")


def digest_of(image: Image) -> str:
    if image.digest is None:
        content = image.content()
        known = _digested.get(addressof(content))
        image.digest = known.digest if known else hashlib.sha256(content).hexdigest()
        _digested[addressof(content)] = image
    assert image.digest is not None
    return image.digest
