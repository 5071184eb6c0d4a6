#!/usr/bin/env bash
# Installs what is missing of the named groups of Debian packages. If all are there, it does nothing
# and asks for no rights.
#
#   tools/install_packages.sh GROUP...
set -euo pipefail

declare -A groups=(
  # To build and run the program.
  [build]='
    g++ cmake ninja-build pkg-config
    libcli11-dev libebook-contacts1.2-dev libebook1.2-dev libexpected-dev libfmt-dev libglib2.0-dev
    libicu-dev
    libpulse-dev
    nettle-dev python3
    fonts-wine librsvg2-bin libsqlite3-dev libudev-dev nlohmann-json3-dev qt6-base-dev qt6-svg-dev qt6-translations-l10n
  '
  # To build and run the tests with one compiler.
  [test]='
    git googletest libgmock-dev libgtest-dev
    at-spi2-core gir1.2-atspi-2.0 openbox python3-gi
    dbus desktop-file-utils espeak-ng evolution-data-server fonts-wqy-microhei imagemagick pulseaudio
    pulseaudio-utils python3 python3-numpy sox sqlite3 umockdev xdotool xvfb
  '
  # The other compilers, the sanitizers, the analysers and the benchmarks.
  [check]='
    clang clang-format clang-tidy libclang-rt-14-dev lld llvm
    g++-arm-linux-gnueabi libc6-dev-armel-cross qemu-user
    libbenchmark-dev
  '
  # The programs for Windows, and to run them.
  [windows]='
    g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix wine64
  '
  # The processor of a phone that runs Linux, emulated.
  [phone]='
    g++-aarch64-linux-gnu libc6-dev-arm64-cross qemu-user
  '
  # To make the Debian package, and to try it on a clean machine.
  [package]='
    appstream bash desktop-file-utils dpkg-dev file fish gzip lintian man-db mmdebstrap python3 zsh
  '
  # What the speech mathematics are measured with and against.
  [benchmark]='
    libaubio-dev libfftw3-dev valgrind
  '
)

wanted=()
for group in "$@"; do
  if [ -z "${groups[$group]+there}" ]; then
    echo "install_packages.sh: no group '$group'; there are: ${!groups[*]}" >&2
    exit 2
  fi
  read -r -d '' -a packages <<<"${groups[$group]}" || true
  wanted+=("${packages[@]}")
done

if ! command -v dpkg-query >/dev/null; then
  echo "This is not Debian. Please install by hand what corresponds to: ${wanted[*]}" >&2
  exit 1
fi

# One query; a package that dpkg has never heard of is missing from the answer.
present=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
  grep -qxF "installed $package" <<<"$present" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

if [ "$(id -u)" -eq 0 ]; then
  as_root=(env)
elif command -v sudo >/dev/null; then
  as_root=(sudo env)
else
  echo "These packages are missing. To install them, run this as root or with sudo: ${missing[*]}" >&2
  exit 1
fi

apt_get() {
  "${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "Installing: ${missing[*]}"
# The package lists of a new machine are empty, and those of an old one are out of date. In both cases
# the first attempt fails.
if ! apt_get install -y -q --no-install-recommends "${missing[@]}" >"$log" 2>&1; then
  echo "Refreshing the package lists first"
  if ! { apt_get update -q &&
    apt_get install -y -q --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    echo "Could not install: ${missing[*]}" >&2
    exit 1
  fi
fi
