#!/bin/sh
# Runs a command on a private session bus with a real GNOME Keyring, unlocked from a known
# password, in a home of its own: the user's keyring is never touched.
set -eu
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -m 700 "$home/run"
HOME=$home XDG_DATA_HOME=$home/data XDG_RUNTIME_DIR=$home/run XDG_CURRENT_DESKTOP=GNOME \
    dbus-run-session -- sh -c 'echo test-keyring | gnome-keyring-daemon --unlock --components=secrets >/dev/null && "$@"' sh "$@"
