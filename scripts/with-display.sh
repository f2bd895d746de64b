#!/usr/bin/env bash
# Runs a command on a display of its own: scripts/with-display.sh COMMAND [ARGUMENT…]
#
# Starts a virtual X server, whose screen nobody sees, and stops it when the command has ended,
# whichever way. The result is the command's. With KORVANE_OWN_DISPLAY set the display that DISPLAY
# names is used as it is. 77 means that no virtual display is installed.
set -euo pipefail

export QT_QPA_PLATFORM=xcb
if [ -n "${KORVANE_OWN_DISPLAY:-}" ] && [ -n "${DISPLAY:-}" ]; then
  exec "$@"
fi
unset WAYLAND_DISPLAY
if ! command -v Xvfb >/dev/null || ! command -v xauth >/dev/null; then
  echo "There is no virtual display on this machine (Xvfb, xauth): skipped." >&2
  exit 77
fi

folder=$(mktemp -d)
command=
server=
stop() {
  trap - EXIT
  local process
  for process in $command $server; do
    kill "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null || true
  done
  rm -rf "$folder"
}
export XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$folder}"
trap stop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
trap 'exit 141' PIPE # a reader of the output that was ended as well

# Only who has the cookie may connect. The server finds a free number itself, and writes it when it
# is ready.
export XAUTHORITY="$folder/authority"
cookie=$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
xauth -q -f "$XAUTHORITY" add :0 MIT-MAGIC-COOKIE-1 "$cookie" 2>/dev/null
mkfifo "$folder/number"
Xvfb -displayfd 3 -screen 0 1600x1000x24 -dpi 96 -nolisten tcp -auth "$XAUTHORITY" \
  3>"$folder/number" >"$folder/server.log" 2>&1 &
server=$!
number=
read -r -t 60 number <"$folder/number" || true
if [ -z "$number" ]; then
  echo "The virtual display did not start:" >&2
  cat "$folder/server.log" >&2
  exit 1
fi
export DISPLAY=":$number"
xauth -q -f "$XAUTHORITY" add "$DISPLAY" MIT-MAGIC-COOKIE-1 "$cookie" 2>/dev/null

# In the background, so that a signal is heeded while it runs.
result=0
"$@" <&0 &
command=$!
wait "$command" || result=$?
command=
exit "$result"
