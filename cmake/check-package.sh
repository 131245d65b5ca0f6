#!/bin/sh
# Every program a packaged desktop entry, D-Bus service or systemd unit starts by its full path
# must be in the package: a path baked in for another prefix starts nothing once installed.
set -eu
deb=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
dpkg-deb -x "$deb" "$dir"
status=0
for file in $(find "$dir" -name '*.desktop' -o -name '*.service'); do
    for path in $(sed -n 's/^\(Exec\|ExecStart\|TryExec\)=\(\/[^ ]*\).*/\2/p' "$file"); do
        if [ ! -x "$dir$path" ] && [ "$path" != /bin/false ]; then
            echo "check-package: ${file#$dir} starts $path, which the package does not hold" >&2
            status=1
        fi
    done
done
[ $status = 0 ] && echo "check-package: every program the package's entries start is in it"
exit $status
