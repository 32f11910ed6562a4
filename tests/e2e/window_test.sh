#!/usr/bin/env bash
# Starts the real window program under Xvfb with a window manager: start, picture, second start, sibling editor,
# closing, and the exit codes.
#   window_test.sh FOLDER_OF_THE_PROGRAM DATA_FOLDER
set -euo pipefail
bin=$(cd "$1" && pwd)
data=$(cd "$2" && pwd)
# shellcheck source=tests/e2e/x_session.sh
. "$(dirname "$0")/x_session.sh"

for tool in Xvfb openbox xdotool wmctrl import convert; do
  command -v "$tool" >/dev/null || fail "$tool is missing; setup.sh installs it"
done

work=$(mktemp -d)
trap 'end_x; rm -rf "$work"' EXIT
export HOME=$work XDG_RUNTIME_DIR=$work/runtime QT_QPA_PLATFORM=xcb
mkdir -m 700 "$XDG_RUNTIME_DIR"

new_folder() {
  mkdir "$work/$1"
  cp "$data/Corlune_Std.ini" "$work/$1/"
  printf '[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n' > "$work/$1/Corlune.ini"
}
exit_code_of() {
  local code=0
  timeout 30 "$@" >/dev/null 2>&1 || code=$?
  echo "$code"
}
is() { [ "$1" = "$2" ] || fail "$3: \"$1\" instead of \"$2\""; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }

is "$(exit_code_of "$bin/corlune" --no-such-option)" 2 "exit code of an unknown option"
is "$(exit_code_of env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$bin/corlune")" 1 "exit code without a display"

begin_x 900 720
new_folder first
cp "$data/examples/phase-shift.dat" "$work/"
start_corlune --folder "$work/first" --lang en --visa none
first=$corlune
wait_until 30 "the main window does not appear" window_named "$main_title"
main=$(window_named "$main_title")

# The picture: many colours inside the window, so neither blank nor one grey area.
colours_shown() {
  [ "$(import -window "$main" png:- | convert png:- -format '%k' info:)" -gt 30 ]
}
wait_until 20 "the window stays blank" colours_shown

# Another program has the keyboard; a second start brings the window back, with its file, and ends.
"$bin/titled_window" "Another program" &
children+=($!)
wait_until 20 "the other window does not appear" window_named '^Another program$'
activate "$(window_named '^Another program$')"
is "$(exit_code_of env -C "$work" "$bin/corlune" --folder first --visa none phase-shift.dat)" 0 "exit code of a second start"
wait_until 20 "the second start does not open its file" window_named "$main_title.*phase-shift\.dat"
wait_until 20 "the second start does not bring the window forward" is_active "$main"
is "$(xdotool search --onlyvisible --name "$main_title" | wc -l)" 1 "main windows"

# The keyboard stays in the cells, whatever took it away meanwhile: the menu bar, a message, another window.
saves_step() { xdotool key ctrl+s && grep -q "^ST_SETVAL#$1=$2," "$work/phase-shift.dat"; }
xdotool key --delay 100 alt+e Escape alt+h Escape Escape 7 Return
wait_until 20 "no entry behind the menu bar" saves_step 0 7
xdotool key --delay 100 x Return
wait_until 20 "no message about a letter" window_named '^Corlune$'
activate "$(window_named '^Corlune$')"
xdotool key Return
wait_until 20 "the main window does not come back behind the message" is_active "$main"
xdotool key --delay 100 8 Return
wait_until 20 "no entry behind the message" saves_step 1 8
activate "$(window_named '^Another program$')"
activate "$main"
xdotool key --delay 100 9 Return
wait_until 20 "no entry behind another window" saves_step 2 9

