#!/bin/bash
# Records sessions of the real game, played under a private X server by a
# scripted pilot, for the replay tests:
#
#   defeat.vrec            splash skipped with a key, a game with moves, shots
#                          that down drelks, a wipe, a pause, the ship flown
#                          into the drelks, the defeat screen, the title, Q
#   victory.vrec           a game fought until the boss comes and falls, the
#                          victory screen, the title, Q
#   boss-fight.vrec        the same fight with seed 102, kept whoever wins: the
#                          boss comes, fires its fans, the ship wipes them and
#                          falls at last, the defeat screen, the title, Q
#   splash-runs-out.vrec   the splash left to play to its end, the title, Q
#
#   tests/game/sessions/record.sh [defeat|victory|boss-fight|splash-runs-out ...]
#
# With no names, all four are made. Each session runs build/game/shooter
# from its folder with VANTOR_RECORD set, a configuration with a fixed seed
# and silent audio; pilot.py (beside this script) watches the window through
# the X server's framebuffer file and plays with xdotool. A recording is kept
# only when the game ended by itself (Q on the title) with exit status 0 and
# the recording replays headless with status 0. A victory is not certain:
# the game is played again with the next seed until one is won, up to
# VICTORY_ATTEMPTS times.
#
# In the fight for a victory the pilot plays in step with the game: it
# stops the game's process (this script's own child, by its PID) at the end
# of every step while it looks and chooses, and lets it go on after.
#
# The replay tests check golden frames, scores and music at the steps of
# these recordings that looks.txt lists: a new recording of the same session
# differs, so an existing file is kept unless REPLACE=1, and what was derived
# from it (its looks and their frames) must then be made again.
#
# Environment: GAME_DIR (the built game's folder, default build/game),
# OUT_DIR (where recordings go, default this folder), REPLACE (1 to replace
# existing recordings), RECORD_DISPLAY (the X display number, default 71),
# VICTORY_ATTEMPTS (10), VICTORY_FIRST_SEED (101), KEEP_FAILED (a folder
# for the recordings of lost attempts).
set -uo pipefail

HERE=$(cd "$(dirname "$0")" && pwd)
ROOT=$(cd "$HERE/../../.." && pwd)
GAME_DIR=$(cd "${GAME_DIR:-$ROOT/build/game}" && pwd) || exit 1
OUT_DIR=$(mkdir -p "${OUT_DIR:-$HERE}" && cd "${OUT_DIR:-$HERE}" && pwd) || exit 1
DISPLAY_NUMBER=${RECORD_DISPLAY:-71}
VICTORY_ATTEMPTS=${VICTORY_ATTEMPTS:-10}
VICTORY_FIRST_SEED=${VICTORY_FIRST_SEED:-101}
WORK=$(mktemp -d)
GAME_PID=""
XVFB_PID=""
CURRENT_STEP="starting"

step() {
  CURRENT_STEP="$1"
  echo "-- $1"
}

fail() {
  echo "FAIL ($CURRENT_STEP): $*" >&2
  [ -f "$WORK/vantor.log" ] && tail -5 "$WORK/vantor.log" >&2
  exit 1
}

cleanup() {
  [ -n "$GAME_PID" ] && kill "$GAME_PID" 2> /dev/null
  [ -n "$XVFB_PID" ] && kill "$XVFB_PID" 2> /dev/null
  rm -rf "$WORK"
}
trap cleanup EXIT

[ -x "$GAME_DIR/shooter" ] || fail "no game in $GAME_DIR (cmake --build build --target shooter)"
for tool in Xvfb xdotool python3; do
  command -v "$tool" > /dev/null || fail "$tool is not installed"
done

# A private X server whose screen is also a file: the pilot reads the game's
# pixels from it.
start_xvfb() {
  step "starting Xvfb on :$DISPLAY_NUMBER"
  [ -e "/tmp/.X$DISPLAY_NUMBER-lock" ] &&
    fail "display :$DISPLAY_NUMBER is taken; choose another with RECORD_DISPLAY"
  mkdir -p "$WORK/fb"
  Xvfb ":$DISPLAY_NUMBER" -screen 0 1280x1024x24 -nolisten tcp -noreset -fbdir "$WORK/fb" \
    > "$WORK/xvfb.log" 2>&1 &
  XVFB_PID=$!
  export DISPLAY=":$DISPLAY_NUMBER"
  local deadline=$((SECONDS + 10))
  until xdotool getdisplaygeometry > /dev/null 2>&1 && [ -s "$WORK/fb/Xvfb_screen0" ]; do
    kill -0 "$XVFB_PID" 2> /dev/null || fail "Xvfb exited: $(cat "$WORK/xvfb.log")"
    [ $SECONDS -lt $deadline ] || fail "Xvfb did not answer within 10 s"
    sleep 0.1
  done
}

