#!/usr/bin/env bash
# The whole road in the real window: a person at mouse and keyboard sets a password, chooses a user, ticks boxes, presses
# Apply; then another reader looks into the hive. Pictures of the way go into the folder given, if one is.
#
# usage: road_in_the_window.sh FOLDER-OF-THE-EXECUTABLES [FOLDER-FOR-PICTURES]
set -euo pipefail
executables=$1
pictures=${2:-}
walk='road in the window'
. "$(dirname "$0")/screen.sh"
work=$(mktemp -d)
started=()
trap 'kill "${started[@]}" 2>/dev/null || true; rm -rf "$work"' EXIT

export DISPLAY=:$((90 + RANDOM % 900))
Xvfb "$DISPLAY" -screen 0 800x600x24 -nolisten tcp >/dev/null 2>&1 &
started+=($!)
for _ in $(seq 100); do xdotool getdisplaygeometry >/dev/null 2>&1 && break; sleep 0.1; done
openbox --startup "touch '$work/managed'" >/dev/null 2>&1 &
started+=($!)
# A window that asks to be shown while its manager is only just starting may never be.
for _ in $(seq 100); do [ -e "$work/managed" ] && break; sleep 0.1; done

"$executables/britlock" --make-sample "$work/xp"
"$executables/britlock" --machine "$work/xp" --drive D="$work" --state "$work/state" 2>"$work/errors" &
program=$!
started+=("$program")

set_password 'Set a Password !' 'Set New Password' 'Password...'
menu=20            # the menu bar stands above what is measured here
click 215 $((menu + 361))   # the list of users, by mouse, then by keys
keys Escape
xdotool mousemove --window "$(xdotool getactivewindow)" 215 $((menu + 361))
keys Down          # by key: the next user is read
sleep 0.5
click 150 $((menu + 76))    # Disable ShutDown, by mouse
keys Tab space              # Disable LogOff, by keys
keys alt+5                  # page 5 by its access key
sleep 0.3
picture drives
keys alt+1
keys alt+a                  # Apply
sleep 1.5
picture applied

# Which user the key press chose is seen by whose hive has changed.
value_of() { hivexget "$work/xp/Documents and Settings/$1/NTUSER.DAT" "$explorer" "$2" 2>/dev/null || true; }
explorer='Software\Microsoft\Windows\CurrentVersion\Policies\Explorer'
found=
for user in Administrator Anna Ben; do
    [ "$(value_of "$user" NoClose)" != 1 ] || found=$user
done
[ -n "$found" ] || fail "no user's hive holds the tick"
[ "$(value_of "$found" NoLogOff)" = 1 ] || fail "the box ticked by key is not in the hive"
[ "$(value_of "$found" NoRun)" = 0 ] || fail "a box that nobody ticked is not at 0"

[ ! -s "$work/errors" ] || fail "on standard error: $(cat "$work/errors")"
keys alt+c                  # Cancel ends the process
for _ in $(seq 50); do kill -0 "$program" 2>/dev/null || break; sleep 0.1; done
kill -0 "$program" 2>/dev/null && fail "Cancel did not end the process"
echo "the $walk: $found has the ticks"
