"""Runs dictool as its users do. DICTOOL and EXAMPLES in the environment say where things are."""

import json
import os
import random
import re
import shutil
import resource
import signal
import struct
import subprocess
import tempfile
import unittest

DICTOOL = os.environ["DICTOOL"]
EMULATED = os.environ.get("EMULATED") == "TRUE"
EXAMPLES = os.environ["EXAMPLES"]
HERE = tempfile.mkdtemp(prefix="dictool")
COMMANDS = "build lint search segment replace lookup keys dump stat verify diff view".split()
SOURCE = "\\n\tline\nabc\tn\t1\nbc\tv\nab\t\n東京\tplace\n東京都\tplace\tbig\nbc\tw\n"
FREE_CELL = struct.pack("<3i", 0, 0, -1)
NONE, TROUBLE, BAD_IMAGE, INTERRUPTED, CLOSED_PIPE = 1, 2, 4, 130, 141


def run(*arguments, given=b"", **options):
    """Status, output and errors of one run; texts are UTF-8."""
    given = given.encode() if isinstance(given, str) else given
    done = subprocess.run([DICTOOL, *arguments], input=given, cwd=HERE, timeout=300,
                          stdout=options.pop("stdout", subprocess.PIPE), stderr=subprocess.PIPE,
                          **options)
    return done.returncode, done.stdout, done.stderr.decode(errors="replace")


def write(name, content):
    with open(os.path.join(HERE, name), "wb") as file:
        file.write(content if isinstance(content, bytes) else content.encode())
    return name


def read(name):
    with open(os.path.join(HERE, name), "rb") as file:
        return file.read()


# For tests that are the same on every machine and take long under an emulator.
native = unittest.skipIf(EMULATED, "not under an emulator")


def with_sample(options):
    """The arguments of a command with the sample's image."""
    command, *others = options.split()
    return [command, "sample.bin", *others]


def setUpModule():
    assert run("build", "-", "words.bin", given=SOURCE)[0] == 0
    assert run("build", "-", "mine.bin", given="xab\tmine\nbc\tmine\n")[0] == 0
    assert run("build", os.path.join(EXAMPLES, "sample.tsv"), "sample.bin")[0] == 0
    words = [line.split("\t")[0] for line in run("dump", "sample.bin")[1].decode().splitlines()]
    dice = random.Random(7)
    lines = ("".join(dice.choices([*words, " ", ", ", "?"], k=dice.randrange(60)))
             for _ in range(5000))
    write("large.txt", "\n".join(lines))


def tearDownModule():
    shutil.rmtree(HERE)


def match(start, length, key, *data):
    return {"start": start, "length": length, "key": key, "data": list(data)}


def lines_of(*objects):
    return "".join(json.dumps(item, ensure_ascii=False, separators=(",", ":")) + "\n"
                   for item in objects)


ABC = match(1, 3, "abc", "n", "1")
BC = match(2, 2, "bc", "v", ";w")

