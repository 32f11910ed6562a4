#!/usr/bin/env bash
# Set-up, build and start against the virtual QM2220.
#   ./run.sh           with a display: the editor; without: runs an example sequence on the console
#   ./run.sh FILE      opens (or runs) the sequence file FILE
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
file=${1:-}
if [ -n "$file" ]; then
  file=$(realpath -- "$file")
fi
cd "$here"

./setup.sh
cmake --preset release
cmake --build --preset release --target programs

bin=$here/build/release/bin
if [ ! -e "$bin/Corlune.ini" ]; then
  printf '[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n' > "$bin/Corlune.ini"
fi

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -x "$bin/corlune" ]; then
  exec "$bin/corlune" --virtual-instrument ${file:+"$file"}
fi
exec "$bin/corlune-cli" run "${file:-$here/data/examples/quick-tour.dat}" --virtual-instrument --yes
