#!/usr/bin/env bash
# The window program as a whole process, under an X server of its own: time from its start to the first painted
# window with a work file of 256 steps on two channels, off-line, against a bare window of the toolkit; processor
# use while idle and during a run on the virtual instrument. Prints one table; exit 1 when a bound is missed.
#   bench/start_up.sh              takes about three minutes
#   BUILD=folder bench/start_up.sh uses that build folder
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
build=${BUILD:-build/release}
runs=${RUNS:-40}

cmake --preset release -B "$build" > /dev/null
cmake --build "$build" --target start_up_bench >&2
build=$(cd "$build" && pwd)
bin=$build/bin
tools=$build/bench
# shellcheck source=tests/e2e/x_session.sh
. "$root/tests/e2e/x_session.sh"

work=$(mktemp -d)
trap 'end_x; rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$work
unset WAYLAND_DISPLAY QT_SCALE_FACTOR

# ---- First painted window, without a window manager ----

Xvfb -displayfd 3 -screen 0 1600x1200x24 -noreset -nolisten tcp 3> "$work/display" 2> /dev/null &
children+=($!)
wait_until 20 "the X server does not start" test -s "$work/display"
DISPLAY=:$(cat "$work/display")
export DISPLAY
mkdir "$work/start"
"$tools/write_sample" "$work/start"

program() {
  "$tools/first_paint" "$bin/corlune" --folder "$work/start" --lang en --visa none 2> "$work/errors"
}
reference() {
  "$tools/first_paint" "$tools/reference_window" "$width" "$height" 2> "$work/errors"
}
# The first start brings everything into the page cache and tells the size of the window.
first=$(program) || { cat "$work/errors" >&2; exit 1; }
width=$(sed 's/.*"width": \([0-9]*\).*/\1/' <<< "$first")
height=$(sed 's/.*"height": \([0-9]*\).*/\1/' <<< "$first")
reference > /dev/null || { cat "$work/errors" >&2; exit 1; }
for ((i = 0; i < runs; i++)); do
  echo "start $((i + 1)) of $runs" >&2
  # The X server takes the windows of the one before away first.
  sleep 0.1
  program >> "$work/program.json"
  sleep 0.1
  reference >> "$work/reference.json"
done
end_x

# ---- Processor use ----

# Percent of one processor that the process uses in the next $2 seconds.
processor_use() {
  local before after
  before=$(cut -d' ' -f14,15 "/proc/$1/stat")
  sleep "$2"
  after=$(cut -d' ' -f14,15 "/proc/$1/stat")
  awk -v before="$before" -v after="$after" -v seconds="$2" -v ticks="$(getconf CLK_TCK)" 'BEGIN {
    split(before, b); split(after, a); print (a[1] + a[2] - b[1] - b[2]) / ticks / seconds * 100 }'
}

echo "idle ..." >&2
begin_x 1280 1024
mkdir "$work/run"
"$tools/write_sample" "$work/run" run
start_corlune --folder "$work/run" --lang en --virtual-instrument 2> "$work/errors"
wait_until 30 "the main window does not appear" window_named "$main_title"
main=$(window_named "$main_title")
activate "$main"
sleep 3
idle=$(processor_use "$corlune" 20)

echo "running ..." >&2
answer() {
  wait_until 20 "no question of the program" window_named '^Corlune$'
  activate "$(window_named '^Corlune$')"
  xdotool key Return
}
# Nothing is asked or shown beside the main window for two seconds.
quiet() {
  for _ in 1 2 3 4 5 6 7 8 9 10; do
    no_window_named '^Corlune$' || return 1
    sleep 0.2
  done
}
# The elapsed time moves on: more than the two pictures of a blinking cursor.
time_passes() {
  local pictures
  pictures=$(for _ in 1 2 3 4 5 6; do import -window root rgb:- | md5sum; sleep 0.23; done | sort -u | wc -l)
  [ "$pictures" -gt 2 ]
}
# Mode menu, execution mode; the name as proposed; the download ends with the last box closed.
xdotool key alt+m
sleep 0.3
xdotool key r
answer
sleep 3
wait_until 90 "the download does not end" quiet
activate "$main"
xdotool key F5
answer
sleep 2
time_passes || fail "the run does not start"
running=$(processor_use "$corlune" 20)
time_passes || fail "the run ended too early"
end_x

python3 - "$work" "$idle" "$running" << 'END'
import json
import statistics
import sys

folder, idle, running = sys.argv[1], float(sys.argv[2]), float(sys.argv[3])


def read(name):
    with open(f"{folder}/{name}.json", encoding="utf-8") as file:
        return [json.loads(line) for line in file]


program, reference = read("program"), read("reference")
rows = [("what", "measured", "reference", "ratio", "bound", "ok")]
missed = 0
for what, key, pick, bound in (
    # The starts alternate, so that other work on the machine meets both alike; the fastest ones are luck then.
    ("first painted window, median", "wall_ms", statistics.median, 1.5),
    ("first painted window, fastest start", "wall_ms", min, None),
    ("processor time until then, median", "cpu_ms", statistics.median, None),
):
    measured, other = (pick(run[key] for run in runs) for runs in (program, reference))
    ratio = measured / other
    kept = bound is None or ratio <= bound
    missed += not kept
    rows.append((what, f"{measured:.1f} ms", f"{other:.1f} ms", f"{ratio:.2f}", f"<= {bound}" if bound else "-",
                 "-" if bound is None else "yes" if kept else "NO"))
for what, use, bound in (("processor use, idle", idle, 0.5), ("processor use, running", running, 5)):
    kept = use <= bound
    missed += not kept
    rows.append((what, f"{use:.2f} %", "-", "-", f"<= {bound} %", "yes" if kept else "NO"))
widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
for row in rows:
    print("  ".join(text.ljust(width) for text, width in zip(row, widths)).rstrip())
sys.exit(1 if missed else 0)
END
