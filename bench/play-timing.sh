#!/bin/bash
# Frame timing of the real game: plays it under a private X server for
# SECONDS (default 30) with a scripted player (title, games with moves,
# shots and nukes, deaths, the title again) and reports the frame period's
# mean, p50, p99 and max, and the frames the game logged as late.
#
#   bench/play-timing.sh [build/game] [seconds]
#
# The frame period is the time between two frame sleeps of the game loop's
# thread, read with strace; a late frame does not sleep, so its time is
# counted in the period that follows it.
set -uo pipefail

GAME_DIR=$(cd "${1:-build/game}" && pwd)
DURATION=${2:-30}
WORK=$(mktemp -d)
SHOTS="$WORK"
source "$(dirname "$0")/../tests/e2e/support/game-driver.sh"
command -v strace > /dev/null || fail "strace is needed (apt-get install strace)"

start_xvfb
trap cleanup EXIT
start_game strace -f --seccomp-bpf -e trace=clock_nanosleep -ttt -o "$WORK/trace"
sleep 0.5
key x
END=$((SECONDS + DURATION))
while [ $SECONDS -lt $END ] && game_running; do
  key p
  hold a 0.4
  xdotool mousemove 640 500 mousedown 1
  hold d 0.8
  key space
  hold w 1.5
  xdotool mouseup 1
  sleep 1
done
game_running || fail "the game ended during the run"
# The game is strace's child: ending it ends strace too.
pkill -P "$GAME_PID"
wait "$GAME_PID" 2> /dev/null
GAME_PID=""

# The loop's own sleeps are the monotonic, absolute ones of its thread.
LOOP_THREAD=$(awk '/clock_nanosleep\(CLOCK_MONOTONIC, TIMER_ABSTIME/ { print $1; exit }' "$WORK/trace")
awk -v thread="$LOOP_THREAD" '$1 == thread && /CLOCK_MONOTONIC, TIMER_ABSTIME/ { print $2 }' \
  "$WORK/trace" > "$WORK/sleeps"
LATE=$(grep -c "Can't keep up" "$WORK/vantor.log")
awk 'NR > 1 { printf "%.3f\n", ($1 - previous) * 1000 } { previous = $1 }' "$WORK/sleeps" |
  sort -n > "$WORK/periods"
FRAMES=$(wc -l < "$WORK/periods")
[ "$FRAMES" -gt 0 ] || fail "no frames were timed"
percentile() { sed -n "$((FRAMES * $1 / 100 + 1))p" "$WORK/periods"; }
MEAN=$(awk '{ sum += $1 } END { printf "%.3f", sum / NR }' "$WORK/periods")
echo "frames: $FRAMES  mean: $MEAN ms  p50: $(percentile 50) ms  p99: $(percentile 99) ms" \
  " max: $(tail -1 "$WORK/periods") ms  late frames: $LATE"
