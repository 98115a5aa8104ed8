#!/bin/sh
# Prints which folder under src includes headers of which folders, and fails when a folder
# reaches itself again through them, directly or through others: every arrow points down. Each
# room of src/toolkit counts as a folder of its own.
set -eu
cd "$(dirname "$0")/../src"
edges=$(grep -rE '^#include "[a-z]+/' --include='*.h' --include='*.cpp' . |
    sed -E 's#^\./(toolkit/[^/]+|[^/]+)/[^:]*:\#include "(toolkit/[^/]+|[^/]+)/.*#\1 \2#' |
    awk '$1 != $2' | sort -u)
echo "$edges" | awk '{ to[$1] = to[$1] " " $2 } END { for (f in to) print f " ->" to[f] }' | sort
loop=$(echo "$edges" | tsort 2>&1 >/dev/null || true)
if [ -n "$loop" ]; then
    echo "$loop" >&2
    exit 1
fi