# Arguments, standard input, output; status 0.
ANSWERS = [
    ("search", "xabc\n東京都\n\nq\n", "abc\tbc\t\n東京都\t\n\n\n"),
    ("search -d", "xabc", "abc/1:n\t1\t\tbc/2:v\t;w\t\t\n"),
    ("search --all -d", "xabc\n", "ab/1:\t\tabc/1:n\t1\t\tbc/2:v\t;w\t\t\n"),
    ("search --classic", b"bc\xffbc\nab\0bc\n", "bc\t\nab\t\n"),
    ("search", b"bc\xffbc\nab\0bc\nab\xf0\x9f\x98\x80\n", "bc\tbc\t\nab\tbc\t\nab\t\n"),
    ("search --classic", "ab😀bc\n", "bc\t\n"),
    ("search --windows -f tsv", b"\xef\xbb\xbfxab\r\nbc\r", "1\t1\t2\tab\t\n2\t0\t2\tbc\tv\t;w\n"),
    ("search -z -d", "x\nabc\0ab", "\n/1:line\t\tabc/2:n\t1\t\tbc/3:v\t;w\t\t\0ab/0:\t\t\0"),
    ("search -f tsv", "\nxabc\n", "2\t1\t3\tabc\tn\t1\n2\t2\t2\tbc\tv\t;w\n"),
    ("search -f tsv --offset char", "é東京都\n", "1\t1\t3\t東京都\tplace\tbig\n"),
    ("search --longest -d --offset char", b"\xff\xe6bc", "bc/2:v\t;w\t\t\n"),
    ("search -f json", "xabc\nq\n",
     lines_of({"line": 1, "matches": [ABC, BC]}, {"line": 2, "matches": []})),
    ("segment", "xabcbc東京都ab\n", "abc\tbc\t東京都\tab\t\n"),
    ("segment --keep", "x, abc!", "x, \tabc\t!\t\n"),
    ("segment --keep -f json --offset char", b"\"\\\x01\xff\xe6bc\n",
     '{"line":1,"matches":[{"start":0,"length":5,"key":"\\"\\\\\\u0001\ufffd\ufffd","data":null},'
     '{"start":5,"length":2,"key":"bc","data":["v",";w"]}]}\n'),
    ("lookup", "abc\nx\nab", "abc\tn\t1\nab\t\n"),
    ("lookup -f tsv", "x\nabc\n", "2\tabc\tn\t1\n"),
    ("lookup --missing", "abc\nx\n\\\n", "x\n\\\n"),
    ("lookup --missing -f tsv", "abc\nx\n", "2\tx\t\n"),
    ("lookup --windows", "ab\r\nab\n", "ab\t\nab\t\n"),
    ("lookup -z", "\n\0x", "\n\tline\0"),
    ("lookup -f json", "x\nab\n", lines_of({"line": 1, "key": "x", "found": False},
                                           {"line": 2, "key": "ab", "found": True, "data": [""]})),
    ("keys", "", "\\n\nab\nabc\nbc\n東京\n東京都\n"),
    ("keys 東 --data", "", "東京\tplace\n東京都\tplace\tbig\n"),
    ("keys -z -d --limit 2", "", "\n\tline\0ab\t\0"),
    ("keys -f tsv --limit 2", "", "1\t\\n\tline\n2\tab\t\n"),
    ("keys -f json b", "", lines_of({"key": "bc", "data": ["v", ";w"]})),
    ("keys --count", "", "6\n"),
    ("search --word", "abc bcx bc\n", "abc\tbc\t\n"),
    ("segment --word --pieces", "xbc bc", "x\tb\tc\t \tbc\t\n"),
    ("segment --join-runs -f tsv", "xy ab", "1\t0\t2\txy\t\n1\t2\t1\t \t\n1\t3\t2\tab\t\n"),
    ("replace", b"xabc, \xff\nab\xe6\x9d\xb1\xe4\xba\xac", b"xn, \xff\nabplace\n"),
    ("replace --word", "xabc abc\n", "xabc n\n"),
    ("replace --field 2 --remove-empty", "abc, 東京都東京\n", "1, big\n"),
    ("replace --alternatives a", "東京\n", "pl\n"),
    ("search -D mine.bin -d", "xabc", "xab/0:mine\t\tabc/1:n\t1\t\tbc/2:mine\t\t\n"),
    ("search -D mine.bin --every-image -f tsv", "xbc",
     "1\t1\t2\tbc\tv\t;w\n1\t1\t2\tbc\tmine\n"),
    ("search --all -D mine.bin --every-image -f json", "xab",
     lines_of({"line": 1, "matches": [{**match(0, 3, "xab", "mine"), "image": 1},
                                      {**match(1, 2, "ab", ""), "image": 0}]})),
    ("keys -D mine.bin -d", "", "\\n\tline\nab\t\nabc\tn\t1\nbc\tmine\nxab\tmine\n"
     "東京\tplace\n東京都\tplace\tbig\n"),
    ("lookup -D mine.bin", "bc\nxab\nab\n", "bc\tmine\nxab\tmine\nab\t\n"),
    ("replace -D mine.bin -D words.bin", "xabbc\n", "minev\n"),
    ("dump", "", "\\n\tline\nab\t\nabc\tn\t1\nbc\tv\t;w\n東京\tplace\n東京都\tplace\tbig\n"),
    ("verify", "", "words.bin: ok\n"),
    ("verify -q", "", ""),
]

