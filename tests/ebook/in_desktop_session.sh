#!/usr/bin/env bash
# Runs a program in a desktop session of its own: a new session bus, address books that start empty,
# and none of the user's files.
set -uo pipefail

home=$(mktemp -d "${TMPDIR:-/tmp}/desktop-session-XXXXXX")
# The servers write once more while they go down with the bus.
trap 'rm -rf "$home" 2>/dev/null || { sleep 0.2; rm -rf "$home"; }' EXIT

unset DBUS_SESSION_BUS_ADDRESS DISPLAY WAYLAND_DISPLAY
export HOME=$home
export XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache
export XDG_RUNTIME_DIR=$home/run
export GSETTINGS_BACKEND=memory
install -d -m 700 "$XDG_RUNTIME_DIR"

dbus-run-session -- "$@" 2> >(grep -v '^dbus-daemon\[' >&2)
