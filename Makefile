# The front door; the work is done by CMake and its presets (CMakePresets.json). Every target first
# installs the Debian packages that it needs and that are missing.

REQUEST  ?= examples/aes-128-cbc-encryption.req
RESPONSE ?= build/response.rsp
JOBS     ?= $(shell nproc)
SOURCES   = $(shell git ls-files '*.cc' '*.h')

.PHONY: run check lint format bench fuzz coverage install package clean

# Runs the program on a request and shows the response.
run: build/program
	build/program/runner $(REQUEST) $(RESPONSE)
	@echo "--- $(RESPONSE)"
	@cat $(RESPONSE)

# The whole suite, built for release and again under the sanitizers.
check: deps-build deps-test
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)
	ctest --preset dev -j $(JOBS)
	cmake --preset sanitize
	cmake --build --preset sanitize -j $(JOBS)
	ctest --preset sanitize -j $(JOBS)

lint: deps-build deps-test deps-lint
	cmake --preset dev
	clang-format --dry-run --Werror $(SOURCES)
	run-clang-tidy -quiet -p build/dev -j $(JOBS) -extra-arg=-Wno-ignored-optimization-argument \
	  '/(src|tests|bench)/' > build/clang-tidy.log 2>&1 \
	  || { cat build/clang-tidy.log; exit 1; }

format: deps-lint
	clang-format -i $(SOURCES)

bench: deps-build deps-test
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	build/release/bench/runner_bench

# One minute of fuzzing for each target; the examples are the seeds of the requests.
fuzz: deps-build deps-fuzz
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	mkdir -p build/corpus/text build/corpus/request
	for f in examples/*.req; do \
	  { printf '\000'; head -c 8191 $$f; } > build/corpus/request/$$(basename $$f); done
	build/fuzz/fuzz/text_fuzz -max_total_time=60 build/corpus/text
	build/fuzz/fuzz/request_fuzz -max_total_time=60 -max_len=8192 build/corpus/request

coverage: deps-build deps-test
	cmake --preset coverage
	cmake --build --preset coverage -j $(JOBS)
	ctest --preset coverage -j $(JOBS)
	cd build/coverage && find . -name '*.gcda' -path '*runner_core*' -exec gcov -n {} + \
	  | grep -A1 "File '.*/src/" | grep -v '^--'

install: build/program
	cmake --install build/program

package: build/program deps-package
	cd build/program && cpack

# The program alone, without tests and benchmarks.
.PHONY: build/program
build/program: deps-build
	cmake --preset program
	cmake --build --preset program -j $(JOBS)

deps-%:
	@scripts/install-deps $*

clean:
	rm -rf build
