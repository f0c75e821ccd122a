"""Dictionaries on a dask cluster: an image reaches every worker, is checked there before work
begins, and is opened once per worker process. This needs the package ``distributed``.

    client = Client("tcp://scheduler:8786")
    image = upload(client, "words.bin")
    client.submit(lambda text: image.dictionary.find_all(text), "東京都")
"""

import os
from collections.abc import Iterable
from functools import lru_cache
from typing import Any, NamedTuple

from distributed import Client, Worker, WorkerPlugin, get_worker

from . import Dictionary, ImageError, __version__

_MOST_OPEN = 8

_Path = str | os.PathLike[str]


class WorkerError(Exception):
    """Workers that cannot be used. ``problems`` has a line for each: its address and what is wrong
    there.
    """

    def __init__(self, *problems: str) -> None:
        super().__init__(*problems)
        self.problems = problems

    def __str__(self) -> str:
        return "\n".join(self.problems)


class SharedImage(NamedTuple):
    """An image that every worker has. Give it to tasks; it is small."""

    path: str
    """The path on the workers; a name without a folder is in the worker's own folder."""
    digest: str
    version: str
    """The client's version of this package."""

    @property
    def dictionary(self) -> Dictionary:
        """The dictionary, inside a task. It belongs to the worker process. The first call in a
        process opens it, and raises WorkerError if the version or the digest is not the client's.
        Later calls find it open; a process keeps the last 8 images open.
        """
        return self._on(get_worker())

    def _on(self, worker: Worker) -> Dictionary:
        return _opened(self, worker.local_directory, worker.address)


def upload(client: Client, path: _Path) -> SharedImage:
    """Sends the client's image file to every worker, including those that join later.

    Raises WorkerError if a worker has another version of this package, or cannot open the same
    image afterwards. Raises ImageError or OSError if the client cannot open the file. The image
    passes through the memory of the scheduler, and each worker process keeps a file of its own in
    its folder. For large images, see ``installed``.
    """
    image = _image(path)
    # A file that some process has mapped must not change, so other bytes get another name.
    stored = image._replace(path=f"{image.digest}-{os.path.basename(path)}")
    return _share(client, stored, _Upload(path, stored.path))


def installed(client: Client, path: _Path) -> SharedImage:
    """An image file that the client and every worker already have under the same path, on a shared
    disk or as copies. Worker processes on one machine share its memory. Raises what ``upload``
    raises.
    """
    return _share(client, _image(path))


class _Upload(WorkerPlugin):
    """Stores a file on a worker: now, or when the worker starts."""

    def __init__(self, path: _Path, name: str) -> None:
        self._name = name
        with open(path, "rb") as file:
            self._data = file.read()

    async def setup(self, worker: Worker) -> None:
        if not os.path.exists(os.path.join(worker.local_directory, self._name)):
            await worker.upload_file(self._name, self._data, load=False)
        # Only this worker's copy goes; the scheduler keeps one for workers that join later.
        self._data = b""


def _image(path: _Path) -> SharedImage:
    with Dictionary.open(path) as words:
        return SharedImage(os.path.abspath(path), words.digest, __version__)


def _share(client: Any, image: SharedImage, upload: _Upload | None = None) -> SharedImage:
    _check_versions(client)
    if upload:
        client.register_worker_plugin(upload, name=image.path)
    answers = client.run(_check, image, on_error="return")
    _refuse(str(answer) if isinstance(answer, WorkerError) else f"{worker}: {answer!r}"
            for worker, answer in answers.items() if answer is not None)
    return image


def _check_versions(client: Any) -> None:
    """Asks through dask, as other versions of this module may not understand this one."""
    workers = client.get_versions(packages=[__package__])["workers"]
    found = {worker: answer["packages"][__package__] for worker, answer in workers.items()}
    _refuse(_version_problem(worker, version, __version__)
            for worker, version in found.items() if version != __version__)


def _check(image: SharedImage, dask_worker: Worker) -> None:
    image._on(dask_worker)


def _refuse(problems: Iterable[str]) -> None:
    if lines := tuple(problems):
        raise WorkerError(*lines)


@lru_cache(_MOST_OPEN)
def _opened(image: SharedImage, folder: str, worker: str) -> Dictionary:
    if image.version != __version__:
        raise WorkerError(_version_problem(worker, __version__, image.version))
    path = os.path.join(folder, image.path)
    try:
        words = Dictionary.open(path)
    except (ImageError, OSError) as error:
        raise WorkerError(f"{worker}: {error}") from error
    if words.digest != image.digest:
        raise WorkerError(f"{worker}: {path}: another image than the client's: its digest is "
                          f"{words.digest}, expected {image.digest}")
    return words


def _version_problem(worker: str, found: Any, expected: str) -> str:
    return f"{worker}: package {__package__} {found or 'missing'}, expected {expected}"
