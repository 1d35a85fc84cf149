#!/usr/bin/env bash
# Runs the Linux and the Windows mesher (under Wine) on the same inputs, then
# each build's report on its own run, and compares every file they write
# byte for byte, and their screens apart
# from the Windows line ends (CR LF).  The inputs are both examples and the
# benchmark's family models up to 100,000 cells, generated once by the
# Linux benchmark binary so that both meshers read the very same files.
#
#   tools/compare_windows.sh [SIZES]      SIZES defaults to 1e3,1e4,3e4,1e5
#
# Needs build/ (make build) and build-windows/ (make windows).  Prints, for
# every file that differs, its first differing line from each build and the
# number of differing lines; ends with status 1 when anything differs.
set -uo pipefail
cd "$(dirname "$0")/.."

sizes=${1:-1e3,1e4,3e4,1e5}
linux=$PWD/build/tesseramill
linux_report=$PWD/build/tesseramill-report
bench=$PWD/build/tesseramill-bench
windows=$PWD/build-windows/tesseramill.exe
windows_report=$PWD/build-windows/tesseramill-report.exe
for program in "$linux" "$linux_report" "$bench" "$windows" "$windows_report"; do
  [ -x "$program" ] || { echo "missing $program: run make build and make windows first" >&2; exit 2; }
done
export WINEPREFIX=$PWD/build-windows/wine-prefix WINEDEBUG=-all
work=$PWD/build-windows/compare
rm -rf "$work"
mkdir -p "$work"

# model name, folder of inputs, control file
models=("catchment $PWD/examples/catchment catchment.in" "full $PWD/examples/full model.in")
IFS=, read -ra size_list <<< "$sizes"
for size in "${size_list[@]}"; do
  "$bench" --write "$size" "$work/inputs_$size" >/dev/null || exit 2
  models+=("family_$size $work/inputs_$size model.in")
done

differing=0
compared=0
for entry in "${models[@]}"; do
  read -r name inputs control <<< "$entry"
  mkdir -p "$work/$name/linux" "$work/$name/windows"
  cp "$inputs"/* "$work/$name/linux/"
  cp "$inputs"/* "$work/$name/windows/"
  start=$(date +%s.%N)
  (cd "$work/$name/linux" && timeout 600 "$linux" "$control" > ../linux_screen.txt 2>&1 &&
    timeout 600 "$linux_report" "$control" >> ../linux_screen.txt 2>&1)
  middle=$(date +%s.%N)
  (cd "$work/$name/windows" && timeout 1200 wine "$windows" "$control" > ../windows_screen.txt 2>&1 &&
    timeout 1200 wine "$windows_report" "$control" >> ../windows_screen.txt 2>&1)
  end=$(date +%s.%N)
  # The written files: everything but the inputs.
  files=$(cd "$work/$name/linux" && ls | grep -vxF -f <(ls "$inputs"))
  if [ "$(cd "$work/$name/linux" && ls)" != "$(cd "$work/$name/windows" && ls)" ]; then
    echo "$name: the two builds wrote different sets of files"
    diff <(cd "$work/$name/linux" && ls) <(cd "$work/$name/windows" && ls)
    differing=$((differing + 1))
  fi
  same=0
  different=()
  for file in $files; do
    compared=$((compared + 1))
    a=$work/$name/linux/$file
    b=$work/$name/windows/$file
    if cmp -s "$a" "$b"; then
      same=$((same + 1))
      continue
    fi
    different+=("$file")
    differing=$((differing + 1))
    line=$(cmp "$a" "$b" | sed -n 's/.*line \([0-9]*\).*/\1/p')
    lines=$(diff "$a" "$b" | grep -c '^<')
    echo "$name/$file: $lines differing lines, the first is line $line"
    echo "  linux:   $(sed -n "${line}p" "$a")"
    echo "  windows: $(sed -n "${line}p" "$b")"
    # Every differing line, up to 100, as line number, Linux and Windows text.
    diff --unchanged-line-format= --old-line-format='  %dn linux:   %L' --new-line-format='  %dn windows: %L' \
      "$a" "$b" | head -200
  done
  if tr -d '\r' < "$work/$name/windows_screen.txt" | cmp -s - "$work/$name/linux_screen.txt"; then
    screen="same screen apart from CR LF"
  else
    screen="SCREENS DIFFER"
    differing=$((differing + 1))
    diff "$work/$name/linux_screen.txt" <(tr -d '\r' < "$work/$name/windows_screen.txt") | head -6
  fi
  printf '%-16s %3d written files, %3d identical; %s; linux %.1f s, windows under wine %.1f s\n' "$name" \
    "$(echo "$files" | wc -w)" "$same" "$screen" "$(awk "BEGIN{print $middle - $start}")" "$(awk "BEGIN{print $end - $middle}")"
done
echo "$compared files compared, $differing differences"
[ "$differing" -eq 0 ]
