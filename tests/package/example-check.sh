#!/bin/bash
# Installs the engine from the build folder into a temporary prefix, copies
# an example game out of the source tree, and configures, builds and runs
# its test against the installed package alone; then plays it in a terminal.
# Usage: example-check.sh BUILD_DIR SOURCE_DIR EXAMPLE PLAYER [cmake arguments...]
# EXAMPLE names the folder under examples/ and its executable; PLAYER is a
# grep pattern of the player on the screen, which D moves right and Q ends.
set -euo pipefail
build_dir=$1
source_dir=$2
example=$3
player=$4
shift 4

work=$(mktemp -d "${TMPDIR:-/tmp}/vantor-package-XXXXXX")
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" > "$work/install.log"
# The package must not point back into the tree it was built in.
if grep -rl "$source_dir" "$work/prefix/lib/cmake"; then
  echo "the installed package refers to the source tree" >&2
  exit 1
fi

cp -r "$source_dir/examples/$example" "$work/$example"
cmake -S "$work/$example" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" "$@" \
  > "$work/configure.log" || { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build" -j 2
for file in "$example" vt-font.ttf $(cd "$work/$example/data" && find . -type f); do
  test -e "$work/build/$file" || { echo "missing beside the game: $file" >&2; exit 1; }
done
cd "$work/build"
ctest --output-on-failure

# The game played in a terminal: it shows its player, a held D (sent again
# and again, as a terminal repeats a held key) moves it, Q ends the game,
# and the terminal has its modes back.
session="$example-$$"
tmux_() { tmux -L "$session" "$@"; }
trap 'tmux_ kill-server 2>/dev/null; rm -rf "$work"' EXIT
tmux_ new-session -d -s "$session" -x 80 -y 24 \
  "sh -c 'VANTOR_DISPLAY=terminal ./$example; echo \$? > status; sleep 600'"
# The column just past the player, on the first row that shows it.
player_column() {
  tmux_ capture-pane -p -t "$session" | grep -o "^.*$player" | head -1 | awk '{ print length($0) }'
}
wait_for() {
  for _ in $(seq 600); do
    if eval "$1"; then return 0; fi
    sleep 0.05
  done
  echo "$example in a terminal: waited in vain for: $2" >&2
  tmux_ capture-pane -p -t "$session" >&2
  exit 1
}
wait_for '[ -n "$(player_column)" ]' "the player on the screen"
start=$(player_column)
wait_for 'tmux_ send-keys -t "$session" d; [ "$(player_column)" -gt "$start" ]' \
  "the player moving right from column $start"
tmux_ send-keys -t "$session" q
wait_for '[ -s status ]' "the game ending at Q"
[ "$(cat status)" = 0 ] || { echo "$example ended with status $(cat status)" >&2; exit 1; }
modes=$(tmux_ display-message -p -t "$session" '#{alternate_on}#{cursor_flag}#{mouse_any_flag}')
[ "$modes" = "010" ] || { echo "the terminal's modes after $example: $modes" >&2; exit 1; }
