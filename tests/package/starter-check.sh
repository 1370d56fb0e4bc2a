#!/bin/bash
# Installs the engine from the build folder into a temporary prefix, copies
# the starter game out of the source tree, and configures, builds and runs
# its test against the installed package alone.
# Usage: starter-check.sh BUILD_DIR SOURCE_DIR [cmake arguments...]
set -euo pipefail
build_dir=$1
source_dir=$2
shift 2

work=$(mktemp -d "${TMPDIR:-/tmp}/vantor-package-XXXXXX")
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" > "$work/install.log"
# The package must not point back into the tree it was built in.
if grep -rl "$source_dir" "$work/prefix/lib/cmake"; then
  echo "the installed package refers to the source tree" >&2
  exit 1
fi

cp -r "$source_dir/examples/starter" "$work/starter"
cmake -S "$work/starter" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" "$@" \
  > "$work/configure.log" || { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build" -j 2
for file in starter vt-font.ttf vt-config.txt sprites/player.txt sprites/coin.txt; do
  test -e "$work/build/$file" || { echo "missing beside the game: $file" >&2; exit 1; }
done
cd "$work/build"
ctest --output-on-failure
