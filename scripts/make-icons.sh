#!/bin/sh
# Paints the program's icons and splash picture into assets/icons. The PNG files are committed;
# run this again after changing scripts/make-icons.cpp.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck disable=SC2046
g++ -std=c++20 -O1 -Wall -Wextra -Werror -fPIC "$root/scripts/make-icons.cpp" -o "$work/make-icons" \
    $(pkg-config --cflags --libs Qt6Gui)
"$work/make-icons" "$root/assets/icons"
