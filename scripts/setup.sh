#!/usr/bin/env bash
# Installs the Debian packages Talvir needs that are missing (and only those), for a Debian 12 machine where we are root.
#   scripts/setup.sh            build + test dependencies
#   scripts/setup.sh --bench    also the benchmark references (OpenCV, libyuv)
#   scripts/setup.sh --fuzz     also clang and its fuzzing runtime
#   scripts/setup.sh --memcheck also valgrind (memory check of the port test against short-reading producers)
#   scripts/setup.sh --windows  also the MinGW-w64 cross compilers, zlib for them and Wine (the windows preset)
set -euo pipefail

packages=(
  # build
  cmake ninja-build g++ pkg-config git
  # library
  libpugixml-dev libminizip-dev zlib1g-dev nlohmann-json3-dev libpng-dev libinih-dev
  # serial port listing for the PC's serial library
  libserialport-dev
  # command-line tool: argument parsing, TIFF files; packages (cpack DEB)
  libcli11-dev libtiff-dev dpkg-dev
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # node-map oracle for the differential tests (its pkg-config file needs libusb's)
  libaravis-dev libusb-1.0-0-dev
  # formatting check (scripts/check-format.sh)
  clang-format
)
for option in "$@"; do
  case "$option" in
    --bench) packages+=(libopencv-dev libyuv-dev) ;;
    --fuzz) packages+=(clang libclang-rt-14-dev) ;;
    --memcheck) packages+=(valgrind) ;;
    # GoogleTest's sources (googletest) are built for the target; the header-only libraries are shared with Linux.
    --windows) packages+=(g++-mingw-w64-x86-64 mingw-w64-tools libz-mingw-w64-dev googletest wine wine64) ;;
    *) echo "setup.sh: unknown option '$option' (use --bench, --fuzz, --memcheck, --windows)" >&2; exit 2 ;;
  esac
done

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: every package is installed"
  exit 0
fi

echo "setup: installing ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
