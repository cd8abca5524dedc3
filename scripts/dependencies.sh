# Sourced by the other scripts: what the project needs from Debian, and how it is installed.
# shellcheck shell=bash

# To build the library and the tools.
build_packages=(
  build-essential ca-certificates ccache cmake ninja-build pkg-config
  qtbase5-dev libqt5serialport5-dev picojson-dev
  libcpp-httplib-dev libssl-dev nlohmann-json3-dev libcli11-dev libjs-chart.js)

# To run the tests, and to check the sources.
test_packages=(
  binutils clang-format-14 libmodbus-dev mold python3-pymodbus python3-serial-asyncio)

# Clang compiles what runs under the sanitizers: half the time of GCC, whose warnings the others have.
clang_packages=(clang-14 libclang-rt-14-dev)
test_packages+=("${clang_packages[@]}")

# The dashboard is tested in a browser. Node.js of another origin than Debian's brings its own npm,
# and Debian's packages of either would not get on with it.
test_packages+=(chromium)
command -v node >/dev/null && command -v npm >/dev/null || test_packages+=(nodejs npm)

# What people type and read where the tools are installed.
test_packages+=(bash-completion man-db mandoc)

# To build the documentation site; the tests do that, too, and run the documents' commands.
docs_packages=(doxygen python3)
test_packages+=(curl systemd "${docs_packages[@]}")

# To make the Debian packages, to look through them and to test them.
package_packages=(debhelper debootstrap lintian python3)

# To analyse the sources, and to count what the tests reach of them.
analysis_packages=(clang-tidy-14 cppcheck)
coverage_packages=(gcovr)

# To run the benchmarks and to draw their plots.
bench_packages=(
  binutils iproute2 libbenchmark-dev libcurl4-openssl-dev libmodbus-dev python3-matplotlib python3-pil
  util-linux)

# To look for races: what tells the thread sanitizer of Qt's synchronisation reads Qt's own headers.
# shellcheck disable=SC2034 # other scripts read it
threads_packages=(mold qtbase5-private-dev util-linux)

# To feed malformed input: libFuzzer and the sanitizers of clang.
# shellcheck disable=SC2034 # other scripts read it
fuzz_packages=("${clang_packages[@]}")

# To make small faults in the library from clang's syntax tree.
# shellcheck disable=SC2034 # scripts/mutants reads it
mutants_packages=(python3-clang-14)

# To build for other processors and to emulate them, and to test under other locales.
# shellcheck disable=SC2034 # other scripts read it
cross_packages=(g++-aarch64-linux-gnu g++-arm-linux-gnueabihf mmdebstrap qemu-user-static util-linux)
# To count the instructions there: the emulator that takes plug-ins.
# shellcheck disable=SC2034
panel_cost_packages=(qemu-user)
# To look through the Buildroot package.
# shellcheck disable=SC2034
panel_packages=(curl python3-kconfiglib)
# shellcheck disable=SC2034
hostile_packages=(locales util-linux)

# install_missing PACKAGE...: installs those that are not there yet; root or sudo is needed for it.
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing, and only root can install them (there is no sudo):" >&2
      echo "  ${missing[*]}" >&2
      echo "Run 'apt-get install ${missing[*]}' as root, then start again." >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "== Installing ${#missing[@]} packages: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update -q &&
         "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
           apt-get install -y -q --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "Installing failed; the whole log is in $log." >&2
    return 1
  fi
  rm -f "$log"
}
