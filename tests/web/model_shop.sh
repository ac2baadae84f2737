#!/bin/sh
# Builds the model shop as a new user would: a fresh user data folder, `new`, `build`.
#   model_shop.sh KORVANE_CLI FOLDER
# FOLDER is made empty; the shop is FOLDER/negozio. Fails when the program does, or when a produced page still
# holds a tag that the build should have replaced.
set -eu
program=$1
folder=$2
rm -rf "$folder"
mkdir -p "$folder"
export XDG_DATA_HOME="$folder/data" XDG_CONFIG_HOME="$folder/config"
"$program" new "$folder/negozio"
"$program" build "$folder/negozio"
"$program" check "$folder/negozio"

# Kind 2 tags stay outside the article section and kind 3 ones outside the results page; the others never do.
if grep -rlaE '<<[145]-[^>]*>>' "$folder/negozio/online" "$folder/negozio/scripts" --include='*.php' --include='*.htm' \
  --include='*.js'; then
  echo "the files above hold tags that were not replaced" >&2
  exit 1
fi
# Every file of the list is there, but for the SQL files that a publish makes.
tr -d '\r' <"$folder/negozio/kvftp.dat" | sed -n 's/^#\(..*\)/\1/p' | grep -v '/db\(del\)\{0,1\}\(_l[234]\)\{0,1\}\.sql$' |
  while read -r path; do
    [ -f "$path" ] || { echo "listed but not there: $path" >&2; exit 1; }
  done
