#!/usr/bin/env bash
# Checks the Debian package made by `make deb`: lintian accepts it, its desktop entry and
# AppStream metainfo validate, and the program unpacked from it starts offscreen as a user who
# cannot write its folder, makes its catalogue in XDG_DATA_HOME and guards it at a SIGTERM.
set -euo pipefail
build=${1:-build}
deb=$(ls -t "$build"/velmora_*.deb | head -n 1)
echo "Checking $deb"

lintian --fail-on error "$deb"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
dpkg -x "$deb" "$work/root"
desktop-file-validate "$work/root/usr/share/applications/velmora.desktop"
appstreamcli validate --no-net "$work"/root/usr/share/metainfo/*.metainfo.xml

# The program must run from a folder its user cannot write; root can write anything, so the
# check runs as nobody then.
mkdir -p "$work/home"
chmod 700 "$work/home"
chmod 755 "$work"
run_as=()
if [ "$(id -u)" -eq 0 ]; then
    chown -R nobody:nogroup "$work/home"
    run_as=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
fi
env -i PATH=/usr/bin:/bin HOME="$work/home" XDG_DATA_HOME="$work/home/data" \
    XDG_CONFIG_HOME="$work/home/config" XDG_RUNTIME_DIR="$work/home" QT_QPA_PLATFORM=offscreen \
    "${run_as[@]}" "$work/root/usr/bin/velmora" &
program=$!
catalogue="$work/home/data/velmora/data.gdb"
for _ in $(seq 100); do
    [ -f "$catalogue" ] && break
    sleep 0.2
done
[ -f "$catalogue" ] || { kill "$program"; echo "no catalogue made in XDG_DATA_HOME"; exit 1; }
sleep 1
kill -TERM "$program"
wait "$program" || { echo "the program did not end cleanly"; exit 1; }
[ "$(head -c 15 "$catalogue")" = "SQLite format F" ] || { echo "the catalogue was not guarded"; exit 1; }
[ ! -e "$work/root/usr/lib/velmora/data.gdb" ] || { echo "a catalogue appeared in the program folder"; exit 1; }
echo "The package installs, starts and keeps its catalogue in XDG_DATA_HOME."
