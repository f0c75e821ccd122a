"""Keeps a dictionary up to date with its file."""

import contextlib
import os
import threading
import time
from collections.abc import Callable
from typing import Any
from weakref import WeakSet

from ._dictionary import Dictionary

_FileIdentity = tuple[int, ...] | None


class Reloader:
    """Opens an image file and opens it again when another one has taken its place.

    Readers ask for ``dictionary`` whenever they begin something, and no longer than for that. They
    never wait: the new image is verified on a thread of its own while they go on with the old one,
    which goes when its last user is done. A file that is refused leaves the old image in use;
    ``error`` says why, until the file changes again. It is pickled as its path.

    >>> words = Reloader("sample.bin")
    >>> words.dictionary.lookup("東京")
    'noun\\tTokyo\\t'
    """

    def __init__(self, path: str | bytes | os.PathLike[Any], copy: bool = False,
                 interval: float = 1.0) -> None:
        """Looks at the file every ``interval`` seconds at most, when it is asked for."""
        self._path = os.path.abspath(os.fsdecode(path))
        self._copy, self._interval = copy, interval
        self._lock = threading.Lock()
        self.error: Exception | None = None
        """Why the file that is there now is not in use."""
        self._load()
        _reloaders.add(self)

    @property
    def dictionary(self) -> Dictionary:
        """The newest dictionary at hand."""
        if time.monotonic() >= self._due and self._lock.acquire(blocking=False):
            self._look()
        return self._dictionary

    def reload(self) -> Dictionary:
        """Opens the file now, whether it has changed or not, and returns the new dictionary. Raises
        what ``Dictionary.open`` raises; the old dictionary stays in use then.
        """
        with self._lock:
            return self._load()

    def _look(self) -> None:
        """Has a thread load the file if it has changed. Releases the lock, or the thread does."""
        lock = self._lock
        self._due = time.monotonic() + self._interval
        if self._identity() == self._loaded:
            lock.release()
            return
        try:
            threading.Thread(target=self._load_quietly, args=[lock]).start()
        except Exception as error:  # no more threads, or no memory; the next look tries again
            self.error = error
            lock.release()

    def _load_quietly(self, lock: threading.Lock) -> None:
        try:
            with contextlib.suppress(Exception):
                self._load()
        finally:
            lock.release()

    def _load(self) -> Dictionary:
        # What is seen before opening is never newer than what is opened.
        identity = self._identity()
        try:
            self._dictionary = Dictionary.open(self._path, self._copy)
            self.error = None
        except Exception as error:
            self.error = error
            raise
        finally:
            self._loaded = identity
            self._due = time.monotonic() + self._interval
        return self._dictionary

    def _identity(self) -> _FileIdentity:
        """Distinguishes the file from another one under its name."""
        try:
            status = os.stat(self._path)
        except OSError:
            return None
        return status.st_dev, status.st_ino, status.st_size, status.st_mtime_ns, status.st_ctime_ns

    def _begin_in_child(self) -> None:
        """A thread that held the lock goes on in the parent process alone."""
        self._lock = threading.Lock()

    def __reduce__(self) -> tuple[Callable[..., "Reloader"], tuple[Any, ...]]:
        return type(self), (self._path, self._copy, self._interval)


_reloaders: WeakSet[Reloader] = WeakSet()


def _begin_in_child() -> None:
    for reloader in tuple(_reloaders):
        reloader._begin_in_child()


os.register_at_fork(after_in_child=_begin_in_child)
