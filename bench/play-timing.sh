#!/bin/bash
# Frame timing of the real game: plays it under a private X server for
# SECONDS (default 30) with a scripted player (title, games with moves,
# shots and nukes, deaths, the title again) and reports the frame period's
# mean, p50, p99 and max, the frames the game logged as late, and the mean
# time of each part of a frame.
#
#   bench/play-timing.sh [build/game] [seconds]
#
# The times are the game's own, from the frame stats it writes with
# VANTOR_STATS: one row a step, each part of the step and the whole step
# (its sleep included) in microseconds.
set -uo pipefail

GAME_DIR=$(cd "${1:-build/game}" && pwd)
DURATION=${2:-30}
WORK=$(mktemp -d)
SHOTS="$WORK"
source "$(dirname "$0")/../tests/e2e/support/game-driver.sh"

start_xvfb
trap cleanup EXIT
STATS="$WORK/stats.csv"
start_game env VANTOR_STATS="$STATS"
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
# Every finished step's row is in the file: the game may be ended at once.
kill "$GAME_PID"
wait "$GAME_PID" 2> /dev/null
GAME_PID=""

LATE=$(grep -c "Can't keep up" "$WORK/vantor.log")
awk -F, 'NR > 1 { printf "%.3f\n", $9 / 1000 }' "$STATS" | sort -n > "$WORK/periods"
FRAMES=$(wc -l < "$WORK/periods")
[ "$FRAMES" -gt 0 ] || fail "no frames were timed"
percentile() { sed -n "$((FRAMES * $1 / 100 + 1))p" "$WORK/periods"; }
MEAN=$(awk '{ sum += $1 } END { printf "%.3f", sum / NR }' "$WORK/periods")
echo "frames: $FRAMES  mean: $MEAN ms  p50: $(percentile 50) ms  p99: $(percentile 99) ms" \
  " max: $(tail -1 "$WORK/periods") ms  late frames: $LATE"
# The mean of each part, named by the header without its unit.
awk -F, 'NR == 1 { for (i = 2; i <= 8; i++) name[i] = substr($i, 1, length($i) - 3); next }
  { for (i = 2; i <= 8; i++) sum[i] += $i; rows++ }
  END { line = "mean ms:"; for (i = 2; i <= 8; i++) line = line sprintf(" %s %.3f", name[i], sum[i] / rows / 1000); print line }' \
  "$STATS"
