# Sourced by the scripts that build, run and judge a program of tests/reliability: they say what is
# wrong with a call, build, and leave with exit codes alike.
# shellcheck shell=bash
. scripts/dependencies.sh

# fail TEXT...: what is wrong, and the end.
fail() {
  echo "scripts/${0##*/}: $*" >&2
  exit 2
}

# takes WHAT OPTION [VALUE]: ends the script unless VALUE is of the kind that OPTION takes: text (any),
# a number, a whole number, or a list of whole numbers.
takes() {
  local what=$1 option=$2 value=${3:-} pattern=.
  case $what in
    'a number') pattern='^[0-9]+(\.[0-9]+)?$' ;;
    'a whole number') pattern='^[0-9]+$' ;;
    'numbers with commas between them') pattern='^[0-9]+(,[0-9]+)*$' ;;
  esac
  [[ $value =~ $pattern ]] || fail "$option takes $what${value:+, not '$value'}"
}

unknown() {
  fail "unknown option '$1'; see scripts/${0##*/} --help"
}

# build FOLDER "TARGET..." PRESET CMAKE-OPTION...: builds targets of the tests in a folder of their own,
# with no more around them than they need.
build() {
  local folder=$1 targets=$2 preset=$3
  shift 3
  install_missing "${build_packages[@]}" mold >&2 || exit 2
  echo "== Building in $folder" >&2
  cmake --preset "$preset" -B "$folder" --log-level=WARNING -DTOVIK_TESTS=ON -DTOVIK_RELIABILITY=ON \
    -DTOVIK_TOOL_TESTS=OFF -DTOVIK_EXAMPLES=OFF "$@" >/dev/null || exit 2
  # shellcheck disable=SC2086 # several targets
  cmake --build "$folder" --target $targets >&2 || exit 2
}

# The tests of the parts that threads share, and what they are built with for the thread sanitizer.
# shellcheck disable=SC2034 # other scripts read them
thread_tests=(
  cloud/tst_driver_state_threads cloud/tst_drv_tovik_iot
  cloud/tst_drv_tovik_iot_metrics cloud/tst_drv_tovik_iot_reads cloud/tst_drv_tovik_iot_writes
  cloud/tst_tls_resumption
  framework/tst_driver_basic_thread
  system/tst_plugin_faults system/tst_plugin_lifecycle system/tst_plugin_service)
# shellcheck disable=SC2034
thread_options=(-DTOVIK_PRECOMPILE=OFF -DTOVIK_SANITIZE=thread "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g")

# sanitized BUILD LOG: what a program of a build with the thread sanitizer is started with, in the array of
# this name; what Qt synchronises is told to the sanitizer, and its reports go to LOG.
sanitized() {
  sanitized=(env QT_QPA_PLATFORM=offscreen
    "TSAN_OPTIONS=log_path=$2 exitcode=66 io_sync=0 suppressions=$PWD/tests/reliability/threads/tsan.supp"
    "LD_PRELOAD=$(realpath "$1")/tests/reliability/threads/libtovik_qt_synchronisation.so")
  # The sanitizer wants its address space where it is on most machines.
  ! setarch -R true 2>/dev/null || sanitized+=(setarch -R)
}
