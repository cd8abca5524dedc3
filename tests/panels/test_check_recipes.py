#!/usr/bin/python3
"""Each thing that check_recipes.py looks at, spoilt in a copy of the project, is found."""
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
RECIPE = "packaging/yocto/recipes-hmi/tovik-iot/tovik-iot_1.6.83.bb"
RULES = "packaging/buildroot/package/tovik-iot/tovik-iot.mk"
MENU = "packaging/buildroot/package/tovik-iot/Config.in"


class Spoilt(unittest.TestCase):
    def check(self, file=None, old="", new=""):
        """What is said of a copy with one text replaced."""
        with tempfile.TemporaryDirectory() as name:
            copy = Path(name) / "project"
            for part in ["CMakeLists.txt", "LICENSE"]:
                copy.mkdir(exist_ok=True)
                shutil.copy(HERE.parents[1] / part, copy)
            for part in ["cmake", "packaging"]:
                shutil.copytree(HERE.parents[1] / part, copy / part)
            if file:
                text = (copy / file).read_text(encoding="utf-8")
                self.assertIn(old, text)
                (copy / file).write_text(text.replace(old, new, 1), encoding="utf-8")
            (Path(name) / "work").mkdir()
            done = subprocess.run([sys.executable, "-B", HERE / "check_recipes.py", copy, "/picojson",
                                   f"{name}/work"], capture_output=True, text=True, check=False)
            self.assertEqual(done.returncode != 0, file is not None, done.stderr)
            return done.stderr

    def test_as_it_is(self):
        self.check()

    def test_another_version(self):
        self.assertIn("tovik-iot_1.6.83.bb", self.check("CMakeLists.txt", "VERSION 1.6.83", "VERSION 1.6.84"))
        self.assertIn("VERSION is", self.check(RULES, "1.6.83", "1.6.82"))

    def test_another_licence(self):
        self.assertIn("LIC_FILES_CHKSUM", self.check("LICENSE", "MIT", "Another"))
        self.assertIn("LICENSE", self.check(RULES, "= MIT", "= GPL-2.0"))

    def test_an_option_that_the_project_does_not_have(self):
        self.assertIn("TOVIK_TOOL=", self.check(RECIPE, "TOVIK_TOOLS=", "TOVIK_TOOL="))
        self.assertIn("TOVIK_TOOL=", self.check(RULES, "TOVIK_TOOLS=", "TOVIK_TOOL="))

    def test_another_folder(self):
        self.assertIn("EXTERNALSRC", self.check(RECIPE, "/../../../..", "/../../.."))
        self.assertIn("SITE", self.check(RULES, "/../..", "/.."))

    def test_a_line_that_is_none(self):
        self.assertIn("not understood", self.check(RECIPE, "DEPENDS = ", "DEPENDS "))

    def test_a_menu_without_what_is_needed(self):
        self.assertIn("QT5SERIALPORT", self.check(MENU, "\tselect BR2_PACKAGE_QT5SERIALPORT\n"))
        self.assertIn("without Qt", self.check(MENU, "\tdepends on BR2_PACKAGE_QT5\n"))

    def test_a_menu_that_names_nothing_known(self):
        self.assertIn("undefined", self.check(MENU, "!BR2_PACKAGE_QT5\n", "!BR2_PACKAGE_QT6\n"))

    def test_rules_with_a_variable_of_another_name(self):
        self.assertIn("TOVIK_IOT_PICO", self.check(RULES, "TOVIK_IOT_PICOJSON)", "TOVIK_IOT_PICO)"))


if __name__ == "__main__":
    unittest.main()
