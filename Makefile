# Thin wrapper over CMake. `make test`, `make run`, `make bench`, `make deps`.
# SANITIZE=address|thread builds into its own folder and runs the same suite.
SANITIZE ?=
JOBS ?= $(shell nproc)
BUILD_TYPE ?= RelWithDebInfo

ifeq ($(SANITIZE),)
BUILD_DIR ?= build
else
BUILD_DIR ?= build-$(SANITIZE)
endif

CMAKE_FLAGS = -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) -DMB_SANITIZE=$(SANITIZE)

.PHONY: deps configure build test run bench fuzz screenshots translations coverage clean

deps:
	@bash scripts/deps.sh

configure: deps
	@cmake -S . -B $(BUILD_DIR) $(CMAKE_FLAGS) > $(BUILD_DIR).configure.log 2>&1 || (cat $(BUILD_DIR).configure.log; exit 1)

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

test: build
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS) $(CTEST_ARGS)

run: build
	@bash scripts/run-example.sh $(BUILD_DIR)

bench: build
	@bash scripts/run-bench.sh $(BUILD_DIR)

# make fuzz builds the fuzz targets and runs each in turn for FUZZ_RUNS inputs,
# and for at most FUZZ_SECONDS each when that is set; FUZZ_TARGET=apc runs one.
# Each reads its seeds from tests/fuzz/corpus/NAME and keeps what it finds in
# build-fuzz/corpus/NAME; a failing input lands in build-fuzz/artifacts.
# With FUZZ_JOBS above 1 (the core count by default) one run fuzzes in that many
# processes at once, FUZZ_RUNS inputs in all; a crash, leak, timeout or running
# out of memory in any of them ends the run.
# A model window keeps the canvas items of removed objects until it closes, so
# to libFuzzer's check after each input nearly every paste looks like a leak and
# each would cost a full leak scan; for that target leaks are looked for when
# each process ends instead, where the window is gone.
FUZZ_TARGETS = expr apc atb clipboard
FUZZ_TARGET ?= $(FUZZ_TARGETS)
FUZZ_RUNS ?= 10000000
FUZZ_SECONDS ?=
FUZZ_JOBS ?= $(JOBS)
FUZZ_FORK = $(if $(filter-out 0 1,$(FUZZ_JOBS)),-fork=$(FUZZ_JOBS) -ignore_timeouts=0 -ignore_ooms=0)

fuzz:
	@WITH_FUZZ=1 bash scripts/deps.sh
	@cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=Debug -DMB_FUZZ=ON -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ > build-fuzz.configure.log 2>&1 || (cat build-fuzz.configure.log; exit 1)
	@cmake --build build-fuzz -j $(JOBS) --target $(addprefix fuzz_,$(FUZZ_TARGET))
	@set -e; for t in $(FUZZ_TARGET); do \
	  mkdir -p $(CURDIR)/build-fuzz/corpus/$$t $(CURDIR)/build-fuzz/artifacts; \
	  dict=; [ $$t = expr ] || dict=-dict=$(CURDIR)/tests/fuzz/xml.dict; \
	  leaks=; [ $$t != clipboard ] || leaks=-detect_leaks=0; \
	  echo "fuzz_$$t:"; \
	  ./build-fuzz/bin/fuzz_$$t -runs=$(FUZZ_RUNS) $(FUZZ_FORK) $(if $(FUZZ_SECONDS),-max_total_time=$(FUZZ_SECONDS)) $$dict $$leaks \
	    -artifact_prefix=$(CURDIR)/build-fuzz/artifacts/$$t- \
	    $(CURDIR)/build-fuzz/corpus/$$t $(CURDIR)/tests/fuzz/corpus/$$t; \
	done

# make coverage builds build-coverage/ instrumented, runs the whole suite there,
# writes an HTML report to build-coverage/coverage/index.html and prints line and
# branch coverage per folder (scripts/coverage-table.py).
coverage:
	@WITH_COVERAGE=1 bash scripts/deps.sh
	@cmake -S . -B build-coverage -DCMAKE_BUILD_TYPE=Debug -DMB_COVERAGE=ON > build-coverage.configure.log 2>&1 || (cat build-coverage.configure.log; exit 1)
	@cmake --build build-coverage -j $(JOBS)
	@find build-coverage -name '*.gcda' -delete
# Notes of sources since deleted stay behind in the build folder: gcovr would warn of each.
	@find build-coverage -name '*.gcno' | while read -r notes; do \
	  source=$$(echo "$$notes" | sed -E 's#^build-coverage/##; s#CMakeFiles/[^/]+\.dir/##; s#\.gcno$$##'); \
	  [ -f "$$source" ] || [ -f "build-coverage/$$source" ] || rm -f "$$notes"; done
	cd build-coverage && QT_QPA_PLATFORM=offscreen ctest -j $(JOBS) $(CTEST_ARGS) > ctest.log 2>&1 || (tail -30 ctest.log; exit 1)
	@mkdir -p build-coverage/coverage
	@gcovr -r . --object-directory build-coverage -j $(JOBS) --exclude-unreachable-branches --exclude-throw-branches --gcov-ignore-parse-errors \
	  --filter 'src/' --filter 'host/' --filter 'apps/' \
	  --html-details build-coverage/coverage/index.html --json build-coverage/coverage/coverage.json > /dev/null
	@python3 scripts/coverage-table.py build-coverage/coverage/coverage.json

screenshots: build
	@cmake --build $(BUILD_DIR) --target mb_screenshots
	@[ -f $(BUILD_DIR)/dem-large.tif ] || gdal_translate -q -outsize 4000 4000 -r bilinear examples/data/dem.tif $(BUILD_DIR)/dem-large.tif
	xvfb-run -a -s "-screen 0 1280x860x24" ./$(BUILD_DIR)/bin/mb_screenshots docs $(SHOTS)

# Refreshes translations/*.ts from the texts in the code and fills them from the
# glossary; a text it cannot fill is named: add it to the glossary and run again.
translations: deps
	lupdate -no-obsolete -locations none -I host src host/HostCatalogGui apps/modelbuilder -ts translations/ModelBuilder_zh_CN.ts
	python3 scripts/fill-translations.py translations/ModelBuilder_zh_CN.ts translations/zh_CN-glossary.json

clean:
	rm -rf build build-address build-thread build-fuzz build-coverage *.configure.log
