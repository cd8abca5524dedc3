#!/usr/bin/python3
"""Looks through the Yocto recipe and the Buildroot package, as far as that can be done without BitBake
and Buildroot, and prints the options with which each configures the project, a line each."""
import argparse
import hashlib
import os
import re
import subprocess
import sys
from pathlib import Path

import kconfiglib

# What Buildroot gives a package's rules, as far as these need it: the variables are printed in place of
# being acted on.
BUILDROOT = """qstrip = $(strip $(subst ",,$(1)))
define cmake-package
$(foreach name,VERSION SITE SITE_METHOD LICENSE LICENSE_FILES INSTALL_STAGING DEPENDENCIES CONF_OPTS,\\
$(info $(name)=$(TOVIK_IOT_$(name))))
endef
include $(BR2_EXTERNAL_TOVIK_PATH)/external.mk
all: ;
"""
# The options of Buildroot's own that the menu names.
MENU = """config BR2_PACKAGE_QT5
	bool "Qt5"
if BR2_PACKAGE_QT5
config BR2_PACKAGE_QT5BASE_GUI
	bool "gui"
config BR2_PACKAGE_QT5BASE_NETWORK
	bool "network"
config BR2_PACKAGE_QT5BASE_WIDGETS
	bool "widgets"
config BR2_PACKAGE_QT5SERIALPORT
	bool "serialport"
endif
config BR2_PACKAGE_OPENSSL
	bool "openssl"
source "$BR2_EXTERNAL_TOVIK_PATH/Config.in"
"""


class Wrong(Exception):
    """What does not fit the project."""


def expect(what, found, wanted):
    if found != wanted:
        raise Wrong(f"{what} is '{found}', not '{wanted}'")


class Project:
    def __init__(self, folder):
        self.folder = folder
        self.cmake = "".join(file.read_text(encoding="utf-8")
                             for file in [folder / "CMakeLists.txt", *(folder / "cmake").glob("*.cmake")])
        self.version = re.search(r"^project\(tovik_iot VERSION (\S+)", self.cmake, re.M)[1]
        self.summary = re.search(r'DESCRIPTION "([^"]*)"', self.cmake)[1]

    def check_options(self, options):
        """Each is a variable that the project takes: CMake itself would only warn."""
        for option in options:
            name = re.fullmatch(r"-D(\w+)=.*", option)
            if not name or not re.search(rf"\b(?:option|set|find_path|find_library)\({name[1]}\b", self.cmake):
                raise Wrong(f"the project has no option '{option}'")


def read_recipe(file):
    """The variables of a recipe that sets each once, in one line."""
    found = {}
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        assignment = re.fullmatch(r'([A-Z_]+(?::\$\{PN\})?) \??= "([^"]*)"', line)
        if assignment and assignment[1] not in found:
            found[assignment[1]] = assignment[2]
        elif line.startswith("inherit "):
            found["inherit"] = line.split()[1:]
        else:
            raise Wrong(f"{file.name}:{number}: '{line}' is not understood")
    return found


def check_yocto(project, picojson):
    folder = project.folder / "packaging/yocto"
    recipes = list(folder.glob("recipes-*/*/*.bb"))
    expect("the recipes", [recipe.name for recipe in recipes], [f"tovik-iot_{project.version}.bb"])
    recipe = read_recipe(recipes[0])
    expect("SUMMARY", recipe["SUMMARY"], project.summary)
    expect("LICENSE", recipe["LICENSE"], "MIT")
    digest = hashlib.md5((project.folder / "LICENSE").read_bytes()).hexdigest()
    expect("LIC_FILES_CHKSUM", recipe["LIC_FILES_CHKSUM"], f"file://LICENSE;md5={digest}")
    expect("inherit", recipe["inherit"], ["externalsrc", "cmake_qt5"])
    up = re.search(r"THISDIR'\) \+ '([/.]*)'", recipe["EXTERNALSRC"])[1]
    expect("EXTERNALSRC", Path(f"{recipes[0].parent}{up}").resolve(), project.folder)
    layer = (folder / "conf/layer.conf").read_text(encoding="utf-8")
    if not re.search(r'^BBFILES \+= "\$\{LAYERDIR\}/recipes-\*/\*/\*\.bb"$', layer, re.M):
        raise Wrong("layer.conf does not name the recipes")
    options = recipe["EXTRA_OECMAKE"].replace("${TOVIK_PICOJSON}", picojson).split()
    project.check_options(options)
    return options


def read_menu(folder, work):
    (work / "Config.in").write_text(MENU, encoding="utf-8")
    menu = kconfiglib.Kconfig(str(work / "Config.in"), warn_to_stderr=False)
    menu.syms["BR2_PACKAGE_QT5"].set_value("y")
    package = menu.syms["BR2_PACKAGE_TOVIK_IOT"]
    package.set_value("y")
    for name in ["OPENSSL", "QT5BASE_GUI", "QT5BASE_NETWORK", "QT5BASE_WIDGETS", "QT5SERIALPORT"]:
        expect(f"with tovik-iot {name}", menu.syms[f"BR2_PACKAGE_{name}"].str_value, "y")
    menu.syms["BR2_PACKAGE_QT5"].set_value("n")
    expect("tovik-iot without Qt", package.str_value, "n")
    if menu.warnings:
        raise Wrong(f"{folder}: {menu.warnings}")


def check_buildroot(project, picojson, work):
    folder = project.folder / "packaging/buildroot"
    expect("external.desc", (folder / "external.desc").read_text(encoding="utf-8"),
           f"name: TOVIK\ndesc: {project.summary}\n")
    read_menu(folder, work)
    (work / "Makefile").write_text(BUILDROOT, encoding="utf-8")
    done = subprocess.run(["make", "--silent", "--warn-undefined-variables", "-C", work,
                           f"BR2_EXTERNAL_TOVIK_PATH={folder}",
                           f'BR2_PACKAGE_TOVIK_IOT_PICOJSON="{picojson}"'],
                          capture_output=True, text=True, check=True)
    expect("what make says", done.stderr, "")
    rules = dict(line.split("=", 1) for line in done.stdout.splitlines() if "=" in line)
    for name, wanted in [("VERSION", project.version), ("SITE", str(project.folder)),
                         ("SITE_METHOD", "local"), ("LICENSE", "MIT"), ("LICENSE_FILES", "LICENSE"),
                         ("INSTALL_STAGING", "YES"), ("DEPENDENCIES", "openssl qt5base qt5serialport")]:
        expect(name, rules[name], wanted)
    options = rules["CONF_OPTS"].split()
    project.check_options(options)
    return options


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("project", type=Path)
    parser.add_argument("picojson", help="the folder with picojson.h that both are given")
    parser.add_argument("work", type=Path, help="an empty folder")
    given = parser.parse_args()
    project = Project(given.project.resolve())
    try:
        os.environ.update(BR2_EXTERNAL_TOVIK_PATH=str(project.folder / "packaging/buildroot"),
                          KCONFIG_WARN_UNDEF="y")
        print(*check_yocto(project, given.picojson))
        print(*check_buildroot(project, given.picojson, given.work))
    except Wrong as wrong:
        sys.exit(f"check_recipes.py: {wrong}")


if __name__ == "__main__":
    main()
