"""Builds image files and tells what is wrong with a source."""

import os
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from ctypes import byref, sizeof
from typing import IO, Any, NamedTuple

from ._library import (NOT_BUILT, STOPPED, BuildCounts, BuildOptions, OnProblem, OnProgress,
                       library, path_bytes)

# By the library's numbers.
_SEVERITIES = ("error", "refused", "warning")
_STAGES = ("read", "place", "write")

_OF_THE_IMAGE = "cannot-write"
_MOST_PROBLEMS = 2**32 - 1

_Path = str | bytes | os.PathLike[Any]
_Progress = Callable[[str, int, int], object]


class Problem(NamedTuple):
    """What is wrong with a source, or with the place of an image."""

    file: str
    line: int | None
    """The record's number, from 1; None where no record is meant."""
    column: int | None
    """The byte in the record, from 1; None where no byte is meant."""
    code: str
    """A name: "no-field"."""
    severity: str
    """An "error" prevents the image; a key is "refused" and left out; or a "warning"."""
    text: str
    """What is wrong and what to do about it."""
    errno: int | None
    """Where the system refused."""

    def __str__(self) -> str:
        place = (self.file, self.line, self.column)
        place_text = ":".join(str(part) for part in place if part is not None)
        return f"{place_text}: {self.code}: {self.text}"


class BuildReport(NamedTuple):
    """What a build did."""

    records: int
    keys: int
    """Distinct ones in the image."""
    refused: int
    """Distinct ones left out."""
    image_bytes: int
    problem_count: int
    problems: tuple[Problem, ...]
    """The first of them, in the order of the source, up to the limit."""


class BuildError(Exception):
    """A source of which no image was made. ``file``, ``line``, ``column``, ``code`` and ``text``
    are those of the first error, ``problems`` all that were told, in the order of the source.
    """

    def __init__(self, problems: tuple[Problem, ...]) -> None:
        super().__init__(problems)
        self.problems = problems
        self.first = next(problem for problem in problems if problem.severity == "error")
        self.file, self.line, self.column, self.code, _, self.text, self.errno = self.first

    def __str__(self) -> str:
        return str(self.first)


class BuildStopped(Exception):
    """A build that its progress function stopped."""


class _Watch:
    """Takes what the library calls back, on the build's thread."""

    def __init__(self, source: str, image: str, progress: _Progress | None) -> None:
        self._source, self._image, self._progress = source, image, progress
        self.problems: list[Problem] = []
        self.failure: BaseException | None = None
        self.stopped = False

    def on_problem(self, _: object, pointer: Any) -> None:
        told = pointer.contents
        code = library.dictionaryProblemName(told.code).decode()
        self.problems.append(Problem(
            self._image if code == _OF_THE_IMAGE else self._source, told.line or None,
            told.column or None, code, _SEVERITIES[told.severity],
            told.text.decode(errors="replace"), told.systemError or None))

    def on_progress(self, _: object, stage: int, done: int, total: int) -> bool:
        if self._progress is not None and not self.stopped:
            try:
                # Never the other way round, as the caller may be interrupted meanwhile.
                if self._progress(_STAGES[stage], done, total) is False:
                    self.stopped = True
            except BaseException as failure:
                self.failure, self.stopped = failure, True
        return not self.stopped


def build(source: _Path | IO[str] | IO[bytes], image: _Path | None, *, lenient: bool = False,
          field_separator: str = "\t", record_separator: str = "\n", problem_limit: int = 100,
          progress: _Progress | None = None) -> BuildReport:
    """Builds the image file ``image`` from ``source``, a path or a file that is open for reading.

    A source has a record a line, a key and its data fields set apart by tabs, or by other
    separators. The new image replaces an old one at once when it is complete. Where ``image`` is
    None, the source is only checked. ``lenient`` makes warnings of an empty key, a key that is not
    UTF-8, a carriage return at the end of a line and a byte-order mark. At most ``problem_limit``
    problems are kept.

    ``progress`` is called with a stage ("read", "place", "write"), how far it is and its total, 0
    if that is not known yet; in bytes, but keys for "place". It runs on a thread of the build's,
    while the caller waits. The build stops when it returns False, when it raises something and
    when the caller is interrupted.

    Raises BuildError, BuildStopped or what ``progress`` raised; then there is no new image.

    >>> import io
    >>> from dictionary import Dictionary
    >>> Dictionary.build(io.StringIO("a\\tletter\\n\\U0001F600\\tface\\n"), "letters.bin").refused
    1
    >>> Dictionary.build(io.StringIO("a\\tletter\\nb\\n"), "letters.bin")
    Traceback (most recent call last):
    dictionary._build.BuildError: <source>:2:2: no-field: the record has no field separator; ...
    """
    if not 0 < problem_limit <= _MOST_PROBLEMS:
        raise ValueError(f"problem_limit must be from 1 to {_MOST_PROBLEMS}")
    name = _name(source)
    watch = _Watch(name, "" if image is None else os.fsdecode(image), progress)
    counts = BuildCounts(sizeof(BuildCounts))
    options = BuildOptions(
        sizeof(BuildOptions), _notation(field_separator), _notation(record_separator),
        problem_limit, lenient, OnProblem(watch.on_problem), OnProgress(watch.on_progress))
    target = None if image is None else path_bytes(image)
    function, content = _content(source)
    result = _run(watch, function, *content, target, byref(options), byref(counts))
    if watch.failure is not None:
        raise watch.failure
    if result == STOPPED:
        raise BuildStopped(name)
    if result == NOT_BUILT:
        raise BuildError(tuple(watch.problems))
    return BuildReport(counts.records, counts.keys, counts.refused, counts.imageBytes,
                       counts.problems, tuple(watch.problems))


def _run(watch: _Watch, function: Callable[..., int], *arguments: Any) -> int:
    """Calls the library on another thread, as no exception can leave one of its callbacks: an
    interrupt reaches the caller, who waits, and stops the build.
    """
    with ThreadPoolExecutor(max_workers=1) as thread:
        try:
            return thread.submit(function, *arguments).result()
        finally:
            watch.stopped = True


def _name(source: _Path | IO[str] | IO[bytes]) -> str:
    if hasattr(source, "read"):
        return str(getattr(source, "name", "<source>"))
    return os.fsdecode(source)


def _content(source: Any) -> tuple[Callable[..., int], tuple[Any, ...]]:
    """The function that builds from such a source, and the source for it."""
    if not hasattr(source, "read"):
        return library.dictionaryBuild, (path_bytes(source),)
    content = source.read()
    raw = content.encode() if isinstance(content, str) else bytes(content)
    return library.dictionaryBuildBytes, (raw, len(raw))


def _notation(separator: str) -> bytes:
    """A separator in the library's notation, each byte as a backslash and three digits."""
    return "".join(f"\\{byte:03}" for byte in separator.encode()).encode()