# Plays one session: $1 the recording's name, $2 the pilot's scenario, $3
# the seed. Leaves the recording in $WORK/$1.vrec and the pilot's status in
# PILOT_STATUS.
play_session() {
  local name=$1 scenario=$2 seed=$3
  step "$name: playing ($scenario, seed $seed)"
  sed "s/^random_seed:.*/random_seed:$seed,/" "$GAME_DIR/vt-config.txt" > "$WORK/vt-config.txt" ||
    fail "cannot write the test configuration"
  grep -qx "random_seed:$seed," "$WORK/vt-config.txt" || fail "the configuration has no random_seed line"
  rm -f "$WORK/$name.vrec"
  (cd "$GAME_DIR" && exec env ALSOFT_DRIVERS=null VANTOR_CONFIG="$WORK/vt-config.txt" \
    VANTOR_LOG="$WORK/vantor.log" VANTOR_RECORD="$WORK/$name.vrec" ./shooter) \
    > "$WORK/game.out" 2>&1 &
  GAME_PID=$!
  local window
  window=$(timeout 20 xdotool search --sync --name "^Vantor$" | head -1)
  [ -n "$window" ] || fail "no game window within 20 s"
  local geometry win_x win_y
  geometry=$(xdotool getwindowgeometry --shell "$window") ||
    fail "xdotool cannot read the window's geometry"
  win_x=$(sed -n 's/^X=//p' <<< "$geometry")
  win_y=$(sed -n 's/^Y=//p' <<< "$geometry")
  [ -n "$win_x" ] && [ -n "$win_y" ] || fail "no window position in: $geometry"
  timeout 1800 python3 "$HERE/pilot.py" "$WORK/fb/Xvfb_screen0" "$window" "$win_x" "$win_y" \
    "$GAME_PID" "$scenario"
  PILOT_STATUS=$?
  case $PILOT_STATUS in
    0 | 2) ;;
    *) fail "the pilot failed (status $PILOT_STATUS)" ;;
  esac
  # Q on the title ends the game, and the recorder writes its last line.
  local deadline=$((SECONDS + 15))
  while kill -0 "$GAME_PID" 2> /dev/null; do
    [ $SECONDS -lt $deadline ] || fail "the game did not exit within 15 s of Q"
    sleep 0.1
  done
  wait "$GAME_PID"
  local status=$?
  GAME_PID=""
  [ "$status" -eq 0 ] || fail "the game exited with status $status: $(tail -3 "$WORK/game.out")"
  tail -1 "$WORK/$name.vrec" | grep -Eq '^end [0-9]+$' || fail "the recording has no end line"
}

# The recording replayed headless, without a display, as the replay tests
# run it: status 0 means it unfolded exactly as recorded.
check_replay() {
  local file=$1
  step "$(basename "$file"): replaying headless"
  (cd "$GAME_DIR" && env -u DISPLAY -u VANTOR_CONFIG ALSOFT_DRIVERS=null VANTOR_REPLAY="$file" \
    VANTOR_HEADLESS=1 VANTOR_LOG="$WORK/replay.log" timeout 300 ./shooter) > "$WORK/replay.out" 2>&1
  local status=$?
  [ "$status" -eq 0 ] || fail "the replay of $file ended with status $status: $(cat "$WORK/replay.out")"
}

keep() {
  local name=$1
  check_replay "$WORK/$name.vrec"
  mv "$WORK/$name.vrec" "$OUT_DIR/$name.vrec" || fail "cannot write $OUT_DIR/$name.vrec"
  local bytes lines steps
  bytes=$(stat -c %s "$OUT_DIR/$name.vrec")
  lines=$(wc -l < "$OUT_DIR/$name.vrec")
  steps=$(tail -1 "$OUT_DIR/$name.vrec" | cut -d' ' -f2)
  echo "kept $OUT_DIR/$name.vrec: $bytes bytes, $lines lines, $steps steps"
}

record_defeat() {
  play_session defeat defeat 7
  keep defeat
}

record_splash() {
  play_session splash-runs-out splash 7
  keep splash-runs-out
}

record_boss_fight() {
  play_session boss-fight victory 102
  keep boss-fight
}

record_victory() {
  local attempt seed
  for ((attempt = 1; attempt <= VICTORY_ATTEMPTS; attempt++)); do
    seed=$((VICTORY_FIRST_SEED + attempt - 1))
    play_session victory victory "$seed"
    if [ "$PILOT_STATUS" -eq 0 ]; then
      echo "victory on attempt $attempt (seed $seed)"
      keep victory
      return
    fi
    echo "attempt $attempt (seed $seed) lost"
    if [ -n "${KEEP_FAILED:-}" ]; then
      mkdir -p "$KEEP_FAILED" && cp "$WORK/victory.vrec" "$KEEP_FAILED/victory-seed-$seed.vrec"
    fi
  done
  fail "no victory in $VICTORY_ATTEMPTS attempts (seeds $VICTORY_FIRST_SEED to $seed)"
}

[ $# -gt 0 ] || set -- splash-runs-out defeat boss-fight victory
for name in "$@"; do
  if [ -e "$OUT_DIR/$name.vrec" ] && [ "${REPLACE:-0}" != 1 ]; then
    fail "$OUT_DIR/$name.vrec exists; REPLACE=1 replaces it (and the frames made from it)"
  fi
done
start_xvfb
for name in "$@"; do
  case $name in
    defeat) record_defeat ;;
    victory) record_victory ;;
    boss-fight) record_boss_fight ;;
    splash-runs-out) record_splash ;;
    *) fail "no session '$name' (defeat, victory, boss-fight, splash-runs-out)" ;;
  esac
done
echo "DONE"