# Another application folder is another program; the sibling editor keeps it from starting.
new_folder second
"$bin/titled_window" "a.wdb - Tavrin Plindor for QM2210/20" &
sibling=$!
children+=("$sibling")
wait_until 20 "the sibling window does not appear" window_named 'Plindor'
xdotool windowminimize --sync "$(window_named 'Plindor')"
start_corlune --folder "$work/second" --lang en --visa none
wait_until 20 "no message about the sibling editor" window_named '^Corlune$'
activate "$(window_named '^Corlune$')"
xdotool key Return
wait_until 20 "the program goes on beside the sibling editor" has_ended "$corlune"
code=0
wait "$corlune" || code=$?
is "$code" 1 "exit code beside the sibling editor"
is "$(ls "$work/second")" "$(printf 'Corlune.ini\nCorlune_Std.ini')" "files after a refused start"
kill "$sibling"

# A folder without a model definition: a message, then the end.
mkdir "$work/empty"
start_corlune --folder "$work/empty" --lang en --visa none
for message in 1 2; do  # the settings, then the definition
  wait_until 20 "no message $message about missing files" window_named '^Corlune$'
  dialog=$(window_named '^Corlune$')
  activate "$dialog"
  xdotool key Return
  message_gone() { [ "$(window_named '^Corlune$')" != "$dialog" ]; }
  wait_until 20 "message $message stays" message_gone
done
code=0
wait "$corlune" || code=$?
is "$code" 1 "exit code without a model definition"

# Closing writes everything for the next start.
wmctrl -i -c "$main"
wait_until 20 "the program does not end" has_ended "$first"
code=0
wait "$first" || code=$?
is "$code" 0 "exit code after closing"
is "$(cat "$work/first/Corlune.ini")" "$(printf '[EDIT]\r\nEDIT_MODEL=1,QM2220\r')" "Corlune.ini"
grep -q '^FI_STEPNUM=[1-9]' "$work/first/Corlune_QM2220.ini" || fail "the work file holds no steps"
grep -q 'phase-shift.dat' "$work/first/CorluneWindow.ini" || fail "the recent file is not kept"

# Told to end in a run: what was typed is kept, the instrument is stopped, the connection closed.
new_folder third
sed -i 's/MYADRS=0"/MYADRS=0,LOG_FILE=comm.log"/' "$work/third/Corlune_Std.ini"
start_corlune --folder "$work/third" --lang en --virtual-instrument "$work/phase-shift.dat"
log=$work/third/comm.log
wait_until 30 "the main window does not open the file" window_named "$main_title.*phase-shift\.dat"
activate "$(window_named "$main_title")"
xdotool key --delay 100 6 alt+m Up Return
wait_until 20 "no question for the name" window_named '^Corlune$'
xdotool key Return
wait_until 60 "the sequence is not sent" grep -q 'TRIG:COMP' "$log"
runs() { xdotool key --delay 200 F5 Return && grep -q 'EXEC STAR' "$log"; }
wait_until 30 "the sequence does not start" runs
kill -TERM "$corlune"
wait_until 20 "the program does not end" has_ended "$corlune"
wait "$corlune" || fail "exit code after TERM"
is "$(grep -o '300ms\|EXEC STOP\|GP_END' "$log" | tail -3)" "$(printf '300ms\nEXEC STOP\nGP_END')" "log after TERM"
grep -q '^ST_SETVAL#0=6,' "$work/third/Corlune_QM2220.ini" || fail "what was typed is lost"

# The sibling editor is found without a window manager as well, and nothing else is taken for it.
kill "$manager"
wait_until 20 "the window manager stays" eval '! wmctrl -m'
"$bin/titled_window" "a.wdb - Tavrin Plindor for QM2210/20" &
sibling=$!
children+=("$sibling")
wait_until 20 "the sibling window does not appear again" window_named 'Plindor'
start_corlune --folder "$work/second" --lang en --visa none
wait_until 20 "no message about the sibling editor without a window manager" window_named '^Corlune$'
kill "$corlune" "$sibling"
wait_until 20 "the message or the sibling stays" no_window_named '^Corlune$|Plindor'
start_corlune --folder "$work/second" --lang en --visa none
wait_until 20 "the program does not start beside another program" window_named "$main_title"
echo "the window program passed"
