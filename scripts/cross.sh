# Sourced by the scripts that build for the panels' processors: a folder with what is linked there.
# shellcheck shell=bash
. scripts/dependencies.sh

# What the sysroot holds; apt finds the rest by itself.
foreign_packages=(
  libc6-dev qtbase5-dev libqt5serialport5-dev picojson-dev libcpp-httplib-dev libssl-dev
  nlohmann-json3-dev libcli11-dev libjs-chart.js libmodbus-dev)

# find_sysroot ARCHITECTURE SYSROOT: makes it unless it is there.
find_sysroot() {
  [ -d "$2" ] && [ -d "$2.dpkg" ] || make_sysroot "$@"
}

# make_sysroot ARCHITECTURE SYSROOT: Debian's packages for the ARCHITECTURE, unpacked into the folder.
# Beside the machine's own they would replace some of them. None of their programs can run here; moc and
# rcc are this machine's.
make_sysroot() {
  local architecture=$1 sysroot=$2 suite mirror
  suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
  mirror=$(apt-cache policy base-files | sed -n 's|.* \(https\{0,1\}://[^ ]*\) [^ ]*/main .*|\1|p' |
    head -n 1)
  echo "== Unpacking Qt for $architecture"
  rm -rf "$sysroot" "$sysroot.new" "$sysroot.dpkg"
  local packages=${foreign_packages[*]} as_root=() unpacked=yes
  # By itself it would leave files that belong to nobody here.
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" mmdebstrap --variant=extract --architectures="$architecture" --include="${packages// /,}" \
    --hook-dir=/usr/share/mmdebstrap/hooks/merged-usr --skip=cleanup/apt/cache \
    "$suite" "$sysroot.new" ${mirror:+"$mirror"} >"$sysroot.log" 2>&1 || unpacked=
  [ ! -e "$sysroot.new" ] || "${as_root[@]}" chown -hR "$(id -u):$(id -g)" "$sysroot.new"
  if [ -z "$unpacked" ]; then
    tail -n 20 "$sysroot.log" >&2
    echo "Unpacking failed; the whole log is $sysroot.log." >&2
    return 1
  fi
  note_libraries "$sysroot.new/var/cache/apt/archives" "$sysroot"

  # The emulator prefers a file here to the machine's: there is to be none but libraries.
  local rest
  for rest in bin sbin dev etc proc run sys tmp var usr/bin usr/sbin usr/share/doc; do
    rm -rf "${sysroot:?}.new/$rest"
  done
  local link
  find "$sysroot.new" -lname '/*' | while read -r link; do
    ln -srfn "$sysroot.new$(readlink "$link")" "$link"
  done
  local folder
  find "$sysroot.new/usr/lib" -path '*/qt5/bin' -type d | while read -r folder; do
    rm -rf "$folder"
    ln -s "$(pkg-config --variable=host_bins Qt5Core)" "$folder"
  done
  mv "$sysroot.new" "$sysroot"
}

# note_libraries FOLDER SYSROOT: what dpkg would know of the libraries in the FOLDER's packages, had it
# installed them into SYSROOT: dpkg-shlibdeps asks that for the packages on which a program depends. It
# goes into SYSROOT.dpkg.
note_libraries() {
  local admin=$2.dpkg file package
  mkdir -p "$admin/info" "$admin/updates"
  echo 1 >"$admin/info/format"
  for file in "$1"/*.deb; do
    dpkg-deb --control "$file" "$admin/control"
    if [ -e "$admin/control/shlibs" ]; then
      package=$(dpkg-deb --show --showformat='${Package}:${Architecture}' "$file")
      # Debian 12 keeps some libraries in /lib, which is a link to /usr/lib.
      dpkg-deb --fsys-tarfile "$file" | tar --list |
        sed -n "s|^\./\(usr/\)\{0,1\}\(lib/.*\.so.*\)|$2/usr/\2|p" >"$admin/info/$package.list"
      cp "$admin/control/shlibs" "$admin/info/$package.shlibs"
      [ ! -e "$admin/control/symbols" ] ||
        cp "$admin/control/symbols" "$admin/info/$package.symbols"
      sed '/^Package:/a Status: install ok installed' "$admin/control/control" >>"$admin/status"
      echo >>"$admin/status"
    fi
    rm -rf "$admin/control"
  done
}
