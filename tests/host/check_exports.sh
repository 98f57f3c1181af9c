#!/bin/sh
# Compares what a library exports with the list of what it is to export. A DLL is read with objdump,
# a shared object with nm. Usage: check_exports.sh LIST TOOL LIBRARY
set -eu
list=$1
tool=$2
library=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -e 's/#.*//' -e 's/[[:space:]]*$//' -e '/^$/d' "$list" | LC_ALL=C sort >"$work/expected"
case $library in
*.dll)
  "$tool" -p "$library" >"$work/table"
  # the lines of the name table, which an empty line ends: "[ordinal] name"
  awk '/^\[Ordinal\/Name Pointer\] Table/ { inside = 1; next }
       inside && NF == 0 { exit }
       inside { print $NF }' "$work/table" ;;
*)
  "$tool" -D --defined-only "$library" >"$work/table"
  awk '{ print $NF }' "$work/table" ;;
esac | LC_ALL=C sort >"$work/actual"

missing=$(LC_ALL=C comm -23 "$work/expected" "$work/actual")
extra=$(LC_ALL=C comm -13 "$work/expected" "$work/actual")
[ -z "$missing" ] || { echo "Not exported:"; echo "$missing" | c++filt; }
[ -z "$extra" ] || { echo "Exported, but not in the list:"; echo "$extra" | c++filt; }
echo "$(wc -l <"$work/actual") names exported, $(wc -l <"$work/expected") expected"
[ -z "$missing$extra" ] && [ -s "$work/expected" ]