# Source, what is reported about it, status of building it, status with --lenient.
FAULTS = [
    (b"a\tx\nb\n", ["2:2: error no-field"], TROUBLE, TROUBLE),
    (b"a\tx\n\nb\ty\n", ["2:1: error empty-record"], TROUBLE, TROUBLE),
    (b"\tx\nb\ty\n", ["1:1: error empty-key"], TROUBLE, 0),
    (b"ab\xffc\tx\n", ["1:3: error bad-utf8"], TROUBLE, 0),
    (b"a\tx\0y\n", ["1:4: error nul"], TROUBLE, TROUBLE),
    (b"a\tx\r\n", ["1:4: error cr"], TROUBLE, 0),
    (b"\xef\xbb\xbfa\tx\n", ["1:1: error bom"], TROUBLE, 0),
    (b"a\tx\nb\ty", ["2:4: error unfinished"], TROUBLE, TROUBLE),
    (b"a\t" + b"x" * 4194304 + b"\n", ["1:4194299: error record-too-long"], TROUBLE, TROUBLE),
    (b"", [" error no-records"], TROUBLE, TROUBLE),
    (b"\x1f\x8b\x08", [" error not-text: this is a gzip file; try zcat FILE"], TROUBLE, TROUBLE),
    (b"a\nb\n\xff\tx\n", ["1:2: error no-f", "2:2: error no-f", "3:1: error bad"],
     TROUBLE, TROUBLE),
]


class Case(unittest.TestCase):
    def assertRefused(self, result, status, *beginnings):
        self.assertEqual(result[0], status, result)
        lines = result[2].splitlines()
        self.assertEqual(len(lines), len(beginnings), lines)
        for line, beginning in zip(lines, beginnings):
            self.assertTrue(line.startswith("dictool: " + beginning), line)


