"""Problems that the library reports, and the exceptions that carry them."""

import os
from ctypes import byref, create_string_buffer
from typing import NamedTuple

from ._library import BAD_ARGUMENT, NO_MEMORY, TEXT_TOO_LONG, Error, library

# Indexed by the library's numbers.
_SEVERITIES = ("error", "warning")
_FILES = (None, "source", "image")

_NO_PROBLEMS = {NO_MEMORY: MemoryError, BAD_ARGUMENT: ValueError, TEXT_TOO_LONG: ValueError}


class Problem(NamedTuple):
    """What is wrong with a source, an image or a call, and where. ``str()`` of it is one line."""

    code: str
    """A name, such as "no-field"."""
    severity: str
    """An "error"; or a "warning" if the call did what was asked for nevertheless."""
    file: str | None
    """Which file it concerns: the "source" or the "image"."""
    path: str | None
    """The path of that file; None for bytes in memory."""
    line: int | None
    """The number of the record or of the item, from 1."""
    column: int | None
    """The byte in the record, from 1."""
    cell: int | None
    """The cell of the image."""
    offset: int | None
    """The byte of the image, from 0."""
    errno: int | None
    """Why the system refused, where it did."""
    text: str
    """What is wrong and what to do about it."""
    message: str
    """All of that in one line."""

    def __str__(self) -> str:
        return self.message


class DictionaryError(Exception):
    """What the library refused to do. It has the members of its ``problem``, too."""

    def __init__(self, problem: Problem) -> None:
        super().__init__(problem)
        self.problem = problem
        (self.code, self.severity, self.file, self.path, self.line, self.column, self.cell,
         self.offset, self.errno, self.text, self.message) = problem

    def __str__(self) -> str:
        return self.message


class ImageError(DictionaryError):
    """An image that is refused: it is damaged, or not an image at all."""


def problem_of(error: Error) -> Problem:
    size = library.dictionaryErrorMessage(byref(error), None, 0) + 1
    message = create_string_buffer(size)
    library.dictionaryErrorMessage(byref(error), message, size)
    return Problem(
        library.dictionaryCodeName(error.code).decode(), _SEVERITIES[error.severity],
        _FILES[error.file], None if error.path is None else os.fsdecode(error.path),
        error.line or None, error.column or None, error.cell if error.cell >= 0 else None,
        error.offset if error.offset >= 0 else None, error.systemError or None,
        error.text.decode(errors="replace"), message.value.decode(errors="replace"))


def exception_of(error: Error, kind: type[DictionaryError] = DictionaryError) -> Exception:
    """The exception for an error: Python's own where there is one, else ``kind``."""
    problem = problem_of(error)
    if error.code in _NO_PROBLEMS:
        return _NO_PROBLEMS[error.code](problem.message)
    if error.systemError:
        return OSError(error.systemError, os.strerror(error.systemError), problem.path)
    return kind(problem)
