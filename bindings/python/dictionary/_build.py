"""Builds images and reports what is wrong with a source."""

import os
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from ctypes import byref, pointer, string_at
from typing import IO, Any, NamedTuple

from . import _library
from ._errors import DictionaryError, Problem, exception_of, problem_of
from ._library import (BAD_ARGUMENT, NO_MEMORY, OK, STOPPED, BuildOptions, Error, ImageBuffer,
                       OnProblem, OnProgress, Target, library, path_bytes)
from ._source import Source, is_file, struct_of

# Indexed by the library's numbers.
_STAGES = ("read", "place", "write")

_MOST_PROBLEMS = 2**32 - 1

_Path = str | bytes | os.PathLike[Any]
_Progress = Callable[[str, int, int], object]


class BuildReport(NamedTuple):
    """What a build did."""

    records: int
    keys: int
    """Distinct keys in the image; 0 if no image was made."""
    image_bytes: int
    """0 if no image was made."""
    problem_count: int
    problems: tuple[Problem, ...]
    """The first problems, up to the limit, in the order of the source."""


class BuildError(DictionaryError):
    """A build that failed and made no image. The exception describes the first error; ``problems``
    has everything that was reported, in the order of the source.
    """

    def __init__(self, first: Problem, problems: tuple[Problem, ...]) -> None:
        super().__init__(first)
        self.args = first, problems
        self.problems = problems


class BuildStopped(DictionaryError):
    """A build that its ``progress`` function stopped."""


class _Watch:
    """Receives the library's callbacks, on the thread of the build."""

    def __init__(self, source: Source, progress: _Progress | None) -> None:
        self._source, self._progress = source, progress
        self.problems: list[Problem] = []
        self.failure: BaseException | None = None
        self.stopped = False

    def problem_of(self, error: Error) -> Problem:
        """The problem, with the name of an open file, which the library does not know."""
        name = getattr(self._source, "name", None)
        if error.path is None and error.line and is_file(self._source) and isinstance(name, str):
            error.path = os.fsencode(name)
        return problem_of(error)

    def on_problem(self, _: object, error: Any) -> None:
        self.problems.append(self.problem_of(Error.from_buffer_copy(error.contents)))

    def on_progress(self, _: object, stage: int, done: int, total: int) -> bool:
        if self._progress is not None and not self.stopped:
            try:
                # Never set to False here: an interrupted caller may have set it to True meanwhile.
                if self._progress(_STAGES[stage], done, total) is False:
                    self.stopped = True
            except BaseException as failure:
                self.failure, self.stopped = failure, True
        return not self.stopped


def build(source: Source, image: _Path | IO[bytes] | None, *, lenient: bool = False,
          from_windows: bool = False, allow_empty: bool = False, folded: bool = False,
          field_separator: str = "\t", record_separator: str = "\n", problem_limit: int = 100,
          progress: _Progress | None = None) -> BuildReport:
    """Builds the image file ``image`` from ``source``, which is one of these:

    - The path of a source file, or a file that is open for reading. It has one record per line: a
      key and its data fields, separated by tabs, or by other separators.
    - A mapping of keys to their data, or an iterable of pairs of a key and its data. The data is
      one field or an iterable of fields. The ``line`` of a problem is then the number of the item,
      from 1.

    The new image replaces an old one in one step, when it is complete. ``image`` may also be a file
    that is open for writing bytes. If it is None, the source is only checked.

    ``lenient`` turns four errors into warnings: an empty key, a key that is not UTF-8, a carriage
    return at the end of a line, and a byte-order mark. ``from_windows`` drops such carriage returns
    and a byte-order mark. ``allow_empty`` makes an empty image from a source without records.
    ``folded`` folds case and width, in the keys and in whatever is looked up. At most
    ``problem_limit`` problems are kept.

    ``progress`` is called with the stage ("read", "place" or "write"), the amount done and the
    total, which is 0 while it is not known. The stage "read" counts bytes or items, "place" counts
    keys, and "write" counts bytes. The function runs on the thread of the build while the caller
    waits. The build stops when it returns False or raises an exception, and when the caller is
    interrupted.

    Raises BuildError, BuildStopped or what ``progress`` raised; then no new image is made.

    >>> import io
    >>> from dictionary import Dictionary
    >>> Dictionary.build({"a": "letter", "\\U0001F600": ["face", "smiling"]}, "some.bin").keys
    2
    >>> Dictionary.build(io.StringIO("a\\tletter\\nb\\n"), "some.bin")
    Traceback (most recent call last):
    dictionary._build.BuildError: 2:2: no-field: the record has no field separator; ...
    """
    if not 0 < problem_limit <= _MOST_PROBLEMS:
        raise ValueError(f"problem_limit must be from 1 to {_MOST_PROBLEMS}")
    watch = _Watch(source, progress)
    options = BuildOptions(
        fieldSeparator=_notation(field_separator), recordSeparator=_notation(record_separator),
        problemLimit=problem_limit, lenient=lenient, fromWindows=from_windows,
        allowEmpty=allow_empty, folded=folded, onProblem=OnProblem(watch.on_problem),
        onProgress=OnProgress(watch.on_progress))
    if image is None:
        return _build(watch, struct_of(source), Target(), options)
    if isinstance(image, (str, bytes, os.PathLike)):
        return _build(watch, struct_of(source), Target(path=path_bytes(image)), options)
    return _build_into(image, watch, struct_of(source), options)


def _build_into(file: IO[bytes], watch: _Watch, source: _library.Source,
                options: BuildOptions) -> BuildReport:
    buffer = ImageBuffer()
    try:
        report = _build(watch, source, Target(buffer=pointer(buffer)), options)
        file.write(string_at(buffer.bytes, buffer.size))
        return report
    finally:
        library.dictionaryFreeBuffer(byref(buffer))


def _build(watch: _Watch, source: _library.Source, target: Target,
           options: BuildOptions) -> BuildReport:
    report, error = _library.BuildReport(), Error()
    _run(watch, byref(source), byref(target), byref(options), byref(report), byref(error))
    if watch.failure is not None:
        raise watch.failure
    if error.code != OK:
        raise _exception(watch, error)
    return BuildReport(report.records, report.keys, report.imageBytes, report.problems,
                       tuple(watch.problems))


def _run(watch: _Watch, *arguments: Any) -> None:
    """Calls the library on another thread, because no exception can leave its callbacks. So an
    interrupt reaches the waiting caller, and stops the build.
    """
    with ThreadPoolExecutor(max_workers=1) as thread:
        try:
            thread.submit(library.dictionaryBuildFrom, *arguments).result()
        finally:
            watch.stopped = True


def _exception(watch: _Watch, error: Error) -> Exception:
    if error.code in (BAD_ARGUMENT, NO_MEMORY):
        return exception_of(error)
    problem = watch.problem_of(error)
    if error.code == STOPPED:
        return BuildStopped(problem)
    return BuildError(problem, tuple(watch.problems))


def _notation(separator: str) -> bytes:
    """A separator in the library's notation, each byte as a backslash and three digits."""
    return "".join(f"\\{byte:03}" for byte in separator.encode()).encode()
