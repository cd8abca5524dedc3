"""What stands around a document while it is done: a folder that looks like the project's after a
build, and the services and devices that the document speaks of."""
import os
import queue
import re
import shutil
import signal
import subprocess
import sys
import threading
from pathlib import Path

from guide_blocks import Failure

# An address beyond this machine: no test may reach one.
ELSEWHERE = re.compile(r"(?<![\d.])(?!127\.)\d+\.\d+\.\d+\.\d+(?![\d.])"
                       r"|https?://(?!127\.0\.0\.1\b|localhost\b)[\w\[.:]+")

HERE = Path(__file__).resolve().parent
# Seconds; only a test that fails waits for so long.
PATIENCE = 120 * int(os.environ.get("TOVIK_TEST_TIME_FACTOR", "1"))


class Processes:
    """Programs that go on running; each is ended by its id."""

    def __init__(self):
        self.running = []

    def start(self, command, **settings):
        # Should the test be killed, its processes end with it.
        command = ["setpriv", "--pdeathsig", "TERM", *command]
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   text=True, start_new_session=True, **settings)
        process.lines = queue.Queue()
        process.reader = threading.Thread(target=self.read, args=[process])
        process.reader.start()
        self.running.append(process)
        return process

    @staticmethod
    def read(process):
        for line in process.stdout:
            process.lines.put(line)
        process.lines.put("")

    @staticmethod
    def line_of(process):
        """The next line that it prints; an empty one when it has closed its output."""
        try:
            return process.lines.get(timeout=PATIENCE)
        except queue.Empty:
            raise Failure(f"has printed nothing for {PATIENCE} seconds") from None

    def end(self, process, signal_number=signal.SIGTERM):
        """Ends a process and those that it has started, and returns its exit code."""
        self.running.remove(process)
        if process.poll() is None:
            os.killpg(process.pid, signal_number)
        try:
            return process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            raise Failure(f"does not end after signal {signal_number}") from None
        finally:
            process.reader.join()
            process.stdout.close()

    def end_all(self):
        for process in reversed(list(self.running)):
            self.end(process)


class Stage:
    """Fills the folder, and knows which of the document's names stand for which of the test's."""

    def __init__(self, options, processes):
        self.folder = Path(options.folder).resolve()
        self.source = Path(options.source).resolve()
        self.build = Path(options.build).resolve()
        self.processes = processes
        self.ports = {}
        self.places = {}
        self.environment = dict(os.environ)
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self.copy_project()
        self.place_programs()
        for setting in [*options.set, f"TOVIK_HOST={self.build}/tools/host/tovik-host"]:
            name, value = setting.split("=", 1)
            self.environment[name] = value
        (self.folder / "tmp").mkdir()
        self.places["/tmp/"] = f"{self.folder}/tmp/"
        for place in options.replace:
            self.places.update([place.split("=", 1)])
        if options.prefix:
            self.install(options.prefix)
        for fixture in options.fixtures:
            shutil.copytree(fixture, self.folder / Path(fixture).name, dirs_exist_ok=True)
        self.start_modbus(options)
        for service in options.service:
            self.start_service(*service.split("=", 1))

    def copy_project(self):
        """Links to the project's folders; a guide may write beside them, not into them."""
        for entry in self.source.iterdir():
            if not entry.name.startswith(".") and entry.name != "build":
                (self.folder / entry.name).symlink_to(entry)

    def place_programs(self):
        """The programs of this build, where the documents have those of the release build or the demo."""
        release = self.folder / "build/release"
        release.mkdir(parents=True)
        (self.folder / "build/demo").symlink_to("release")
        for name in ["tools/service/tovik-cloud", "libtovik_iot.so.1",
                     "examples/modbus/libmodbus_drv.so.1"]:
            (release / name).parent.mkdir(parents=True, exist_ok=True)
            (release / name).symlink_to(self.build / name)
        (release / "tools/host").mkdir()
        (release / "tools/host/tovik-host").symlink_to(HERE / "patient_host.py")
        programs = [str(release / "tools/host"), str(release / "tools/service")]
        self.environment["PATH"] = os.pathsep.join([*programs, self.environment["PATH"]])

    def install(self, prefix):
        """The library and its headers, as if they were in the prefix that documents name."""
        mine = self.folder / "prefix"
        for component in ["library", "development"]:
            subprocess.run(["cmake", "--install", self.build, "--prefix", mine, "--component",
                            component], check=True, stdout=subprocess.DEVNULL)
        self.places[prefix] = str(mine)
        self.environment["CMAKE_PREFIX_PATH"] = str(mine)
        self.environment["PKG_CONFIG_PATH"] = os.pathsep.join(
            map(str, mine.glob("lib*/**/pkgconfig")))
        self.environment["LD_LIBRARY_PATH"] = os.pathsep.join(map(str, mine.glob("lib*")))

    def start_modbus(self, options):
        for kind, name in [("tcp", options.modbus_tcp), ("rtu", options.modbus_rtu)]:
            if not name:
                continue
            device = self.processes.start([sys.executable, HERE / "modbus_device.py", kind])
            line = self.processes.line_of(device)
            if not line.startswith("ready "):
                raise Failure(f"the Modbus device of the test did not start: {line}")
            self.places[name] = line.split()[1]
            if kind == "tcp":  # in a host's code they stand apart
                for given, mine in zip(name.split(":"), self.places[name].split(":")):
                    (self.ports if given.isdigit() else self.places)[given] = mine

    def start_service(self, url, arguments):
        command = f"exec tovik-cloud {arguments} 2>cloud-{len(self.places)}.log"
        service = self.processes.start(["bash", "-c", command], cwd=self.folder,
                                       env=self.environment)
        line = self.processes.line_of(service)
        found = re.search(r"https?://\S+", line)
        if not found:
            raise Failure(f"the service of the test did not start: {line}")
        self.places[url] = found[0]

    def with_places(self, text):
        """The document's text with this test's ports, folders and devices."""
        for given, mine in self.places.items():
            text = text.replace(given, mine)
        for given, mine in self.ports.items():
            text = re.sub(rf"\b{given}\b", mine, text)
        return text

    def local(self, text):
        """The same, for what is going to run."""
        text = self.with_places(text)
        if found := ELSEWHERE.search(text):
            raise Failure(f"'{found[0]}' is not of this machine; the test has to replace it")
        return text
