"""Which braces scripts/check_braces.py finds, and what it leaves of them."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[2] / "scripts"))
import check_braces

ALONE = """void f()
{
    if (a) {
        b();
    }
    for (int i = 0; i < 3; ++i) {
        c();
    }
}
"""
CHAIN = """    if (a) {
        b();
    } else if (c) {
        d();
    } else {
        e();
    }
"""


class Braces(unittest.TestCase):
    def left(self, text):
        lines = text.splitlines(keepends=True)
        found = check_braces.superfluous(lines)
        return found, "".join(lines)

    def test_around_one_line(self):
        self.assertEqual(self.left(ALONE), ([3, 6], """void f()
{
    if (a)
        b();
    for (int i = 0; i < 3; ++i)
        c();
}
"""))

    def test_of_all_branches(self):
        self.assertEqual(self.left(CHAIN), ([1], """    if (a)
        b();
    else if (c)
        d();
    else
        e();
"""))

    def test_of_the_last_branch_alone(self):
        self.assertEqual(self.left("if (a)\n    b();\nelse {\n    c();\n}\n"),
                         ([3], "if (a)\n    b();\nelse\n    c();\n"))

    def test_one_branch_needs_them(self):
        for change in [("d();", "d();\n        g();"), ("b();", "// why\n        b();")]:
            text = CHAIN.replace(*change)
            self.assertEqual(self.left(text), ([], text))

    def test_what_takes_more_than_a_line(self):
        for text in ["if (a) {\n    b(c,\n      d);\n}\n", "if (a &&\n    b) {\n    c();\n}\n",
                     "for (;;) {\n    if (a)\n        b();\n}\n", "while (a) {\n}\n",
                     "do {\n    a();\n} while (b);\n", "switch (a) {\n    b();\n}\n"]:
            self.assertEqual(self.left(text), ([], text))


if __name__ == "__main__":
    unittest.main()
