#!/bin/bash
# Shared by the scripts that play the real game: a private X server, the
# game started under it, and xdotool keys, holds and screenshots. Source it
# after setting GAME_DIR (the built game's folder), WORK (a scratch folder)
# and SHOTS (where screenshots go).

fail() {
  echo "FAIL: $*"
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

# Starts the game, its log in WORK, optionally under a wrapper command, and
# waits for its window.
start_game() {
  cd "$GAME_DIR" || fail "no game folder"
  # Under the sanitizers the graphics driver's own leaks would be reported
  # at exit, from a library already unloaded and so beyond suppression by
  # name; the unit tests check the engine's leaks.
  ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0" VANTOR_LOG="$WORK/vantor.log" \
    "$@" ./shooter &
  GAME_PID=$!
  xdotool search --sync --name "^Vantor$" > /dev/null || fail "no window"
}

game_running() { kill -0 "$GAME_PID" 2> /dev/null; }

# The tools run niced, so that they take as little as possible from the
# game's frames on a small machine.
shot() { nice -n 15 import -window root "$SHOTS/$1.png"; }

# A screenshot of one region only: cheap enough to take every second.
region_shot() { nice -n 15 import -window root -crop "$2" +repage "$SHOTS/$1.png"; }

# Pixels that differ between the same region of two screenshots.
differing_pixels() {
  nice -n 15 /usr/bin/convert "$SHOTS/$1.png" -crop "$3" +repage "$WORK/a.png"
  nice -n 15 /usr/bin/convert "$SHOTS/$2.png" -crop "$3" +repage "$WORK/b.png"
  nice -n 15 compare -metric AE -fuzz 10% "$WORK/a.png" "$WORK/b.png" null: 2>&1 | cut -d' ' -f1
}

key() { xdotool search --name "^Vantor$" windowfocus --sync key "$1"; }

hold() {
  xdotool search --name "^Vantor$" windowfocus --sync keydown "$1"
  sleep "$2"
  xdotool keyup "$1"
}
