#!/usr/bin/env bash
# The same input gives the same bytes with every build of the programs.
#
# Builds tesseramill and tesseramill-report with GCC (the reference, x86-64),
# with clang and libc++, for Linux on 64-bit ARM (run under qemu-user) and,
# when make windows has built them, takes the Windows programs (run under
# Wine);
# runs the bundled examples and the benchmark family at about 1e3, 1e4 and
# 1e5 cells (ARM: up to 1e4, since the emulator is slow) through the mesher
# and then the report with each build, and compares every file they write
# and their screens byte for byte with the reference build's.  The family's
# input files are written once, by the reference build, so that every build
# reads the same bytes.  Files must agree to the byte; screens too, but for
# the CR LF with which Windows ends screen lines.  Prints the first differing
# line of any difference and exits with status 1 when there is one.
#
#   tools/determinism.sh [SIZES]      SIZES: family sizes, default "1e3 1e4 1e5"
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
sizes=${1:-"1e3 1e4 1e5"}
arm_largest=1e4
work=$root/build-determinism

build() {  # folder, then cmake options
  local dir=$1
  shift
  cmake -S . -B "$dir" -DTESSERAMILL_TESTS=OFF "$@" > /dev/null
  cmake --build "$dir" -j 2 --target tesseramill tesseramill-report > /dev/null
}

echo "building: GCC (reference), clang with libc++, GCC for ARM64"
cmake -S . -B build > /dev/null
cmake --build build -j 2 --target tesseramill tesseramill-report tesseramill-bench > /dev/null
CC=clang CXX=clang++ build build-clang-libcxx -DCMAKE_CXX_FLAGS=-stdlib=libc++ \
  -DCMAKE_EXE_LINKER_FLAGS="-stdlib=libc++"
build build-arm64 -DCMAKE_TOOLCHAIN_FILE="$root/cmake/aarch64-linux-gnu.cmake"

rm -rf "$work"
mkdir -p "$work/models"
models=()
for example in catchment full; do
  cp -r "examples/$example" "$work/models/example_$example"
  models+=("example_$example")
done
for size in $sizes; do
  build/tesseramill-bench --write "$size" "$work/models/family_$size" > /dev/null
  models+=("family_$size")
done

# Runs one build on one model in its own folder: the mesher, then the report.
run_model() {  # build name, runner, folder of the programs, model, program suffix
  local name=$1 runner=$2 programs=$3 model=$4 suffix=${5:-}
  local dir=$work/$name/$model
  mkdir -p "$dir"
  cp "$work/models/$model"/* "$dir/"
  local control
  control=$(cd "$dir" && ls *.in)
  (cd "$dir" && $runner "$programs/tesseramill$suffix" "$control" > screen.txt 2>&1 &&
    $runner "$programs/tesseramill-report$suffix" "$control" > report_screen.txt 2>&1)
  if [ -n "$suffix" ]; then
    for screen in screen.txt report_screen.txt; do
      tr -d '\r' < "$dir/$screen" > "$dir/$screen.lf" && mv "$dir/$screen.lf" "$dir/$screen"
    done
  fi
}

windows=""
if [ -x build-windows/tesseramill.exe ] && [ -x build-windows/tesseramill-report.exe ] && command -v wine > /dev/null; then
  windows=$root/build-windows
  export WINEPREFIX=$root/build-windows/wine-prefix WINEDEBUG=-all
  echo "and the Windows programs of build-windows/ under Wine"
else
  echo "no Windows programs in build-windows/ (make windows): the Windows build is left out"
fi

# The first line where two files differ, with both lines.
first_difference() {
  awk -v other="$2" '
    { if ((getline line < other) <= 0) { print "  line " NR ": only in the reference: " $0; found = 1; exit }
      if ($0 != line) { print "  line " NR ":\n    reference: " $0 "\n    this build: " line; found = 1; exit } }
    END { if (!found && (getline line < other) > 0) print "  line " NR + 1 ": only in this build: " line }' "$1"
}

failed=0
compare() {  # build name, model
  local name=$1 model=$2 differing=0
  local ref=$work/gcc/$model dir=$work/$name/$model
  local files
  files=$( (cd "$ref" && ls; cd "$dir" && ls) | sort -u)
  for file in $files; do
    if [ ! -f "$ref/$file" ] || [ ! -f "$dir/$file" ]; then
      echo " $name $model: $file written by only one of the builds"
      differing=$((differing + 1))
    elif ! cmp -s "$ref/$file" "$dir/$file"; then
      echo " $name $model: $file differs"
      first_difference "$ref/$file" "$dir/$file"
      differing=$((differing + 1))
    fi
  done
  local count
  count=$(echo "$files" | wc -w)
  if [ "$differing" -eq 0 ]; then
    echo " $name $model: all $count files the same"
  else
    failed=1
  fi
}

for model in "${models[@]}"; do
  run_model gcc "" "$root/build" "$model"
  run_model clang-libcxx "" "$root/build-clang-libcxx" "$model"
  compare clang-libcxx "$model"
  if [ -n "$windows" ]; then
    run_model windows wine "$windows" "$model" .exe
    compare windows "$model"
  fi
  case $model in
    family_*)
      size=${model#family_}
      if awk -v a="$size" -v b="$arm_largest" 'BEGIN { exit !(a + 0 > b + 0) }'; then continue; fi
      ;;
  esac
  run_model arm64 qemu-aarch64 "$root/build-arm64" "$model"
  compare arm64 "$model"
done

if [ "$failed" -eq 0 ]; then
  echo "determinism: every build wrote the same bytes as the reference"
else
  echo "determinism: some builds wrote other bytes than the reference (see above)"
  exit 1
fi
