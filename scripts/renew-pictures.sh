#!/bin/sh
# Makes the pictures in docs/pictures from those that the tests compare every screen with: half as large, 32 colours.
# Which ones there are stands in the documents that show them.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_packages imagemagick

rm -f docs/pictures/*.png
for name in $(sed -n 's|.*pictures/\([a-z-]*\)\.png.*|\1|p' README.md docs/*.md | sort -u); do
    case $name in
        by-day) picture=day-russian/main-idle ;;
        *) picture=night-english/$name ;;
    esac
    convert "tests/ui/pictures/$picture.png" -resize 400x240 -strip -dither None -colors 32 "PNG8:docs/pictures/$name.png"
done
