# shellcheck shell=bash disable=SC2154
# Functions for scripts that drive the window program on an X server of their own. To be sourced.
#   begin_x WIDTH HEIGHT     starts Xvfb and openbox; DISPLAY is set, openbox is $manager
#   end_x                    ends what begin_x and start_corlune started
#   start_corlune ARG...     starts "$bin/corlune" in the background; its process id is in $corlune
#   wait_until SECONDS WHAT COMMAND...   repeats COMMAND until it succeeds; fails the script with WHAT

children=()

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

wait_until() {
  local deadline=$((SECONDS + $1)) what=$2
  shift 2
  until "$@" >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$deadline" ] || fail "$what"
    sleep 0.1
  done
}

begin_x() {
  local fd_file
  fd_file=$(mktemp)
  Xvfb -displayfd 3 -screen 0 "$1x$2x24" -noreset -nolisten tcp 3>"$fd_file" 2>/dev/null &
  children+=($!)
  wait_until 20 "the X server does not start" test -s "$fd_file"
  DISPLAY=:$(cat "$fd_file")
  export DISPLAY
  rm -f "$fd_file"
  openbox --sm-disable >/dev/null 2>&1 &
  manager=$!
  children+=("$manager")
  wait_until 20 "the window manager does not start" wmctrl -m
}

end_x() {
  local child
  for child in "${children[@]}"; do
    kill "$child" 2>/dev/null || true
  done
  for child in "${children[@]}"; do
    wait "$child" 2>/dev/null || true
  done
  children=()
}

start_corlune() {
  "$bin/corlune" "$@" &
  corlune=$!
  children+=("$corlune")
}

main_title='^\*?Tavrin Corlune for QM2210/20'
# The id of a visible window by its title.
window_named() { xdotool search --onlyvisible --name "$1" | head -1 | grep .; }
no_window_named() { ! window_named "$1"; }
# Gives a window the keyboard.
activate() {
  xdotool windowactivate "$1"
  wait_until 10 "a window does not become active" is_active "$1"
}
is_active() { [ "$(xdotool getactivewindow)" = "$1" ]; }
