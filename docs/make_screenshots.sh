#!/usr/bin/env bash
# Makes the pictures of the main window's states in both languages: docs/images/<state>-<language>.png, at its first
# size on a screen of 1366x768, and one on 1920x1080 with the sequence view docked (wide).
#   docs/make_screenshots.sh [FOLDER OF THE PROGRAM] [LANGUAGE...]
# Needs what setup.sh installs (Xvfb, openbox, xdotool, wmctrl, ImageMagick). Takes about a minute: a download to
# the virtual instrument lasts as long as to a real one.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bin=$(cd "${1:-$root/build/release/bin}" && pwd)
shift || true
languages=("$@")
[ ${#languages[@]} -gt 0 ] || languages=(en ja)
images=$root/docs/images
mkdir -p "$images"
# shellcheck source=tests/e2e/x_session.sh
. "$root/tests/e2e/x_session.sh"

work=$(mktemp -d)
trap 'end_x; rm -rf "$work"' EXIT

shoot() {
  sleep 0.5
  import -window root -strip -define png:exclude-chunks=date,time "$images/$1-$language.png"
  echo "$1-$language.png"
}
# Ends a message or input of the program.
press_in_dialog() {
  wait_until 20 "no dialog of the program" window_named '^Corlune$'
  activate "$(window_named '^Corlune$')"
  xdotool key "$1"
}
download_ended() {
  for _ in 1 2 3 4 5 6 7 8 9 10; do
    no_window_named '^Corlune$' || return 1
    sleep 0.2
  done
}

# tool_dialog KEY TITLE: opens the dialog of the key with Ctrl and Shift.
tool_dialog() {
  activate "$main"
  xdotool key "ctrl+shift+$1"
  wait_until 10 "no dialog $2" window_named "^($2)\$"
}

# start_on WIDTH HEIGHT: a screen of that size and the program with the example sequence.
start_on() {
  begin_x "$1" "$2"
  folder=$work/$language-$1
  mkdir -p "$folder"
  cp "$bin/Corlune_Std.ini" "$folder/"
  printf '[EDIT]\r\nEDIT_MODEL=1,QM2220\r\n' > "$folder/Corlune.ini"
  # As the work file, so that the pictures show no path.
  "$bin/corlune-cli" --folder "$folder" save "$root/data/examples/quick-tour.dat" --work \
    -o "$folder/Corlune_QM2220.ini"
  start_corlune --folder "$folder" --lang "$language" --virtual-instrument 2>/dev/null
  wait_until 30 "the main window does not appear" window_named "$main_title"
  main=$(window_named "$main_title")
  activate "$main"
  sleep 0.5
}

for language in "${languages[@]}"; do
  start_on 1920 1080
  xdotool key ctrl+4
  sleep 1
  shoot wide
  end_x

  start_on 1366 768
  shoot edit

  # The tool dialogs that show no path: amplitudes in volts (rms) at 50 ohm.
  tool_dialog p 'Common Sequence Parameters|シーケンス共通パラメタ設定'
  shoot common-settings
  xdotool key Escape
  tool_dialog h 'Set channel|チャネル設定'
  xdotool key Tab Down Tab 5 0 Tab Down Tab Down Tab
  xdotool type Vrms
  xdotool key Tab Tab
  xdotool type 0.35355
  shoot channel-settings
  xdotool key Escape Escape
  tool_dialog m 'Set mode|モード設定'
  shoot mode-settings
  xdotool key Escape

  # Mode menu, execution mode; the name as proposed.
  activate "$main"
  xdotool key alt+m
  sleep 0.3
  xdotool key r
  press_in_dialog Return
  sleep 3
  shoot download
  wait_until 90 "the download does not end" download_ended
  activate "$main"
  shoot stopped

  xdotool key F5
  wait_until 20 "no question before the start" window_named '^Corlune$'
  shoot message-9200
  press_in_dialog Return
  sleep 1.5
  shoot running
  xdotool key F6
  sleep 0.7
  shoot held
  end_x
done
