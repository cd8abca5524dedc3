"""What the test of the rooms finds, and what it lets pass."""

import unittest

import rooms

DOCUMENT = """
```rooms
base/
tools/host/value/     base/
tools/host/driver/    value/ base/
tools/host/           driver/ value/
base/entry.cpp        tools/host/value/
```
"""


class Rooms(unittest.TestCase):
    def found(self, path, target):
        return list(rooms.faults({path: f'#include "{target}"\n'}, rooms.read_table(DOCUMENT)))

    def test_down_is_allowed(self):
        self.assertEqual(self.found("tools/host/driver/a.cpp", "tools/host/value/b.h"), [])
        self.assertEqual(self.found("tools/host/driver/a.cpp", "base/b.h"), [])

    def test_own_folder_is_allowed(self):
        self.assertEqual(self.found("tools/host/value/a.cpp", "tools/host/value/deep/b.h"), [])
        self.assertEqual(self.found("tools/host/value/a.cpp", "a.moc"), [])

    def test_up_is_found(self):
        self.assertEqual(self.found("tools/host/value/a.h", "tools/host/driver/b.h"),
                         ["tools/host/value/a.h: must not include tools/host/driver/b.h"])

    def test_what_no_row_names_is_found(self):
        for target in ["tools/host/main.h", "elsewhere/b.h", "tests/support/b.h"]:
            self.assertEqual(len(self.found("tools/host/value/a.h", target)), 1, target)

    def test_past_the_next_room_is_found(self):
        self.assertEqual(len(self.found("tools/host/main.cpp", "base/b.h")), 1)

    def test_a_file_may_have_a_row_of_its_own(self):
        self.assertEqual(self.found("base/entry.cpp", "tools/host/value/b.h"), [])
        self.assertEqual(self.found("base/entry.cpp", "base/b.h"), [])
        self.assertEqual(len(self.found("base/other.cpp", "tools/host/value/b.h")), 1)

    def test_a_folder_without_a_row_is_found(self):
        self.assertEqual(self.found("attic/a.h", "base/b.h"), ["attic/a.h: its folder has no row"])

    def test_tests_may_include_anything(self):
        self.assertEqual(self.found("tests/a.cpp", "tools/host/driver/b.h"), [])

    def test_a_row_knows_rows_above_it_only(self):
        for table in ["a/ b/\nb/\n", "a/\na/\n"]:
            with self.assertRaises(rooms.Fault):
                rooms.read_table(f"```rooms\n{table}```\n")
        with self.assertRaises(rooms.Fault):
            rooms.read_table("no table")


if __name__ == "__main__":
    unittest.main()
