#!/bin/bash
# Shared by the scripts that play the real game: a private X server, the
# game started under it, xdotool keys and holds that stop the script when
# xdotool fails, screenshots of window regions and waits for what they show.
# Source it after setting GAME_DIR (the built game's folder), WORK (a scratch
# folder) and SHOTS (where screenshots go).

# What the script is doing now; every failure names it.
CURRENT_STEP="starting"
step() {
  CURRENT_STEP="$1"
  echo "-- $1"
}

fail() {
  echo "FAIL ($CURRENT_STEP): $*"
  if [ -n "${GAME_PID:-}" ] && ! kill -0 "$GAME_PID" 2> /dev/null; then
    wait "$GAME_PID"
    echo "The game had ended with status $?."
  fi
  [ -f "$WORK/vantor.log" ] && tail -20 "$WORK/vantor.log"
  exit 1
}

# A private X server on a free display number; DISPLAY points at it.
start_xvfb() {
  exec 3<> <(:)
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset > "$WORK/xvfb.log" 2>&1 &
  XVFB_PID=$!
  read -r -t 10 DISPLAY_NUMBER <&3 || fail "Xvfb did not start"
  export DISPLAY=":$DISPLAY_NUMBER"
}

GAME_PID=""
cleanup() {
  [ -n "$GAME_PID" ] && kill "$GAME_PID" 2> /dev/null
  [ -n "${XVFB_PID:-}" ] && kill "$XVFB_PID" 2> /dev/null
  rm -rf "$WORK"
}

# A copy of the game's configuration with a fixed random seed, in WORK; the
# game started next reads it through VANTOR_CONFIG, so every run meets the
# same enemies.
use_fixed_seed() {
  sed "s/^random_seed:.*/random_seed:$1,/" "$GAME_DIR/vt-config.txt" > "$WORK/vt-config.txt" ||
    fail "cannot write the test configuration"
  grep -qx "random_seed:$1," "$WORK/vt-config.txt" || fail "the configuration has no random_seed line"
  export VANTOR_CONFIG="$WORK/vt-config.txt"
}

# Starts the game, its log in WORK, optionally under a wrapper command, and
# waits for its window: GAME_WINDOW is then its id.
start_game() {
  cd "$GAME_DIR" || fail "no game folder"
  # Under the sanitizers the graphics driver's own leaks would be reported
  # at exit, from a library already unloaded and so beyond suppression by
  # name; the unit tests check the engine's leaks.
  ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0" VANTOR_LOG="$WORK/vantor.log" \
    "$@" ./shooter &
  GAME_PID=$!
  # A search walks every window and fails on one that goes away meanwhile:
  # only this wait searches, and it tries again; keys and screenshots then
  # go to the window found here.
  GAME_WINDOW=""
  local deadline=$((SECONDS + 20))
  while [ -z "$GAME_WINDOW" ]; do
    [ $SECONDS -lt $deadline ] || fail "no game window within 20 s"
    game_running || fail "the game ended before it opened its window"
    sleep 0.1
    GAME_WINDOW=$(xdotool search --name "^Vantor$" 2> /dev/null | head -1)
  done
}

game_running() { kill -0 "$GAME_PID" 2> /dev/null; }

# Waits for the game to exit, up to $1 seconds; GAME_STATUS is its status.
wait_for_exit() {
  local deadline=$((SECONDS + $1))
  while game_running; do
    [ $SECONDS -lt $deadline ] || fail "the game did not exit within $1 s"
    sleep 0.1
  done
  wait "$GAME_PID"
  GAME_STATUS=$?
  GAME_PID=""
}

# xdotool, stopping the script when it fails. xdotool warns about a key name
# it does not know and carries on with status 0: anything it writes to
# standard error counts as a failure too.
xdo() {
  local errors
  errors=$(xdotool "$@" 2>&1 > /dev/null)
  local status=$?
  [ "$status" -eq 0 ] && [ -z "$errors" ] || fail "xdotool $* failed (status $status): $errors"
}

key() { xdo windowfocus --sync "$GAME_WINDOW" key "$1"; }
key_down() { xdo windowfocus --sync "$GAME_WINDOW" keydown "$1"; }
key_up() { xdo keyup "$1"; }

hold() {
  key_down "$1"
  sleep "$2"
  key_up "$1"
}

# The ImageMagick tools are named by their full paths: a program of the same
# name earlier on the PATH may be something else. They run at the game's own
# priority: niced, they fall so far behind the game on a busy machine that it
# plays on for seconds between two looks.
shot() { /usr/bin/import -window "$GAME_WINDOW" "$SHOTS/$1.png" || fail "no screenshot $1"; }

# A screenshot of one region of the game window, WxH+X+Y from the window's
# corner: cheap enough to take several times a second.
region_shot() {
  /usr/bin/import -window "$GAME_WINDOW" -crop "$2" +repage "$SHOTS/$1.png" ||
    fail "no screenshot $1"
}

# Pixels that differ between two screenshots of the same size; compare's
# complaint instead of a number when it cannot tell, so that no test of the
# count holds.
differing_pixels() {
  /usr/bin/compare -metric AE -fuzz 10% "$SHOTS/$1.png" "$SHOTS/$2.png" null: 2>&1 |
    awk '$1 ~ /^[0-9.e+]+$/ { printf "%d\n", $1; next } { print "compare:", $0 }'
}

# Pixels of exactly one colour (an ImageMagick colour name) in a screenshot.
colour_pixels() {
  /usr/bin/convert "$SHOTS/$1.png" -alpha off -fill black +opaque "$2" \
    -fill white -opaque "$2" -format "%[fx:round(mean*w*h)]" info:
}

# The left edge in pixels of what is drawn in one colour in a screenshot,
# or -1 when nothing is.
colour_left_edge() {
  if [ "$(colour_pixels "$1" "$2")" -eq 0 ]; then
    echo -1
    return
  fi
  /usr/bin/convert "$SHOTS/$1.png" -alpha off -fill black +opaque "$2" \
    -format "%@" info: | sed 's/.*+\([0-9]*\)+[0-9]*$/\1/'
}

# Polls a condition every 150 ms until it holds, for up to $2 seconds; the
# wait fails the test with $1 as the thing that did not happen, followed by
# WAIT_STATE, which a condition may set to what it saw last.
wait_until() {
  local what=$1 bound=$2
  shift 2
  local start=$SECONDS
  WAIT_STATE=""
  until "$@"; do
    [ $((SECONDS - start)) -lt "$bound" ] || fail "$what (waited ${bound} s${WAIT_STATE:+; $WAIT_STATE})"
    game_running || fail "the game ended while waiting: $what"
    sleep 0.15
  done
}
