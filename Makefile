# Thin wrapper round CMake so that each set-up step is one command.
BUILD := build
WINDOWS_BUILD := build-windows
FUZZ_SECONDS ?= 60
VERSION := $(shell sed -n 's/.*version_text = "\(.*\)";.*/\1/p' src/common/run_state.cpp)
WINDOWS_PACKAGE := tesseramill-$(VERSION)-windows-x64

.PHONY: build demo gis-demo test bench bench-targets bench-triangulation bench-gis maths-check reference-check sanitize sanitize-gis fuzz mf6-check determinism windows windows-test windows-compare clean

build:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2

# Builds both programs, runs the bundled catchment model in a scratch folder
# and then the report on the grid it wrote.
demo:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill tesseramill-report
	rm -rf $(BUILD)/demo
	mkdir -p $(BUILD)/demo
	cp examples/catchment/* $(BUILD)/demo/
	cd $(BUILD)/demo && ../tesseramill catchment.in && ../tesseramill-report catchment.in

# Imports the GIS layers of examples/gis into build/gis-demo, runs the mesher
# there and exports the grid as model.gpkg (needs GDAL: libgdal-dev).
gis-demo:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill tesseramill-gis
	rm -rf $(BUILD)/gis-demo
	$(BUILD)/tesseramill-gis import $(BUILD)/gis-demo --boundary examples/gis/catchment.geojson \
	  --lines examples/gis/rivers.geojson --points examples/gis/wells.geojson \
	  --zones examples/gis/zones.geojson --max-spacing 400
	cd $(BUILD)/gis-demo && ../tesseramill model.in && ../tesseramill-gis export model.in

# Builds everything and runs every test.
test: build
	cd $(BUILD) && ctest --output-on-failure -j 2

# Times the program on the benchmark's family of models, from 1,000 to a
# million cells, and prints the table of phases, memory and the reference
# path's time.  Takes about an hour on two cores, most of it the reference
# run of the 30,000-cell model; BENCH_ARGS="--sizes 1e5,1e6,outline" keeps to
# the fast path.
bench:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill-bench
	$(BUILD)/tesseramill-bench $(BENCH_ARGS)

# The speed targets: the GIS-like divides' interior cost per cell against
# the family's, the million cells with 3 and 30 Lloyd passes, their system
# time, and the 3 passes again in the folder of their first run; each model
# in turn, medians of 3 rounds (about 6 minutes).
# TARGETS_ARGS="--binary OTHER/tesseramill" also times another build on each
# model and compares its files; "--with-1e7" adds ten million cells (about
# 4 minutes a round and 30 GB of scratch files, twice that with --binary);
# "--rounds N" sets the rounds.
bench-targets:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill-bench
	$(BUILD)/tesseramill-bench --targets $(TARGETS_ARGS)

# Times DTRIS2, fast and reference, on the mesh points of the family's
# million-cell model after its third Lloyd pass, and CGAL's Delaunay
# triangulation of the same points when CGAL is installed (libcgal-dev).  The
# points are made once (about half a minute) and kept in
# $(BUILD)/triangulation-points-1e6.bin for the next call.
bench-triangulation:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill-bench
	-cmake --build $(BUILD) -j 2 --target tesseramill-cgal-bench
	$(BUILD)/tesseramill-bench --triangulation 1e6 --points $(BUILD)/triangulation-points-1e6.bin

# Times tesseramill-gis: the import of GeoJSON layers of 100,000 vertices,
# and the export of the family's model of about a million cells (the mesher
# makes it first, with one Lloyd pass: about a minute).  Needs GDAL.
bench-gis:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill-gis-bench
	$(BUILD)/tesseramill-gis-bench $(BENCH_GIS_ARGS)

# Runs the real MODFLOW 6 on what the project writes: both examples, the
# benchmark family at about 1e3, 1e4 and 1e5 cells, a family model of about
# 600,000 cells (its grid fixed with tesseramill-report --fix-grid first) and
# a dozen seeded random models; fails unless every one terminates normally,
# closes its budget with tight solver settings and gives a binary grid that
# agrees with the grid file.  MF6 names the solver; MF6_CHECK_ARGS=--small
# leaves out the large model.
MF6 ?= $(if $(wildcard ../shared/tools/mf6/mf6),../shared/tools/mf6/mf6,mf6)
mf6-check:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill tesseramill-report tesseramill-mf6-check
	$(BUILD)/tesseramill-mf6-check --mf6 "$(MF6)" --programs $(BUILD) --source . --work $(BUILD)/mf6-check $(MF6_CHECK_ARGS)

# Builds the programs with GCC, with clang and libc++, and for Linux on
# 64-bit ARM (run under qemu-user), runs the examples and the benchmark
# family with each and compares every written file and screen byte for
# byte with the GCC build's.  Needs the Debian packages clang, libc++-dev,
# libc++abi-dev, g++-aarch64-linux-gnu and qemu-user.
determinism:
	tools/determinism.sh $(DETERMINISM_SIZES)
# The long run of the correctly rounded maths against MPFR: 10^7 random
# arguments per function and range, the hard cases and the slow paths on
# 10^5 arguments each; prints how often the system's maths library
# misrounds the same arguments.  About 7 minutes on one core (up to 30 on
# a busy shared machine).
maths-check:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill_maths_check
	$(BUILD)/tests/tesseramill_maths_check

# Re-derives the recorded digests of the family's 30,000-cell model from the
# reference routines themselves and compares them with the file
# tests/golden/large/reference.sha256, which the fast run is checked against
# in make test.  About an hour on the shared machine.
reference-check:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill_tests
	$(BUILD)/tests/tesseramill_tests --gtest_also_run_disabled_tests \
	  --gtest_filter=ReferencePaths.DISABLED_ReferencePathsRecorded

# Every test again, built with clang and its standard library libc++ (so that
# the whole suite runs once with a second compiler and library) under the
# address and undefined-behaviour sanitizers; a report from any of them fails
# its test.  GoogleTest is built from its sources for libc++, and the GIS
# program, whose GDAL is built for libstdc++, is left out here.
sanitize:
	CC=clang CXX=clang++ cmake -S . -B build-san -DTESSERAMILL_SANITIZE=ON -DTESSERAMILL_GOOGLETEST_FROM_SOURCE=ON \
	  -DCMAKE_CXX_FLAGS=-stdlib=libc++ -DCMAKE_EXE_LINKER_FLAGS=-stdlib=libc++ -DCMAKE_DISABLE_FIND_PACKAGE_GDAL=ON
	cmake --build build-san -j 2
	cd build-san && ASAN_OPTIONS=allocator_may_return_null=1 ctest --output-on-failure -j 2

# The GIS program under the same sanitizers.  GDAL is built for GCC's
# standard library, so this build is GCC's; only the GIS suite runs here
# (the rest ran above).  Leaks are looked for in this project's code only:
# GDAL keeps its drivers and caches to the end of the process on purpose.
sanitize-gis:
	cmake -S . -B build-san-gis -DTESSERAMILL_SANITIZE=ON
	cmake --build build-san-gis -j 2 --target tesseramill_gis_tests
	cd build-san-gis && ASAN_OPTIONS=allocator_may_return_null=1 LSAN_OPTIONS=suppressions=$(CURDIR)/tests/gis/gdal_leaks.supp \
	  ctest --output-on-failure -j 2 -L gis

# Fuzzes the control-file reader, the BLN and point readers and the report
# on a grid file for FUZZ_SECONDS each, starting from the seed corpus in
# tests/fuzz/corpus (grid files may be twice as long as the others, so that
# the seed of a whole small grid fits).  New inputs it finds are kept in
# build-fuzz/corpus; a crash, a leak or a sanitizer report stops it with the
# input that caused it.
fuzz:
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DTESSERAMILL_FUZZ=ON -DTESSERAMILL_TESTS=OFF
	cmake --build build-fuzz -j 2
	for target in control_file bln_files grid_file; do \
	  if [ $$target = grid_file ]; then max_len=8192; else max_len=4096; fi; \
	  mkdir -p build-fuzz/corpus/$$target && \
	  build-fuzz/$${target}_fuzz -max_total_time=$(FUZZ_SECONDS) -max_len=$$max_len -print_final_stats=1 \
	    -artifact_prefix=$(CURDIR)/build-fuzz/ \
	    $(CURDIR)/build-fuzz/corpus/$$target $(CURDIR)/tests/fuzz/corpus/$$target || exit 1; \
	done

# Cross-compiles tesseramill.exe and tesseramill-report.exe for 64-bit
# Windows with MinGW-w64 (statically linked: no DLLs to carry) and packs
# them with both examples and the plain-text README for Windows users into
# $(WINDOWS_BUILD)/$(WINDOWS_PACKAGE).zip.  The README gets CR LF line ends
# so that every Windows editor shows its lines.
windows:
	cmake -S . -B $(WINDOWS_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake
	cmake --build $(WINDOWS_BUILD) -j 2 --target tesseramill tesseramill-report
	rm -rf $(WINDOWS_BUILD)/package $(WINDOWS_BUILD)/$(WINDOWS_PACKAGE).zip
	mkdir -p $(WINDOWS_BUILD)/package/$(WINDOWS_PACKAGE)/examples
	cp $(WINDOWS_BUILD)/tesseramill.exe $(WINDOWS_BUILD)/tesseramill-report.exe $(WINDOWS_BUILD)/package/$(WINDOWS_PACKAGE)/
	cp -r examples/catchment examples/full $(WINDOWS_BUILD)/package/$(WINDOWS_PACKAGE)/examples/
	sed 's/@VERSION@/$(VERSION)/g; s/$$/\r/' docs/README-windows.txt > $(WINDOWS_BUILD)/package/$(WINDOWS_PACKAGE)/README-windows.txt
	cd $(WINDOWS_BUILD)/package && zip -q -r -X ../$(WINDOWS_PACKAGE).zip $(WINDOWS_PACKAGE)
	@echo "$(WINDOWS_BUILD)/$(WINDOWS_PACKAGE).zip"

# Cross-compiles every program and the test suite for Windows and runs
# every test under Wine, in a Wine prefix of its own inside the build folder.
# Each half of the suite prints its failures and its count of tests; when a
# half fails, the failures are printed again at the end, where a log cut to
# its last lines still shows which test failed and why.
windows-test:
	cmake -S . -B $(WINDOWS_BUILD) -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake
	cmake --build $(WINDOWS_BUILD) -j 2
	cd $(WINDOWS_BUILD) && ctest --verbose -j 2 || { \
	  echo "The failures of the Windows tests under Wine:"; \
	  grep -h -A 12 -E ': Failure$$|Exception thrown|[0-9]+ FAILED TEST' Testing/Temporary/LastTest.log | head -n 120; \
	  grep -h -E '\[  FAILED  \]' Testing/Temporary/LastTest.log | head -n 20; \
	  exit 1; }

# Runs the Linux and the Windows mesher on both examples and the benchmark
# family up to 100,000 cells and compares every written file byte for byte.
windows-compare: build windows
	cmake --build $(BUILD) -j 2 --target tesseramill-bench
	tools/compare_windows.sh $(COMPARE_SIZES)

clean:
	rm -rf $(BUILD) build-san build-fuzz build-clang-libcxx build-arm64 build-determinism $(WINDOWS_BUILD)
