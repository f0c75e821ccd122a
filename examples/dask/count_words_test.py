#!/usr/bin/env python3
"""Runs count_words.py on a real scheduler with workers in empty folders, kills one of them before
it is done, and compares the counts with those of a single process. Workers with another version of
the package or another image are refused.

usage: count_words_test.py SOURCE TEXT
"""

import faulthandler
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
from collections import Counter
from contextlib import ExitStack
from pathlib import Path

import count_words
import dictionary
from dictionary import Dictionary
from dictionary.cluster import WorkerError, installed, upload
from distributed import Client

SOURCE, TEXT = sys.argv[1:]
FILES = 24
SECONDS = 90
OPTIONS = {"scheduler": ("--port", "0", "--no-show", "--idle-timeout", "90"),
         "worker": ("--nthreads", "1", "--no-nanny", "--death-timeout", "90")}
OTHER_VERSION = "0.9.0"
# The same path in all processes, but a different file in each.
OWN_IMAGE = "/proc/self/cwd/words.bin"


class Cluster:
    """A scheduler, workers and a client, each process of the engine in an empty folder."""

    def __init__(self, folder, stack):
        self._folder, self._stack = folder, stack
        self._scheduler_file = folder / "scheduler.json"
        self._start_engine("scheduler", "scheduler")
        self.workers = [self._start_worker(name) for name in ("alice", "bob")]
        self.client = stack.enter_context(Client(scheduler_file=str(self._scheduler_file)))
        self.client.wait_for_workers(len(self.workers), timeout=SECONDS)

    def add_worker(self, name, **environment):
        worker = self._start_worker(name, **environment)
        wait_for(lambda: self.address(name))
        return worker

    def kill(self, name, worker):
        worker.kill()
        wait_for(lambda: not self.address(name))

    def address(self, name):
        workers = self.client.scheduler_info()["workers"].items()
        return next((address for address, worker in workers if worker["name"] == name), None)

    def worker_that_has_open(self, path):
        return next((worker for worker in self.workers if has_open(worker, path)), None)

    def _start_worker(self, name, **environment):
        return self._start_engine("worker", name, "--name", name, "--local-directory",
                                  self._folder / name, **environment)

    def _start_engine(self, kind, name, *options, **environment):
        folder = self._folder / name
        folder.mkdir()
        log = self._stack.enter_context(open(f"{folder}.log", "wb"))
        return start(
            self._stack, sys.executable, "-m", f"distributed.cli.dask_{kind}", "--host",
            "127.0.0.1", "--no-dashboard", "--scheduler-file", self._scheduler_file,
            *OPTIONS[kind], *options, cwd=folder, env=os.environ | environment, stderr=log)


def start(stack, *command, **options):
    """Starts a process, which ends with the stack."""
    process = subprocess.Popen(command, **options)
    stack.callback(process.wait)
    stack.callback(process.kill)
    return process


def has_open(process, path):
    files = Path(f"/proc/{process.pid}/fd").iterdir()
    return any(os.path.realpath(file) == str(path) for file in files)


def wait_for(find):
    """What `find` returns once that is true."""
    end = time.monotonic() + SECONDS
    while not (found := find()):
        if time.monotonic() > end:
            raise TimeoutError
        time.sleep(0.01)
    return found


def package_of_version(version, folder):
    """A folder with a copy of the package that says it is of another version."""
    shutil.copytree(Path(dictionary.__file__).parent, folder / "dictionary")
    with open(folder / "dictionary" / "__init__.py", "a", encoding="utf-8") as module:
        module.write(f'\n__version__ = "{version}"\n')
    return str(folder)


def write_texts(folder):
    """Files of different sizes; the last is a pipe, whose reader waits. Returns the pipe."""
    folder.mkdir()
    text = Path(TEXT).read_bytes()
    for number in range(FILES):
        (folder / f"{number:02}.txt").write_bytes(text * (number + 1))
    pipe = folder / f"{FILES}.txt"
    os.mkfifo(pipe)
    return pipe


def counts_of_one_process(image, folder):
    with Dictionary.open(image) as words:
        return Counter(match.fields[0] for path in folder.iterdir()
                       for match in words.segment(path.read_text("utf-8")))


class ClusterTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        stack = cls.enterClassContext(ExitStack())
        cls.folder = Path(stack.enter_context(tempfile.TemporaryDirectory())).resolve()
        cls.image, cls.other_image = cls.folder / "words.bin", cls.folder / "other.bin"
        Dictionary.build(SOURCE, cls.image)
        Dictionary.build({"東京": "noun"}, cls.other_image)
        cls.cluster = Cluster(cls.folder, stack)

    def assert_refused(self, share, path, *lines):
        with self.assertRaises(WorkerError) as caught:
            share(self.cluster.client, path)
        self.assertEqual(caught.exception.problems, lines)

    def test_worker_with_another_version_is_refused(self):
        image = upload(self.cluster.client, self.image)
        package = package_of_version(OTHER_VERSION, self.folder / "package")
        old = self.cluster.add_worker("old", PYTHONPATH=package)
        problem = (f"{self.cluster.address('old')}: package dictionary {OTHER_VERSION}, expected "
                   f"{dictionary.__version__}")
        for share in (upload, installed):
            self.assert_refused(share, self.image, problem)
        with self.assertRaisesRegex(WorkerError, f"^{problem}$"):
            self.cluster.client.submit(lambda: image.dictionary, workers=["old"]).result(SECONDS)
        self.cluster.kill("old", old)

    def test_worker_with_another_image_is_refused(self):
        os.chdir(self.folder)
        (_, own_folder), (worker, folder) = self.cluster.client.run(os.getcwd).items()
        shutil.copy(self.image, own_folder)
        self.assert_refused(installed, OWN_IMAGE, f"{worker}: [Errno 2] No such file or "
                            f"directory: '{OWN_IMAGE}'")
        shutil.copy(self.other_image, f"{folder}/words.bin")
        digests = [Dictionary.open(image).digest for image in (self.other_image, self.image)]
        self.assert_refused(installed, OWN_IMAGE, f"{worker}: {OWN_IMAGE}: another image than the "
                            "client's: its digest is {}, expected {}".format(*digests))

    def test_counts_are_those_of_one_process_though_a_worker_is_killed(self):
        image, texts = upload(self.cluster.client, self.image), self.folder / "texts"
        pipe = write_texts(texts)
        with open(pipe, "r+b", buffering=0), ExitStack() as stack:
            program = start(stack, sys.executable, count_words.__file__,
                            self.cluster.client.scheduler.address, self.image, texts,
                            stdout=subprocess.PIPE, encoding="utf-8")
            reader = wait_for(lambda: self.cluster.worker_that_has_open(pipe))
            os.replace(shutil.copy(TEXT, self.folder), pipe)
            self.cluster.add_worker("late")
            reader.kill()
            found, _ = program.communicate(timeout=SECONDS)
        expected = counts_of_one_process(self.image, texts)
        self.assertEqual(found.splitlines(), [f"{part}\t{times}"
                                              for part, times in sorted(expected.items())])
        late = self.cluster.client.submit(lambda: image.dictionary["東京"], workers=["late"])
        self.assertEqual(late.result(SECONDS), "noun\tTokyo\t")


if __name__ == "__main__":
    faulthandler.dump_traceback_later(240, exit=True)
    unittest.main(argv=sys.argv[:1])