class Commands(Case):
    def test_answers(self):
        for arguments, given, expected in ANSWERS:
            with self.subTest(arguments, given=given):
                command, *options = arguments.split()
                result = run(command, "words.bin", *options, given=given)
                expected = expected if isinstance(expected, bytes) else expected.encode()
                self.assertEqual(result, (0, expected, ""))

    def test_keys_are_taken_as_they_come(self):
        keys = ["[a,b]", "[]", "{}", "", "%%", "search", "-", "--", "--all", "[b]", "東京"]
        found = run("lookup", "words.bin", "-f", "json", *keys)
        answers = [json.loads(line) for line in found[1].splitlines()]
        keys.remove("--")
        self.assertEqual([answer["key"] for answer in answers], keys)
        self.assertEqual([answer["found"] for answer in answers], 9 * [False] + [True])

    def test_nothing_found(self):
        for arguments in (["search"], ["segment", "--keep"], ["segment", "--pieces"], ["replace"],
                          ["lookup", "-f", "json"]):
            self.assertEqual(run(*arguments, "words.bin", given="q\n")[0], NONE)
            self.assertEqual(run(*arguments, "words.bin", "--exit-zero", given="q\n")[0], 0)

    def test_wrong_sources(self):
        for source, told, status, lenient in FAULTS:
            with self.subTest(source[:20]):
                write("old.bin", "old")
                write("wrong.tsv", source)
                told = ["wrong.tsv:" + line for line in told]
                self.assertRefused(run("lint", "-q", "wrong.tsv"), status, *told)
                self.assertRefused(run("build", "-q", "wrong.tsv", "old.bin"), status, *told)
                self.assertEqual(read("old.bin"), b"old")
                self.assertEqual(run("build", "--lenient", "wrong.tsv", "new.bin")[0], lenient)

    def test_build(self):
        write("semicolons", "a,1;b,2;")
        separators = ["--field-separator", ",", "--record-separator", "\\059"]
        self.assertEqual(run("build", "semicolons", "other.bin", *separators)[0], 0)
        self.assertEqual(run("dump", "other.bin")[1], b"a\t1\nb\t2\n")
        windows = ["--windows", "--field-separator", r"\t"]
        made = run("build", "-", "-", *windows, given=b"\xef\xbb\xbfa\t1\r\nb\t2\r\n")
        self.assertEqual(made[:2], (0, read("other.bin")))
        self.assertEqual(run("build", "-", "empty.bin", "--allow-empty")[0], 0)
        told = run("lint", "-", given="a\tx\t;y\n")
        self.assertRefused(told, 0, "-:1:5: warning field-mark", "1 records")
        problems = run("lint", "-", "--max-problems", "2", given="\n\n\n\n")
        self.assertRefused(problems, TROUBLE, "-:1:1: error", "-:2:1: error", "-: 2 more problems")
        for arguments, told in ((["gone.tsv", "x.bin"], "gone.tsv: error cannot-read"),
                                (["-", "gone/x.bin"], "gone/x.bin: error cannot-write")):
            self.assertRefused(run("build", *arguments), TROUBLE, told)
        shown = run("build", "-", "x.bin", "--progress", given=SOURCE)[2]
        self.assertIn("\rdictool: x.bin: 6 keys of 7 records", shown)
        os.link(os.path.join(HERE, "semicolons"), os.path.join(HERE, "link"))
        before = set(os.listdir(HERE))
        self.assertRefused(run("build", "semicolons", "link"), TROUBLE, "link: error same-file")
        self.assertRefused(run("view", "words.bin", "-o", "./words.bin"), TROUBLE,
                           "./words.bin: error same-file")
        with open(os.path.join(HERE, "semicolons"), "rb") as source:
            again = subprocess.run([DICTOOL, "build", "-", "link"], cwd=HERE, stdin=source,
                                   stderr=subprocess.PIPE, check=False)
        self.assertIn(b"link: error same-file", again.stderr)
        limits = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100)),
                  "restore_signals": True}
        self.assertRefused(run("build", "-", "new", given=SOURCE, **limits), TROUBLE,
                           "new: error cannot-write: the image cannot be written; ")
        if EMULATED:
            return  # QEMU catches every signal, so nothing shows when dictool does
        building = subprocess.Popen([DICTOOL, "build", "-", "new"], cwd=HERE, stdin=subprocess.PIPE,
                                    stderr=subprocess.PIPE)
        caught = 0
        while not caught >> (signal.SIGTERM - 1) & 1:
            status = read(f"/proc/{building.pid}/status").decode()
            caught = int(re.search(r"SigCgt:\s(\w+)", status)[1], 16)
        building.send_signal(signal.SIGTERM)
        told = building.communicate()[1]
        self.assertEqual((building.returncode, set(os.listdir(HERE))), (INTERRUPTED, before))
        self.assertEqual(told, b"dictool: interrupted; nothing was written to new\n")

    def test_bad_images(self):
        image = read("words.bin")
        bad = [b"", image[:11], image[:-1], image + b"\0", b"\xff" * 12,
               image[:65537 * 12 + 4] + b"\x7f" + image[65537 * 12 + 5:]]
        extra = {"diff": ["words.bin"], "view": ["-o", "page.html"]}
        for command in COMMANDS[2:]:
            result = run(command, "gone.bin", *extra.get(command, []))
            self.assertRefused(result, TROUBLE, "gone.bin: error ")
        for content in bad:
            write("bad.bin", content)
            for command in COMMANDS[2:]:
                result = run(command, "bad.bin", *extra.get(command, []))
                self.assertRefused(result, BAD_IMAGE, "bad.bin: error ")
        self.assertRegex(run("verify", "bad.bin")[2], r", cell \d+, byte \d+\n")

    def test_dump_gives_back_the_image_or_says_that_it_cannot(self):
        run("build", "-", "planes.bin", given="\uffff\tb\n😀\tc\n\ue000\ta\n😁x\td\n😁\te\n")
        run("build", "--fold", "-", "folded.bin", given="Ab\tx\nＡB\ty\n\\n\tz\n")
        for image, *options in (["sample.bin"], ["words.bin"], ["planes.bin"],
                                ["folded.bin", "--fold"]):
            again = run("build", "-", "again.bin", *options, given=run("dump", image)[1])
            self.assertEqual((again[0], read("again.bin")), (0, read(image)))
        comma = ["--record-separator", ",", "--field-separator", ";"]
        for source, options in [(b"\tx\nb\ty\n", []), (b"a\tx\na\xff\ty\n", []),
                                (b"abc\tx\nab\xff\ty\n", []),
                                (b"a\n;x,", comma), (b"a\tb;x,", comma), (b"a;x\ny,", comma)]:
            built = run("build", "--lenient", "-", "cut.bin", *options, given=source)
            self.assertEqual(built[0], 0)
            self.assertRefused(run("dump", "cut.bin"), TROUBLE, "cut.bin: error no-source")

    def test_dump_says_that_an_image_was_placed_otherwise(self):
        run("build", "-", "leaf.bin", given="ab\tx\n")
        image = read("leaf.bin")
        features, _, cells = struct.unpack("<3i", image[:12])
        leaf, parent = cells - 12, 12 * ord("a")
        moved = bytearray(struct.pack("<3i", features, 0, cells + 12) + image[12:leaf])
        moved += FREE_CELL + image[leaf:]
        moved[parent:parent + 4] = struct.pack("<i", struct.unpack_from("<i", image, parent)[0] + 1)
        write("moved.bin", bytes(moved))
        self.assertEqual(run("verify", "moved.bin")[0], 0)
        status, source, told = run("dump", "moved.bin")
        self.assertEqual((status, source), (NONE, b"ab\tx\n"))
        self.assertIn("moved.bin: warning placed-otherwise: ", told)
        self.assertIn("byte 8 (cell 0)", told)

    def test_rows_stay_rows_and_messages_lines(self):
        source = "a\tb|x\ny\\;c|\x1b;"
        separators = ["--field-separator", "|", "--record-separator", ";"]
        self.assertEqual(run("build", "-", "torn.bin", *separators, given=source)[0], 0)
        for options, expected in (("search -f tsv", r"1_0_3_a\tb_x\ny\\ "),
                                  ("search -d", "a\tb/0:" + r"x\ny\\__ "), ("lookup", r"a\tb_x\ny\\ "),
                                  ("lookup -z", "a\tb_x\ny\\\0"),
                                  ("search --classic -d", "a\tb/0:x\ny\\__ ")):
            command, *rest = options.split()
            given = "a\tb" + ("\0" if "-z" in rest else "\n")
            expected = expected.replace("_", "\t").replace(" ", "\n").encode()
            self.assertEqual(run(command, "torn.bin", *rest, given=given)[1], expected, options)
        run("build", "-", "other.bin", given="c\tz\n")
        self.assertEqual(run("diff", "other.bin", "torn.bin")[1],
                         b"+a\\tb\tx\\ny\\\\\n~c\t\x1b\n")
        name = "gone\n\x1b[31m\u202e\udcff東"
        told = run("verify", name)[2]
        self.assertIn(r"gone\x0A\x1B[31m\xE2\x80\xAE\xFF東: error", told)
        self.assertEqual(told.count("\n"), 1)
        self.assertRefused(run("lookup", "words.bin", given="abc\r\n"), NONE,
                           "nothing was found, and lines end in a carriage return; try --windows")

    def test_diff(self):
        run("build", "-", "other.bin", given="\\n\tline\nabc\tn\t2\nabd\tx\n")
        told = "-ab\t\n~abc\tn\t2\n+abd\tx\n-bc\tv\t;w\n-東京\tplace\n-東京都\tplace\tbig\n"
        self.assertEqual(run("diff", "words.bin", "other.bin"), (NONE, told.encode(), ""))
        self.assertEqual(run("diff", "-q", "words.bin", "other.bin"), (NONE, b"", ""))
        self.assertEqual(run("diff", "words.bin", "words.bin"), (0, b"", ""))

    def test_weights_and_folding(self):
        run("build", "--fold", "-", "weights.bin", given="A\t9\t2\nb\t9\t2\nab\t1\t3\n")
        for arguments, expected in (("segment", "Ab\t\n"), ("segment --count-field 1", "A\tb\t\n"),
                                    ("segment --cost-field 2", "Ab\t\n"),
                                    ("replace --count-field 1 --field 2", "22\n")):
            command, *options = arguments.split()
            answer = run(command, "weights.bin", *options, "-j2", given="Ab\n")
            self.assertEqual(answer, (0, expected.encode(), ""))
        self.assertRefused(run("segment", "words.bin", "--count-field", "1"), TROUBLE,
                           "words.bin: error ")
        self.assertRefused(run("segment", "weights.bin", "-D", "words.bin", "--count-field", "1"),
                           TROUBLE, 'error bad-weight: the key "ab" of image 1 has "" in field')
        self.assertIn(b"folded                       yes\n", run("stat", "weights.bin")[1])

    def test_stat_and_view(self):
        numbers = json.loads(run("stat", "-f", "json", "words.bin")[1])
        self.assertEqual([numbers[name] for name in ("keys", "dataTexts", "usedCells", "keyBytes")],
                         [6, 6, 9, 23])
        self.assertEqual(sum(length["count"] for length in numbers["keysByLength"]), 6)
        self.assertIn(b"\nkeys                           6\n", run("stat", "words.bin")[1])
        name = "<script>words.bin"
        write(name, read("words.bin"))
        page = run("view", name, "-o", "-")[1].decode()
        data = json.loads(page.split("const data = ")[1].split(";\n")[0])
        self.assertEqual((data["file"], data["keys"], len(data["occupancy"])), (name, 6, 256 * 96))
        for outside in ("http", "src=", "url(", "<link", "@import", name):
            self.assertNotIn(outside, page)

    def test_files(self):
        write("one", "ab\nbc")
        files = ["one", "gone", "-", ".", "one"]
        result = run("search", "words.bin", "-f", "tsv", *files, given="abc\n")
        self.assertRefused(result, TROUBLE, "gone: error cannot-read", ".: error cannot-read")
        rows = [row.split("\t")[:4:3] for row in result[1].decode().splitlines()]
        self.assertEqual(rows, [["1", "ab"], ["2", "bc"], ["3", "abc"], ["3", "bc"], ["4", "ab"],
                                ["5", "bc"]])

    def test_files_may_have_the_number_of_standard_input(self):
        done = subprocess.run(["sh", "-c", 'exec "$0" verify words.bin <&-', DICTOOL], cwd=HERE,
                              stdout=subprocess.PIPE, check=False)
        self.assertEqual((done.returncode, done.stdout), (0, b"words.bin: ok\n"))

    @native
    def test_usage(self):
        for arguments in ([], ["bogus"], ["search"], ["search", "words.bin", "--bogus"],
                          ["search", "words.bin", "-f", "xml"], ["search", "words.bin", "-j", "-1"],
                          ["search", "words.bin", "--all", "--longest"],
                          ["search", "words.bin", "--classic", "--word"],
                          ["search", "words.bin", "--classic", "-D", "mine.bin"],
                          ["diff", "words.bin"],
                          ["segment", "words.bin", "--count-field", "1", "--cost-field", "1"],
                          ["lint", "x", "--max-problems", "0"], ["stat", "words.bin", "more"]):
            self.assertRefused(run(*arguments), TROUBLE, "error usage: ")
        write("-x.tsv", SOURCE)
        for arguments, advice in ((["buidl"], "there is no command 'buidl'; did you mean 'build'?"),
                                  (["help", "quux"], "there is no command 'quux'; see"),
                                  (["build", "-x.tsv", "o.bin"], "IMAGE is required; write the file "
                                   "-x.tsv as ./-x.tsv or after --"),
                                  (["lint", "x", "--max-problems", "0"], "--max-problems: Value 0 not "
                                   "in range 1 to 4294967295;")):
            self.assertRefused(run(*arguments), TROUBLE, "error usage: " + advice)
        self.assertEqual(run("help", "dump"), run("dump", "--help"))
        self.assertEqual(run("help"), run("--help"))

    @native
    def test_every_option_is_documented_everywhere(self):
        scripts = [run("completion", shell)[1].decode() for shell in ("bash", "zsh", "fish")]
        for command in COMMANDS:
            status, text, errors = run(command, "--help")
            self.assertEqual((status, errors), (0, ""))
            manual = run("manual", command)[1].decode().replace("\\-", "-")
            for script in [*scripts, manual]:
                self.assertIn(command, script)
            for option in set(re.findall(r"(?m)^  (?:-\w,)?--([\w-]+)", text.decode())):
                for script in [*scripts, manual]:
                    self.assertIn(option, script)
        subprocess.run(["bash", "-n"], input=scripts[0].encode(), check=True)

    @native
    def test_output_that_fails(self):
        writing = [["search", "-j4"], ["segment"], ["replace"], ["lookup"], ["keys"], ["dump"], ["stat"], ["verify"],
                   ["view", "-o", "-"], ["--help"], ["search", "--help"], ["--version"]]
        for command in writing:
            image = [] if command[-1][:2] == "--" else ["words.bin"]
            with open("/dev/full", "wb") as full:
                result = run(*command, *image, given="abc\n", stdout=full)
            self.assertRefused(result, TROUBLE, "standard output: error cannot-write")
            reader, writer = os.pipe()
            os.close(reader)
            for restore in (True, False):
                self.assertEqual(run(*command, *image, given="abc\n", stdout=writer,
                                     restore_signals=restore), (CLOSED_PIPE, None, ""))
            os.close(writer)

    @native
    @unittest.skipUnless(shutil.which("parallel"), "parallel is not installed")
    def test_processes_give_the_same_bytes(self):
        for options in ("search -d", "segment -k", "replace -w", "lookup"):
            command = with_sample(options)
            done = subprocess.run(["parallel", "--will-cite", "--pipe", "--keep-order", "--block",
                                   "200k", DICTOOL, *command], input=read("large.txt"), cwd=HERE,
                                  stdout=subprocess.PIPE, check=False)
            self.assertTrue(done.stdout == run(*command, given=read("large.txt"))[1], options)


class Threads(Case):
    def test_threads_give_the_same_bytes(self):
        for options in ("search -d", "search -f json --all --offset char", "segment -k", "replace -w",
                        "lookup"):
            command = with_sample(options)
            alone = run(*command, given=read("large.txt"))
            self.assertEqual(run(*command, "-j8", given=read("large.txt")), alone, options)

    def test_answers_line_by_line(self):
        command = [DICTOOL, "search", "--line-buffered", "-j4", "words.bin"]
        with subprocess.Popen(command, cwd=HERE, stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            for _ in range(3):
                process.stdin.write(b"xabc\n")
                process.stdin.flush()
                self.assertEqual(process.stdout.readline(), b"abc\tbc\t\n")
            process.stdin.close()


class LongLines(Case):
    def test_are_segmented_by_any_number_of_threads(self):
        line = b"abc" * 500000
        for options in (["-j1"], ["-j8"], ["--line-buffered"]):
            given = line + b"\n\n" + line
            result = run("segment", "words.bin", *options, given=given)
            self.assertTrue(result[1] == b"abc\t" * 500000 + b"\n\n" + b"abc\t" * 500000 + b"\n")


if __name__ == "__main__":
    unittest.main()
