#!/bin/bash
# Plays the real game under a private X server, driven by xdotool: splash,
# title, a game with moves, shots, a nuke and a pause, a defeat, the title
# again, and Q; then the splash left to run to its end and P. Screenshots go to shots/ beside the game.
set -uo pipefail

GAME_DIR=$(cd "$1" && pwd)
SHOTS="$GAME_DIR/../e2e-shots"
WORK=$(mktemp -d)
mkdir -p "$SHOTS"

source "$(dirname "$0")/support/game-driver.sh"
start_xvfb
trap cleanup EXIT
start_game
sleep 0.3
shot 01-splash
key x
sleep 1
shot 02-title
game_running || fail "the game ended after the splash"

# The title art sits in the middle of the window (1024 x 768 at 128,128).
TITLE_REGION="700x300+290+320"
nice -n 15 /usr/bin/convert "$SHOTS/02-title.png" -crop "$TITLE_REGION" +repage "$SHOTS/02-title-region.png"
region_size() { echo "${TITLE_REGION%%+*}+0+0"; }
key p
sleep 1
shot 03-play
[ "$(differing_pixels 02-title 03-play "$TITLE_REGION")" -gt 2000 ] || fail "P did not start a game"

# A nuke first, while the board is still safe, then the pause: nothing
# moves while paused, and a key brings the game back.
key space
sleep 0.3
shot 04-nuke
key F10
sleep 0.5
shot 05-paused
sleep 0.7
shot 06-still-paused
[ "$(differing_pixels 05-paused 06-still-paused 1024x768+128+128)" -eq 0 ] || fail "the pause did not hold the game"
key x
sleep 0.7
shot 07-resumed
[ "$(differing_pixels 06-still-paused 07-resumed 1024x768+128+128)" -gt 0 ] || fail "the game did not resume"

hold a 0.6
hold d 1.2
hold s 0.4
xdotool mousemove 640 500 mousedown 1
sleep 1.2
shot 08-firing
xdotool mouseup 1
game_running || fail "the game ended during play"

# Into the enemies: up to the top rows and wait for a collision; the defeat
# screen plays, then the title comes back.
xdotool search --name "^Vantor$" windowfocus --sync keydown w
back_at_title=""
for second in $(seq 1 90); do
  sleep 1
  region_shot 09-waiting "$TITLE_REGION"
  if [ "$(differing_pixels 02-title-region 09-waiting "$(region_size)")" -lt 400 ]; then
    back_at_title=$second
    break
  fi
  [ "$second" = 4 ] && shot 10-top-rows
done
xdotool keyup w
[ -n "$back_at_title" ] || fail "the title screen did not come back"
shot 11-title-again

key q
for _ in $(seq 1 50); do game_running || break; sleep 0.1; done
game_running && fail "Q did not quit"
wait "$GAME_PID"
STATUS=$?
GAME_PID=""
[ "$STATUS" -eq 0 ] || fail "exit status $STATUS"
tail -1 "$WORK/vantor.log" | grep -q "\*\* Game engine stopped \*\*$" || fail "log does not end as it should"
echo "title back after ${back_at_title}s"

# Once more with the splash left to play to its end: P then starts a game.
start_game
sleep 4.5
shot 12-title-after-full-splash
key p
sleep 1
shot 13-play-after-full-splash
game_running || fail "P after a full splash ended the game"
[ "$(differing_pixels 12-title-after-full-splash 13-play-after-full-splash "$TITLE_REGION")" -gt 2000 ] ||
  fail "P after a full splash did not start a game"
kill "$GAME_PID"
wait "$GAME_PID" 2> /dev/null
GAME_PID=""
echo "PASS"
