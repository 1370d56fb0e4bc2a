#!/bin/bash
# Records a long session of the shooter for the replay benchmark: under a
# private X server a scripted player starts game after game, sweeps left
# and right with the fire button held and wipes now and then, for the
# given number of seconds; then it flies into the drelks and quits on the
# title. Usage: record-long.sh GAME_DIR SECONDS OUTPUT.vrec
set -euo pipefail
GAME_DIR=$(cd "$1" && pwd)
SECONDS_TO_PLAY=$2
OUTPUT=$(realpath "$3")
WORK=$(mktemp -d)
DISPLAY_NUMBER=:57
Xvfb $DISPLAY_NUMBER -screen 0 1280x1024x24 -nolisten tcp &> /dev/null &
XVFB=$!
trap 'kill $GAME $XVFB 2> /dev/null; rm -rf "$WORK"' EXIT
export DISPLAY=$DISPLAY_NUMBER ALSOFT_DRIVERS=null
sed 's/^random_seed:.*/random_seed:11,/' "$GAME_DIR/vt-config.txt" > "$WORK/vt-config.txt"
sleep 1
(cd "$GAME_DIR" && VANTOR_CONFIG="$WORK/vt-config.txt" VANTOR_LOG="$WORK/vantor.log" \
  VANTOR_RECORD="$OUTPUT" exec ./shooter) &
GAME=$!
for _ in $(seq 50); do
  WINDOW=$(xdotool search --name '^Vantor$' 2> /dev/null | head -1) && [ -n "$WINDOW" ] && break
  sleep 0.2
done
xdotool windowfocus --sync "$WINDOW" key x
sleep 1
xdotool mousemove 640 600
END=$((SECONDS + SECONDS_TO_PLAY))
while [ $SECONDS -lt $END ]; do
  xdotool key p mousedown 1 keydown d sleep 0.8 keyup d keydown a sleep 0.8 keyup a mouseup 1
  [ $((RANDOM % 4)) -eq 0 ] && xdotool key space
done
# Into the drelks, then the title and Q.
xdotool keydown w sleep 20 keyup w sleep 8 key q
for _ in $(seq 100); do kill -0 $GAME 2> /dev/null || break; sleep 0.2; done
wait $GAME
echo "recorded $(grep -c . "$OUTPUT") lines, $(stat -c %s "$OUTPUT") bytes into $OUTPUT"
