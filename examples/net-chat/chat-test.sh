#!/bin/bash
# Two net-chat instances over loopback: the server's greeting reaches the
# client, the client's lines reach the server, and both end when the client
# leaves. Argument: the net-chat executable (beside its vt-config.txt).
set -euo pipefail
chat=$(realpath "$1")
cd "$(dirname "$chat")"
out=$(mktemp -d)
server=
trap '[ -n "$server" ] && kill "$server" 2>/dev/null; rm -rf "$out"' EXIT

timeout 30 "$chat" server 0 < /dev/null > "$out/server" &
server=$!
for _ in $(seq 100); do
  grep -q "Waiting for a client on port" "$out/server" && break
  sleep 0.1
done
port=$(sed -n 's/^Waiting for a client on port \([0-9]*\)\.$/\1/p' "$out/server")
[ -n "$port" ] || { echo "server did not start"; cat "$out/server"; exit 1; }

printf 'hello there\nsecond line\n' | timeout 30 "$chat" client 127.0.0.1 "$port" > "$out/client"
wait "$server"
server=

cat "$out/server" "$out/client"
grep -qx "peer: hello there" "$out/server"
grep -qx "peer: second line" "$out/server"
grep -qx "peer: Welcome to net-chat. Type a line to send it; end your input to leave." "$out/client"
grep -qx "The chat is over." "$out/server"
