#!/bin/bash
# Plays the real game under a private X server with a scripted player for
# a number of minutes and reports, minute by minute, the game's resident
# memory and the late frames ("Can't keep up!") of that minute, with the
# machine's load.
#
#   bench/soak.sh GAME_DIR [MINUTES]      (GAME_DIR: build/game; 10 minutes)
#
# The player holds the fire button and sways left and right; P is pressed
# every few seconds, which starts a game whenever the title screen shows.
# Enemy fire ends each game; the kills and the clock take the score past
# 1000 now and then, which brings in the boss.
set -uo pipefail

GAME_DIR=$(cd "$1" && pwd)
MINUTES=${2:-10}
WORK=$(mktemp -d)
SHOTS="$WORK"
source "$(dirname "$0")/../tests/e2e/support/game-driver.sh"
start_xvfb
trap cleanup EXIT
# SOAK_WRAPPER runs the game under a tool, such as "heaptrack -o FILE".
start_game ${SOAK_WRAPPER:-}
sleep 0.5
key x
sleep 1

resident_kb() { awk '/^VmRSS/ {print $2}' "/proc/$GAME_PID/status" 2> /dev/null; }
count() { grep -c "$1" "$WORK/vantor.log" 2> /dev/null || true; }

# One scripted player's turn: about one second of play.
play_second() {
  local tick=$1
  xdotool mousemove 640 500 mousedown 1
  if [ $((tick % 4)) -eq 0 ]; then
    key p
  fi
  local side=a
  [ $((tick % 6)) -lt 3 ] && side=d
  xdotool keydown $side
  sleep 0.3
  xdotool keyup $side
  sleep 0.7
}

printf "%6s %10s %8s %11s %6s\n" minute rss_MB delta_MB late_frames load
tick=0
last_late=0
first_kb=""
for minute in $(seq 1 "$MINUTES"); do
  for _ in $(seq 1 60); do
    game_running || fail "the game ended"
    play_second $tick
    tick=$((tick + 1))
  done
  kb=$(resident_kb)
  [ -z "$first_kb" ] && first_kb=$kb
  late=$(count "Can't keep up")
  printf "%6d %10.1f %8.1f %11d %6s\n" "$minute" "$(echo "$kb / 1024" | bc -l)" \
    "$(echo "($kb - $first_kb) / 1024" | bc -l)" $((late - last_late)) \
    "$(cut -d' ' -f1 /proc/loadavg)"
  last_late=$late
done
xdotool mouseup 1
