"""Tests of the SQLite extension, in the real SQLite, with real text."""

import bisect
import contextlib
import itertools
import os
import random
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import threading
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), ".."))
import material

EXTENSION = os.environ["DICTIONARY_EXTENSION"]
DICTOOL = os.environ["DICTOOL"]
# Scripts that are written without blanks; everything else is found by whole words.
WITHOUT_BLANKS = re.compile(r"[一-鿿ぁ-んァ-ヶー々]{2,}")


def setUpModule():
    global folder, image
    folder = unittest.enterModuleContext(tempfile.TemporaryDirectory())
    image = material.build(DICTOOL, folder)


def connect(path=":memory:"):
    database = sqlite3.connect(path)
    database.enable_load_extension(True)
    database.load_extension(EXTENSION)
    return contextlib.closing(database)


def small_image(name, *records):
    """Builds an image of a few records under a name, in place of an older one."""
    path = os.path.join(folder, name)
    source = "".join("\t".join(record) + "\n" for record in records)
    subprocess.run([DICTOOL, "build", "-", path], input=source.encode(), check=True,
                   capture_output=True)
    return path


def create(database, path=None, options="mode all"):
    database.execute("CREATE VIRTUAL TABLE t USING fts5(body, tokenize = "
                     f"\"dictionary '{path or image}' {options}\")")


def insert(database, *texts):
    database.executemany("INSERT INTO t VALUES (?)", ((text,) for text in texts))


def quoted(text):
    return '"' + text.replace('"', '""') + '"'


def rows(database, query):
    return [row for row, in database.execute("SELECT rowid FROM t WHERE t MATCH ? ORDER BY rowid",
                                             (query,))]


class RealText(unittest.TestCase):
    def test_finds_the_rows_that_hold_a_word(self):
        lines = material.lines()
        self.assertGreater(len(lines), 50_000)
        text = "\n".join(lines)
        starts = [0, *itertools.accumulate(len(line) + 1 for line in lines)]

        def rows_that_hold(word):
            row = 0
            while (place := text.find(word, starts[row])) >= 0:
                row = bisect.bisect(starts, place)
                yield row

        with connect() as database:
            create(database)
            insert(database, *lines)
            drawn = {word for word, in database.execute(
                "SELECT DISTINCT word FROM dictionary_find(?, ?, 'all')", (image, text))
                if WITHOUT_BLANKS.fullmatch(word)}
            for word in random.Random(1).sample(sorted(drawn), 2_000):
                self.assertEqual(rows(database, quoted(word)), list(rows_that_hold(word)), word)
            for row, line in random.Random(2).sample(list(enumerate(lines, 1)), 300):
                for phrase in WITHOUT_BLANKS.findall(line):
                    self.assertIn(row, rows(database, quoted(phrase)), phrase)
            database.execute("INSERT INTO t(t) VALUES ('rebuild')")
            database.execute("INSERT INTO t(t) VALUES ('integrity-check')")


class Queries(unittest.TestCase):
    TEXTS = ("私は東京都に住む。", "京都と東京", "東京の都", "Ｔシャツ と Tシャツ, Café New York",
             "カフェでcafeを飲む")

    def setUp(self):
        self.path = small_image("small.bin", ("東京", "5"), ("東京都", "9"), ("京都", "4"),
                                ("都に", "1"), ("住む", "2"), ("シャツ", "1"), ("飲む", "1"))

    def test_modes(self):
        everywhere = {"東京": [1, 2, 3], "京都": [1, 2], "東京都": [1], "都": [1, 2, 3], "む。": [1, 5],
                      "東京の都": [3], "tシャツ": [4], "CAFE": [4, 5], '京都と東': [2], "york": [4],
                      "zürich": [], "を飲む": [5]}
        for mode, found in (("mode all", everywhere),
                            ("mode longest", {"東京": [2, 3], "東京都に": [1], "シャツ": [4]}),
                            ("mode segment", {"東京": [2, 3], "東京都": [1], "京都": [2]}),
                            ("mode weighted count_field 1", {"東京都": [1], "飲む": [5]}),
                            ("", everywhere), ("mode all remove_diacritics 0", {"cafe": [5]})):
            with connect() as database:
                create(database, self.path, mode)
                insert(database, *self.TEXTS)
                for query, expected in found.items():
                    self.assertEqual(rows(database, quoted(query)), expected, (mode, query))
                database.execute("INSERT INTO t(t) VALUES ('integrity-check')")

    def test_operators_and_offsets(self):
        with connect() as database:
            create(database, self.path)
            insert(database, *self.TEXTS)
            for query, expected in (("東京都 OR 飲む", [1, 5]), ("東京 NOT 京都", [3]), ("new yo*", [4]),
                                    ("京*", [1, 2, 3]), ('"東京" + "の都"', [3]),
                                    ("NEAR(東京 都, 1)", [1, 2, 3]),
                                    ("NEAR(東京 都, 0)", [1]), ("NEAR(new york, 1)", [4])):
                self.assertEqual(rows(database, query), expected, query)
            marked = "SELECT highlight(t, 0, '[', ']'), snippet(t, 0, '<', '>', '…', 3), bm25(t) " \
                     "FROM t WHERE t MATCH ? ORDER BY rank, rowid"
            for query, highlighted in (("東京", ["京都と[東京]", "[東京]の都", "私は[東京]都に住む。"]),
                                       ("京都", ["[京都]と東京", "私は東[京都]に住む。"]),
                                       ("café", ["カフェで[cafe]を飲む",
                                                 "Ｔシャツ と Tシャツ, [Café] New York"])):
                found = database.execute(marked, (query,)).fetchall()
                self.assertCountEqual([row[0] for row in found], highlighted)
                for _, snippet, rank in found:
                    self.assertIn("<", snippet)
                    self.assertLess(rank, 0)

    def test_any_value_of_a_column(self):
        values = ("東京\0京都", b"\xff\xe6\x9d\xb1\xe4\xba\xac\xe6", "", None, 7, "\udfff東京".encode("utf-8", "surrogatepass"),
                  "😀東京𠮷", "東" * 100_000)
        with connect() as database:
            create(database, self.path)
            insert(database, *values)
            self.assertEqual(rows(database, quoted("東京")), [1, 2, 6, 7])
            self.assertEqual(rows(database, quoted("𠮷")), [7])
            self.assertEqual(rows(database, "7"), [5])
            database.execute("INSERT INTO t(t) VALUES ('integrity-check')")


