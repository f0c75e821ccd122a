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
    """Opens an image file, and opens it again when another file has taken its place.

    Readers ask for ``dictionary`` whenever they begin something, and keep it only until that is
    done. They never wait: another thread verifies the new image while they go on with the old one,
    which is closed when its last user is done. If the new file is refused, the old image stays in
    use; ``error`` says why, until the file changes again. A reloader is pickled as its path, with
    its settings.

    >>> words = Reloader("sample.bin")
    >>> words.dictionary.lookup("東京")
    'noun\\tTokyo\\t'
    """

    def __init__(self, path: str | bytes | os.PathLike[Any], copy: bool = False,
                 interval: float = 1.0) -> None:
        """Looks at the file when ``dictionary`` is used, at most once in ``interval`` seconds."""
        self._path = os.path.abspath(os.fsdecode(path))
        self._copy, self._interval = copy, interval
        self._lock = threading.Lock()
        self.error: Exception | None = None
        """Why the file that is there now is not in use; None if it is."""
        self._load()
        _reloaders.add(self)

    @property
    def dictionary(self) -> Dictionary:
        """The newest dictionary that is open."""
        if time.monotonic() >= self._due and self._lock.acquire(blocking=False):
            self._look()
        return self._dictionary

    def reload(self) -> Dictionary:
        """Opens the file now, whether it has changed or not, and returns the new dictionary. Raises
        what ``Dictionary.open`` raises; then the old dictionary stays in use.
        """
        with self._lock:
            return self._load()

    def _look(self) -> None:
        """If the file has changed, has a thread load it. This or the thread releases the lock."""
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
        # Taken before opening, so that it is never newer than what is opened.
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
        """What distinguishes the file from another one of the same name."""
        try:
            status = os.stat(self._path)
        except OSError:
            return None
        return status.st_dev, status.st_ino, status.st_size, status.st_mtime_ns, status.st_ctime_ns

    def _begin_in_child(self) -> None:
        """Replaces the lock: a thread that held it goes on in the parent process only."""
        self._lock = threading.Lock()

    def __reduce__(self) -> tuple[Callable[..., "Reloader"], tuple[Any, ...]]:
        return type(self), (self._path, self._copy, self._interval)


_reloaders: WeakSet[Reloader] = WeakSet()


def _begin_in_child() -> None:
    for reloader in tuple(_reloaders):
        reloader._begin_in_child()


os.register_at_fork(after_in_child=_begin_in_child)
