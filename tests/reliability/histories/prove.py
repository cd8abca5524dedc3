#!/usr/bin/env python3
"""Plants faults in a copy of the library, one at a time, and has the histories find each.

prove.py BUILD-FOLDER COUNT SEED: exit code 0 when each was found within COUNT histories, 1 when not.
"""

import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[3]
FOLDERS = ("cloud", "compat", "framework", "interface", "property")

# What is wrong, which histories have to find it, where, and how: this text becomes that one.
FAULTS = [
    ("a failing write puts the reconnect off", "client", "cloud/tovik_iot.cpp",
     "timer->bringForward(remaining);", "timer->bringForward(1000000);"),
    ("three attempts inside one another", "client", "cloud/tovik_iot.cpp",
     "most_attempts = 2", "most_attempts = 3"),
    ("two monitors poll after overlapping attempts", "client", "cloud/tovik_iot.cpp",
     "    timer->stop();\n    earlier", "    earlier"),
    ("connected stays after a failed first attempt", "client", "cloud/tovik_iot.cpp",
     "state_->failed(result);\n    state_->disconnected();\n", "state_->failed(result);\n"),
    ("an empty token does not replace the one before", "client", "cloud/conversation.cpp",
     "*token = text::fromLatin1(sent.get<std::string>());\n    if (token->isEmpty()) {",
     "if (!sent.get<std::string>().empty())\n"
     "        *token = text::fromLatin1(sent.get<std::string>());\n    else {"),
    ("an old answer lets the next write go", "client", "cloud/write_queue.cpp",
     "    if (post == unanswered_.last())\n        patience_.stop();", "    patience_.stop();"),
    ("a write that has no answer when the driver closes is forgotten", "client",
     "cloud/write_queue.cpp", "    if (awaited_)\n        end(awaited_);", ""),
    ("the last of two values of an id counts", "client", "cloud/driver_state.cpp",
     "for (int i = values.size() - 1; i >= 0; --i)", "for (int i = 0; i < values.size(); ++i)"),
    ("the third read asks for a reconnect", "client", "cloud/drv_tovik_iot.cpp",
     "err_count_ <= 1", "err_count_ <= 2"),
    ("type 2 does not reconnect", "client", "cloud/error_handling.cpp",
     "type == 0 || type == 2 ||", "type == 0 ||"),
    ("a shot inside a shot", "client", "cloud/reconnect_timer.cpp",
     "    if (is_shooting_)\n        return;\n", ""),
    ("a refused write is called by another word", "client", "cloud/service_message.cpp",
     '"SetDataitemValue"', '"WriteDataitemValue"'),
    ("a repeat sees the data of the attempt before", "exchange", "framework/host_request.cpp",
     "        *data = request.ba;\n        if (isStopped", "        if (isStopped"),
    ("a stop is heard late", "exchange", "framework/driver_basic.cpp",
     "longest_turn = 50;", "longest_turn = 80;"),
    ("stale input is taken for an answer", "exchange", "framework/told_traffic.cpp",
     "link_io::discard(driver.serial_, driver.ethernet_, is_heard)", "QByteArray()"),
    ("one repeat too few", "exchange", "framework/host_request.cpp",
     "if (repeats == 0)", "if (repeats <= 1)"),
    ("one poll more until an answer is whole", "exchange", "framework/driver_basic.cpp",
     "stable_polls_of_tcp = 10;", "stable_polls_of_tcp = 11;"),
    ("a unit that is given up meanwhile is asked again", "exchange", "framework/host_request.cpp",
     "        if (!isUnitServed(*driver))\n            break;\n        if (repeats",
     "        if (repeats"),
]


def build(folder):
    command = ["cmake", "--build", folder, "--target", "histories"]
    built = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=False)
    if built.returncode != 0:
        sys.exit(built.stdout)


def configure(folder, sources):
    options = ["-DTOVIK_TESTS=ON", "-DTOVIK_RELIABILITY=ON", "-DTOVIK_TOOL_TESTS=OFF",
               "-DTOVIK_EXAMPLES=OFF", f"-DTOVIK_HISTORIES_OF={sources}",
               "-DCMAKE_CXX_FLAGS=-w"]  # a fault may leave something unused
    subprocess.run(["cmake", "--preset", "release", "-B", folder, "--log-level=WARNING", *options],
                   cwd=ROOT, check=True, stdout=subprocess.DEVNULL)


def planted(text, fault):
    name, _, file, old, new = fault
    if text.count(old) != 1:
        sys.exit(f"{file}: '{name}' cannot be planted: the text is there {text.count(old)} times")
    return text.replace(old, new)


def main(folder, count, seed):
    folder = str(pathlib.Path(folder).resolve()) + "-prove"
    sources = pathlib.Path(folder) / "planted"
    shutil.rmtree(sources, ignore_errors=True)
    for name in FOLDERS:
        shutil.copytree(ROOT / name, sources / name)
    configure(folder, sources)
    program = f"{folder}/tests/reliability/histories/histories"
    missed = 0
    for fault in FAULTS:
        name, kind, file, _, _ = fault
        target = sources / file
        sound = target.read_text()
        target.write_text(planted(sound, fault))
        build(folder)
        ran = subprocess.run([program, "--quiet", "--of", kind, "--count", count, "--seed", seed],
                             stdout=subprocess.PIPE, text=True, check=False)
        target.write_text(sound)
        found = re.match(r"history (\d+) ", ran.stdout) if ran.returncode == 1 else None
        missed += not found
        print(f"{'found in history ' + found[1] if found else 'NOT FOUND':24} {name}", flush=True)
    print(f"{len(FAULTS) - missed} of {len(FAULTS)} faults found within {count} histories each")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
