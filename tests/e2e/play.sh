#!/bin/bash
# Plays the real game under a private X server, driven by xdotool, with a
# fixed random seed: splash skipped, title, a game with shots, a wipe, a move
# and a pause, a defeat, the title again, and Q; then the splash left to run
# to its end and P. Each stage is checked on the screen: the test waits, up
# to a generous bound, for the window region that a key should change, and
# fails naming the stage when it does not change or an xdotool call fails.
# Screenshots are kept in e2e-shots/ beside the game folder.
set -uo pipefail

GAME_DIR=$(cd "$1" && pwd)
SHOTS="$GAME_DIR/../e2e-shots"
WORK=$(mktemp -d)
rm -rf "$SHOTS"
mkdir -p "$SHOTS"

source "$(dirname "$0")/support/game-driver.sh"

# Regions of the 1024 x 768 window (cells of 12.8 x 32 pixels), WxH+X+Y.
# The title art "DRELK STORM": about 13,900 pixels of pure cyan; in play
# none. The defeat screen's "GAME OVER" covers it with about 14,400 red ones.
TITLE_REGION="700x300+162+192"
# The rows the ship can sit on near the bottom: in play the ship, about 340
# cyan pixels, is the only cyan thing there.
SHIP_BAND="1024x192+0+544"
# The digit of the wipe counter, top left: "| WIPE:  5 |".
WIPE_DIGIT="24x30+204+34"
# The middle of the cell right of the score's first digit, top right:
# "| Points 5 |" leaves it blank, "| Points 15 |" and "| Points 105 |" do
# not.
SCORE_SECOND_DIGIT="8x22+908+38"
# The score's whole text row, kept for the record.
SCORE_ROW="176x26+778+36"
WINDOW="1024x768+0+0"

# True when a region (name, geometry) holds more than a number of pixels of
# a colour; the count goes into WAIT_STATE with the words given.
region_holds() {
  region_shot "$1" "$2"
  local count
  count=$(colour_pixels "$1" "$3")
  WAIT_STATE="$count $3 pixels $5"
  [ "$count" -gt "$4" ]
}

title_shown() { region_holds title-now "$TITLE_REGION" cyan 8000 "in the title region"; }

# The title gone and the ship at the bottom.
play_shown() {
  region_shot title-now "$TITLE_REGION"
  region_shot ship-now "$SHIP_BAND"
  local title ship
  title=$(colour_pixels title-now cyan)
  ship=$(colour_pixels ship-now cyan)
  WAIT_STATE="$title cyan pixels in the title region, $ship on the ship's rows"
  [ "$title" -lt 500 ] && [ "$ship" -gt 150 ]
}

# SHIP_X: the left edge of the ship in pixels, -1 when it is not there.
measure_ship() {
  region_shot ship-now "$SHIP_BAND"
  SHIP_X=$(colour_left_edge ship-now cyan)
}

ship_right_of() {
  measure_ship
  WAIT_STATE="ship at x=$SHIP_X (-1: no ship)"
  [ "$SHIP_X" -ge "$1" ]
}

# Another digit, not a blank: the closing screen removes the counter.
wipe_counter_changed() {
  region_shot wipe-now "$WIPE_DIGIT"
  [ "$(differing_pixels wipe-before wipe-now)" -gt 40 ] && [ "$(colour_pixels wipe-now yellow)" -gt 40 ]
}

# The closing screen's "GAME OVER" art, in red, where the title was.
defeat_shown() {
  region_shot title-now "$TITLE_REGION"
  [ "$(colour_pixels title-now red)" -gt 8000 ]
}

title_back() {
  title_shown && [ "$(differing_pixels 01-title title-now)" -lt 400 ]
}

# Two screenshots of the window in a row that do not differ.
screen_held() {
  cp "$SHOTS/window-now.png" "$SHOTS/window-before.png" 2> /dev/null
  region_shot window-now "$WINDOW"
  [ -f "$SHOTS/window-before.png" ] && [ "$(differing_pixels window-before window-now)" -eq 0 ]
}

screen_moved_on() {
  region_shot window-now "$WINDOW"
  [ "$(differing_pixels 07-paused window-now)" -gt 0 ]
}