class Images(unittest.TestCase):
    def test_refuses_what_is_no_image(self):
        damaged = os.path.join(folder, "damaged.bin")
        with open(image, "rb") as good, open(damaged, "wb") as bad:
            bad.write(good.read()[:-7])
        verified = subprocess.run([DICTOOL, "verify", damaged], capture_output=True, text=True)
        reason = "the sizes in the header do not add up to the size of the image"
        self.assertIn(reason, verified.stderr)
        cases = ((f"'{damaged}'", reason), ("'/none/words.bin'", "No such file"), ("", "missing"),
                 (f"'{image}' mode some", "mode some"), (f"'{image}' mode", "no value"),
                 (f"'{image}' mode weighted count_field 2", "not a number"),
                 (f"'{image}' mode weighted count_field x", "not a number"))
        with connect() as database:
            for arguments, said in cases:
                with self.assertRaisesRegex(sqlite3.OperationalError, "tokenizer"):
                    database.execute("CREATE VIRTUAL TABLE t USING "
                                     f"fts5(body, tokenize = \"dictionary {arguments}\")")
                self.assertIn(said, database.execute("SELECT dictionary_error()").fetchone()[0])
            for statement in ("SELECT dictionary_verify(?)", "SELECT dictionary_lookup(?, 'a')",
                              "SELECT * FROM dictionary_find(?, 'a')"):
                with self.assertRaisesRegex(sqlite3.OperationalError, re.escape(reason)):
                    database.execute(statement, (damaged,)).fetchall()

    def test_new_connections_get_a_replaced_image(self):
        path = small_image("replaced.bin", ("東京", "old"))
        with connect() as first:
            lookup = "SELECT dictionary_lookup(?, '東京')", (path,)
            create(first, path, "mode segment")
            self.assertEqual(first.execute(*lookup).fetchone(), ("old\t",))
            small_image("replaced.bin", ("東京", "new"), ("京都", "new"))
            with connect() as second:
                self.assertEqual(second.execute(*lookup).fetchone(), ("new\t",))

    def test_maps_one_image_once_for_all_connections(self):
        path = os.path.join(folder, "shared.db")
        with connect(path) as database:
            create(database)
            insert(database, *Queries.TEXTS)
            database.commit()
        found, mapped = [], []

        def query():
            with connect(path) as database:
                for _ in range(50):
                    found.append(tuple(rows(database, quoted("東京"))))
                with open("/proc/self/maps") as maps:
                    mapped.append(sum(image in line for line in maps))

        threads = [threading.Thread(target=query) for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual((len(found), set(found)), (400, {(1, 2, 3)}))
        self.assertEqual(set(mapped), {1})


class Functions(unittest.TestCase):
    def test_lookup_and_find(self):
        path = small_image("functions.bin", ("東京", "noun", "Tokyo"), ("東京都", "noun"))
        with connect() as database:
            lookup = "SELECT dictionary_lookup(?, ?)"
            for key, data in (("東京", "noun\tTokyo\t"), ("東", None), ("", None), (None, None)):
                self.assertEqual(database.execute(lookup, (path, key)).fetchone(), (data,))
            find = "SELECT word, start, length, data, substr(?2, start, length) " \
                   "FROM dictionary_find(?1, ?2{})"
            text = "é😀東京都"
            self.assertEqual(database.execute(find.format(""), (path, text)).fetchall(),
                             [("東京都", 3, 3, "noun\t", "東京都")])
            self.assertEqual(
                [row[0] for row in database.execute(find.format(", 'all'"), (path, text))],
                ["東京", "東京都"])
            self.assertEqual(database.execute(
                "WITH texts(body) AS (VALUES ('東京'), ('都'), ('東京都')) SELECT group_concat(word) "
                "FROM texts, dictionary_find(?, texts.body)", (path,)).fetchone(),
                ("東京,東京都",))
            with self.assertRaises(sqlite3.OperationalError):
                database.execute("SELECT * FROM dictionary_find(?)", (path,))

    @unittest.skipUnless(shutil.which("sqlite3"), "without the sqlite3 shell")
    def test_in_the_shell(self):
        path = small_image("shell.bin", ("東京", "noun"))
        commands = f""".load {EXTENSION}
            CREATE VIRTUAL TABLE t USING fts5(body, tokenize = "dictionary '{path}' mode all");
            INSERT INTO t VALUES ('私は東京に住む');
            SELECT highlight(t, 0, '[', ']') FROM t('東京');"""
        shell = subprocess.run(["sqlite3"], input=commands, capture_output=True, text=True)
        self.assertEqual((shell.stdout, shell.stderr), ("私は[東京]に住む\n", ""))


if __name__ == "__main__":
    unittest.main()
