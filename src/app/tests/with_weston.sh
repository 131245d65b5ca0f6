#!/bin/sh
# Runs a command as a native Wayland client of a headless weston of its own; exit 77 (skipped)
# where weston cannot start.
dir=$(mktemp -d) || exit 1
chmod 700 "$dir"
XDG_RUNTIME_DIR=$dir weston --backend=headless-backend.so --socket=wl-test --idle-time=0 >"$dir/weston.log" 2>&1 &
weston=$!
i=0
while [ ! -S "$dir/wl-test" ] && [ $i -lt 100 ]; do sleep 0.1; i=$((i + 1)); done
if [ ! -S "$dir/wl-test" ]; then
    echo "weston could not start:"; tail -5 "$dir/weston.log"
    kill $weston 2>/dev/null; rm -rf "$dir"; exit 77
fi
# In the sanitizer build: Qt's Wayland plugin unloads client libraries whose allocations LeakSanitizer then reports.
XDG_RUNTIME_DIR=$dir WAYLAND_DISPLAY=wl-test QT_QPA_PLATFORM=wayland ASAN_OPTIONS=detect_leaks=0 "$@"
rc=$?
kill $weston; wait $weston 2>/dev/null
rm -rf "$dir"
exit $rc
