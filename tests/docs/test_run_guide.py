"""Tests of the runner: each mark accepts what is so, and finds what is not."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from types import SimpleNamespace

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "docs/doxygen")]

import check_links  # noqa: E402
import guide_output  # noqa: E402
import patient_host  # noqa: E402
import run_guide  # noqa: E402
import site_page  # noqa: E402
from guide_blocks import Failure  # noqa: E402


def fenced(mark, text, language=""):
    return f"Text.\n\n<!-- {mark} -->\n```{language}\n{text}```\n"


class Documents(unittest.TestCase):
    """Whole documents, in a project that has nothing but the folders which the runner looks at."""

    def setUp(self):
        self.root = tempfile.TemporaryDirectory()
        self.addCleanup(self.root.cleanup)
        source = Path(self.root.name) / "source"
        for name in ["interface", "property", "cloud", "framework", "compat", "scripts"]:
            (source / name).mkdir(parents=True)
        (source / "cloud/thing.h").write_text("class FooBar { void sendNow(); };\n")
        (source / "CMakePresets.json").write_text(
            '{"configurePresets": [{"name": "dev"}], "buildPresets": []}')
        script = source / "scripts/tool"
        script.write_text("#!/bin/sh\necho 'Usage: tool [--fast]  -h, --help'\n")
        script.chmod(0o755)
        self.source = source

    def run_text(self, text):
        document = self.source / "page.md"
        document.write_text(text)
        options = SimpleNamespace(
            document=document, folder=f"{self.root.name}/work", source=self.source,
            build=f"{self.root.name}/none", set=[], replace=[], fixtures=[], prefix=None,
            modbus_tcp=None, modbus_rtu=None, service=[])
        return run_guide.run_document(options)

    def passes(self, text):
        self.assertEqual(self.run_text(text), 0)

    def fails(self, text, message):
        with self.assertRaisesRegex(Failure, message):
            self.run_text(text)

    def test_a_block_without_a_mark(self):
        self.fails("```\ntrue\n```\n", "without a mark")
        self.fails("<!-- run -->\n\n```\ntrue\n```\n", "without a mark")

    def test_a_block_that_is_not_understood(self):
        self.fails("- item\n\n  ```\n  true\n  ```\n", "not understood")
        self.fails("~~~\ntrue\n~~~\n", "not understood")

    def test_code_without_a_fence(self):
        self.fails("Text.\n\n    true\n", "line 3: an indented line")
        self.fails("Text.\n\n\ttrue\n", "an indented line")
        self.fails(fenced("run", "true\n") + "    true\n", "line 7: an indented line")
        self.fails(">     true\n", "an indented line")
        self.fails("-     true\n", "in a list")
        self.fails("<pre>\ntrue\n</pre>\n", "line 1: a block in HTML")
        self.fails("<PRE class='x'>true</PRE>\n", "a block in HTML")
        self.passes("Text with `<pre>` and `<!--`.\n\n- item\n  goes on\n\n   1. item\n")
        self.passes(fenced("file: a", "    <pre> <!-- -->\n"))

    def test_a_mark_that_is_not_one(self):
        for mark in ["<!--run-->", "<!-- run--> ", "<!-- run -->  ", " <!-- run -->",
                     "<!-- run --> text", "<! -- run -->"]:
            self.fails(f"Text.\n\n{mark}\n```\ntrue\n```\n", "without a mark")
        self.fails(fenced("Do: true", "true\n"), "unknown mark")
        for mark in ["<!-- run -->", "<!--do: true-->", " <!-- do: true -->", "<!-- do: true",
                     "<!-- do: true -->."]:
            self.fails(f"Text.\n\n{mark}\n\nText.\n", "line 3: a comment")
        self.fails("<!-- do: true\n\n" + fenced("run", "true\n"), "does not end")
        self.fails("<!-- run\n\n" + fenced("run", "true\n"), "does not end")
        self.fails("<!-- do: true\n\n<!-- do: true -->\n", "does not end")

    def test_an_unknown_mark(self):
        self.fails(fenced("ran", "true\n"), "unknown mark")

    def test_run(self):
        self.passes(fenced("run", "true\n"))
        self.fails(fenced("run", "false\ntrue\n"), "exit code 1")
        self.fails("<!-- do: exit 3 -->\n", "exit code 3")

    def test_where(self):
        self.passes(fenced(f"where: {self.source}", "true\n"))
        self.fails(fenced(f"where: {self.source}", "false\n"), "exit code 1")
        self.passes(fenced("where: /nowhere", "false\n"))

    def test_without_a_folder_only_the_marks(self):
        options = SimpleNamespace(document=self.source / "page.md", folder=None)
        options.document.write_text(fenced("run", "false\n"))
        self.assertEqual(run_guide.run_document(options), 0)
        options.document.write_text("```\ntrue\n```\n")
        with self.assertRaisesRegex(Failure, "without a mark"):
            run_guide.run_document(options)

    def test_fails(self):
        self.passes(fenced("fails 3", "exit 3\n"))
        self.fails(fenced("fails 3", "true\n"), "exit code 0, not 3")

    def test_file(self):
        self.passes(fenced("file: a", "one\n") + fenced("file: a", "two\n")
                    + fenced("run", "cat a\n") + fenced("output", "one\ntwo\n"))
        self.fails(fenced("file: scripts/a", "one\n"), "into the project")

    def test_part(self):
        frame = fenced("file: f.cpp", "int a;\n    // @rest@\nint c;\n")
        self.passes(frame + fenced("part: rest of f.cpp", "int b;\n") + fenced("run", "cat f.cpp\n")
                    + fenced("output", "int a;\nint b;\nint c;\n"))
        self.fails(frame + fenced("part: more of f.cpp", "int b;\n"), "one comment @more@")

    def test_output(self):
        self.passes(fenced("run", "echo hello\n") + fenced("output", "hello\n"))
        self.fails(fenced("run", "echo hello\n") + fenced("output", "hallo\n"), "printed is")
        self.fails(fenced("run", "echo a; echo b\n") + fenced("output", "a\n"), "printed is")

    def test_session(self):
        self.passes(fenced("session", "$ a=5\n$ echo $a \\\n   6\n5 6\n$ printf 7\n7\n"))
        self.fails(fenced("session", "$ echo 5\n6\n$ echo 7\n7\n"), "printed is")
        self.fails(fenced("session", "$ false\n$ true\n"), "exit code 1")

    def test_background(self):
        server = ("$ bash -c 'echo at http://127.0.0.1:$((40000 + 17)); sleep 60'\n"
                  "at http://127.0.0.1:1234\n")
        self.passes(fenced("background", server)
                    + fenced("session", "$ echo ${x:-1234}\n1234\n$ test 1234 = $((40000 + 17))\n"))
        self.fails(fenced("background", "true\n"), "has ended")
        self.fails(fenced("background", "$ bash -c 'echo a; sleep 60'\nb\n"), "printed is")

    def test_until(self):
        self.passes(fenced("until: two", "echo two\nbash -c 'trap \"exit 0\" INT; echo one; echo two; "
                           "while true; do sleep 0.1; done'\n"))
        self.fails(fenced("until: two", "echo two\necho one\n"), "has ended")
        self.fails(fenced("until: two", "echo\nbash -c 'trap \"exit 4\" INT; echo two; "
                          "while true; do sleep 0.1; done'\n"), "exit code 4")

    def test_printed_by(self):
        self.passes(fenced("printed by: echo 1; echo 2; echo 3", "1\n3\n"))
        self.fails(fenced("printed by: echo 3; echo 1", "1\n3\n"), "not printed is\n3")

    def test_printed_by_a_failure(self):
        failing = "sh -c 'echo 1; exit 2'"
        self.passes(fenced(f"printed by: ! {failing}", "1\n"))
        self.passes(fenced(f"printed by: cd scripts && ! {failing}", "1\n"))
        self.fails(fenced(f"printed by: {failing}", "1\n"), "exit code 2")
        self.fails(fenced("printed by: ! echo 1", "1\n"), "exit code 0")
        self.fails(fenced("printed by: cd scripts && ! echo 1", "1\n"), "exit code 0")
        self.fails(fenced("printed by: ! nosuchprogram", "...\n"), "exit code 127")
        self.fails(fenced("printed by: ! sh -c 'echo 1; kill -SEGV $$'", "1\n"), "exit code")

    def test_watched_by(self):
        waiting = "bash -c 'trap \"echo end; exit\" INT; echo 1; while true; do sleep 0.1; done'"
        self.passes(fenced(f"watched by: {waiting}", "1\nend\n"))
        self.fails(fenced(f"watched by: {waiting}", "1\nbye\n"), "not printed is\nbye")

    def test_excerpt_and_diagram(self):
        self.passes(fenced("excerpt: cloud/thing.h", "class FooBar { void sendNow(); };\n"))
        self.fails(fenced("excerpt: cloud/thing.h", "class FooBar {};\n"), "does not stand so")
        self.passes(fenced("diagram", "FooBar -> sendNow\n"))
        self.fails(fenced("diagram", "FooBar -> sendLater\n"), "no sendLater")

    def test_check(self):
        self.passes(fenced("check: because", "scripts/tool --fast\ncmake --preset dev\n"))
        self.fails(fenced("check", "scripts/tool --fast\n"), "why")
        self.fails(fenced("check: because", "scripts/tool --slow\n"), "does not have '--slow'")
        self.fails(fenced("check: because", "scripts/other\n"), "there is no 'scripts/other'")
        self.fails(fenced("check: because", "cmake --preset fast\n"), "no preset 'fast'")
        self.fails(fenced("check: because", "cat cloud/other.h\n"), "no 'cloud/other.h'")
        self.fails(fenced("check: because", "nosuchprogram\n"), "no program")

    def test_an_address_of_another_machine(self):
        for address in ["10.0.0.1", "https://cloud.example/"]:
            self.fails(fenced("run", f"echo {address}\n"), "not of this machine")


class Output(unittest.TestCase):
    def test_what_may_differ(self):
        same = guide_output.is_same_line
        self.assertTrue(same("2024-05-01 12:00:01.204  a", "2026-01-02 01:02:03.000  a"))
        self.assertTrue(same("types: Bit, ...", "types: Bit, Byte"))
        self.assertTrue(same("x = 5  [01 a2]", "x = 71.5  [ff 00]", True))
        self.assertFalse(same("x = 5", "x = 6"))
        self.assertFalse(same("x = a", "x = b", True))


class PatientHost(unittest.TestCase):
    def test_arguments(self):
        self.assertEqual(patient_host.patient(["read", "a", "--timeout", "5"]),
                         ["read", "a", "--timeout", "100"])
        self.assertEqual(patient_host.patient(["watch", "--seconds", "20"]),
                         ["watch", "--seconds", "3"])
        self.assertEqual(patient_host.patient(["raw", "01", "--library", "x"])[1:3],
                         ["--response-timeout", "30000"])


class Site(unittest.TestCase):
    def test_links_and_headings(self):
        page = site_page.converted(
            "docs/one.md", "# One\n\n## A `b`, c\n[x](#a-b-c) [y](two.md#z) [l](../LICENSE) [p](images/p.png)\n"
            "<!-- run -->\n```\n# no heading [x](#y)\n```\n")
        self.assertEqual(
            page, "# One {#one}\n\n## A `b`, c {#one-a-b-c}\n[x](@ref one-a-b-c) "
            "[y](@ref two-z) [l](LICENSE) [p](p.png)\n```\n# no heading [x](#y)\n```\n")

    def test_dead_links(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "a.html").write_text(
                '<a href="b.html"></a><a href="#x"></a><a id="y" href="#y"></a>'
                '<img src="https://other.host/p.png">')
            (folder / "a.md").write_text("# A\n[b](b.md) [c](#c) [a](#a)\n")
            self.assertEqual(len(list(check_links.site_errors(folder))), 3)
            self.assertEqual(len(list(check_links.repository_errors([folder / "a.md"]))), 2)


class DocsScript(unittest.TestCase):
    """Where scripts/docs puts the site; a program in Doxygen's place makes an empty one."""

    def setUp(self):
        self.root = tempfile.TemporaryDirectory()
        self.addCleanup(self.root.cleanup)
        self.folder = Path(self.root.name).resolve()
        program = self.folder / "bin/doxygen"
        program.parent.mkdir()
        program.write_text(
            "#!/bin/sh\nfolder=$(sed -n 's/^OUTPUT_DIRECTORY = \"\\(.*\\)\"$/\\1/p' | tail -n 1)\n"
            "echo $$ > \"$folder/doxygen.css\"\n: > \"$folder/index.html\"\n")
        program.chmod(0o755)

    def build(self, output):
        environment = {**os.environ, "PATH": f"{self.folder}/bin:{os.environ['PATH']}"}
        return subprocess.run([HERE.parents[1] / "scripts/docs", "--output", output],
                              cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)

    def assert_built(self, output, site):
        done = self.build(output)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn(f"{site}/index.html", done.stdout)
        return (site / "doxygen.css").read_text()

    def test_a_slash_at_the_end(self):
        site = self.folder / "site"
        first = self.assert_built(f"{site}/", site)
        self.assertNotEqual(self.assert_built(f"{site}//", site), first)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["bin", "site"])

    def test_a_relative_path(self):
        self.assert_built("sub/site/", self.folder / "sub/site")

    def test_a_folder_that_is_no_site(self):
        for output in ["bin/", ".", "/"]:
            self.assertEqual(self.build(output).returncode, 2)
        self.assertTrue((self.folder / "bin/doxygen").exists())


class CommandLine(unittest.TestCase):
    def test_a_failure_names_document_and_line(self):
        with tempfile.TemporaryDirectory() as name:
            page = Path(name) / "page.md"
            page.write_text("# A\n\n```\ntrue\n```\n")
            done = subprocess.run(
                [sys.executable, HERE / "run_guide.py", page, "--folder", f"{name}/work",
                 "--source", name, "--build", name], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"page\.md: line 3: a block without a mark")


if __name__ == "__main__":
    unittest.main()