# The score gains a point a second on its own and 10 for every drelk shot
# down. The loop makes no more than one step every 33 ms, so the clock alone
# takes 271 steps, over 8.9 s, to bring a new game's score to 10. A
# one-digit score leaves blank the cell where a two-digit score ends.
now_ms() { echo $(($(date +%s%N) / 1000000)); }
score_has_two_digits() {
  region_holds score-now "$SCORE_SECOND_DIGIT" yellow 20 "where a second digit would be"
}

# Fails once the score could have reached two digits by the clock alone.
score_has_two_digits_early() {
  local elapsed=$(($(now_ms) - GAME_STARTED_MS))
  if [ "$elapsed" -ge 8500 ]; then
    play_shown || fail "P did not start a game ($WAIT_STATE)"
    fail "no drelk shot down: the score has one digit ${elapsed} ms after P"
  fi
  score_has_two_digits
}

start_xvfb
trap cleanup EXIT
use_fixed_seed 7
grep -qx "frame_time:33," "$VANTOR_CONFIG" || fail "the score check below counts on 33 ms frames"

step "skipping the splash"
start_game
key x
wait_until "the title screen did not appear" 15 title_shown
cp "$SHOTS/title-now.png" "$SHOTS/01-title.png"

step "starting a game with P, firing at once"
GAME_STARTED_MS=$(now_ms)
key p
# The title screen ignores the mouse. The shooting starts while the drelks'
# first shots are still far above the ship, and the score is watched at
# once: every look costs time on a busy machine.
xdo mousemove --window "$GAME_WINDOW" 512 300 mousedown 1
wait_until "no drelk shot down" 10 score_has_two_digits_early
xdo mouseup 1
echo "the score reached two digits $(($(now_ms) - GAME_STARTED_MS)) ms after P"
region_shot 02-score-after-firing "$SCORE_ROW"
# The closing screen adds 10 for every drelk it clears away: only a ship
# still there afterwards shows that the points came from hits.
play_shown || fail "no ship in play after the shots: the points may be the closing screen's ($WAIT_STATE)"
cp "$SHOTS/ship-now.png" "$SHOTS/03-ship-after-firing.png"

step "wiping the enemy shots with Space"
region_shot wipe-before "$WIPE_DIGIT"
key space
wait_until "Space did not change the wipe counter" 10 wipe_counter_changed
cp "$SHOTS/wipe-before.png" "$SHOTS/04-wipe-before.png"
cp "$SHOTS/wipe-now.png" "$SHOTS/05-wipe-after.png"

step "moving right with D held"
measure_ship
START_X=$SHIP_X
[ "$START_X" -ge 0 ] || fail "no ship on the bottom rows"
key_down d
wait_until "holding D did not move the ship right of x=$START_X by five cells" 10 \
  ship_right_of $((START_X + 64))
key_up d
shot 06-moved
echo "ship moved right from x=$START_X to at least x=$((START_X + 64))"

step "pausing with F10"
key F10
rm -f "$SHOTS/window-now.png"
wait_until "F10 did not hold the game still" 10 screen_held
cp "$SHOTS/window-now.png" "$SHOTS/07-paused.png"
sleep 1
region_shot 08-still-paused "$WINDOW"
[ "$(differing_pixels 07-paused 08-still-paused)" -eq 0 ] || fail "the pause did not hold for a second"

step "resuming with another key"
key x
wait_until "a key did not resume the game" 10 screen_moved_on

step "flying into the drelks"
key_down w
wait_until "the ship met nothing on its way up: no defeat screen" 25 defeat_shown
key_up w
shot 09-defeat

step "waiting for the title after the defeat"
wait_until "the title screen did not come back after the defeat" 20 title_back
shot 10-title-again

step "quitting with Q"
key q
wait_for_exit 10
[ "$GAME_STATUS" -eq 0 ] || fail "exit status $GAME_STATUS"
tail -1 "$WORK/vantor.log" | grep -q "\*\* Game engine stopped \*\*$" || fail "the log does not end as it should"

step "P after the splash played to its end"
start_game
wait_until "the title screen did not appear after the splash" 20 title_shown
shot 11-title-after-full-splash
key p
wait_until "P after a full splash did not start a game" 10 play_shown
shot 12-play-after-full-splash
# The cell the firing stage watches is blank while the score has one digit.
score_has_two_digits && fail "a second digit of the score at the start of a game"
region_shot 13-score-at-start "$SCORE_ROW"
kill "$GAME_PID"
wait "$GAME_PID" 2> /dev/null
GAME_PID=""
echo "PASS"
