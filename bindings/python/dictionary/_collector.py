"""Keeps the garbage collector from scanning many new matches again and again."""

import contextlib
import gc
import os
from collections.abc import Iterator

_paused = False


@contextlib.contextmanager
def paused() -> Iterator[None]:
    """Pauses the collector, for all threads."""
    global _paused
    if not gc.isenabled():
        yield
        return
    gc.disable()
    _paused = True
    try:
        yield
    finally:
        _paused = False
        gc.enable()


def _go_on_in_child() -> None:
    if _paused:
        gc.enable()


os.register_at_fork(after_in_child=_go_on_in_child)
