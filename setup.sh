#!/usr/bin/env bash
# Installs the Debian packages that Corlune is built and tested with; only what is missing. Safe to repeat.
#   ./setup.sh             build, run and test
#   ./setup.sh --windows   also the cross compiler and Wine
set -euo pipefail

packages=(
  # compiler and build
  g++ cmake ninja-build ccache pkg-config
  # libraries: command line, window
  libcli11-dev libxcb1-dev qt6-base-dev
  # tests, benchmarks, fuzz targets, checks
  libgtest-dev libgmock-dev libbenchmark-dev clang libclang-rt-dev clang-format clang-tidy
  python3 python3-pyvisa
  # the window on a machine without a screen: X server, window manager, screenshots
  xvfb xauth openbox x11-utils xdotool wmctrl imagemagick
  # fonts: metric-compatible with Arial; Japanese
  fonts-liberation fonts-ipafont-gothic
  # Japanese texts of the standard dialogs
  qt6-translations-l10n
)

for option in "$@"; do
  case $option in
    --windows) packages+=(g++-mingw-w64-x86-64 wine) ;;
    *) echo "setup.sh: unknown option $option" >&2; exit 2 ;;
  esac
done

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#packages[@]} packages are installed"
  exit 0
fi

echo "setup: installing ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup.sh: needs root or sudo to install packages" >&2; exit 1; }
  as_root=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
echo "setup: done"
