# The front door; the work is done by CMake and its presets.

REQUEST  ?= examples/aes-128-cbc-encryption.req
RESPONSE ?= build/response.rsp
JOBS     ?= $(shell nproc)
SOURCES   = $(shell git ls-files '*.cc' '*.h')

.PHONY: run check lint format bench fuzz coverage install package deps clean

run: build/release
	cmake --build --preset release --target runner -j $(JOBS)
	build/release/runner $(REQUEST) $(RESPONSE)
	@echo "--- $(RESPONSE)"
	@cat $(RESPONSE)

# The whole suite, as built for release and under the sanitizers.
check: build/dev build/sanitize
	cmake --build --preset dev -j $(JOBS)
	ctest --preset dev -j $(JOBS)
	cmake --build --preset sanitize -j $(JOBS)
	ctest --preset sanitize -j $(JOBS)

lint: build/dev
	clang-format --dry-run --Werror $(SOURCES)
	run-clang-tidy -quiet -p build/dev -j $(JOBS) '/(src|tests|bench)/' > build/clang-tidy.log 2>&1 \
	  || { cat build/clang-tidy.log; exit 1; }

format:
	clang-format -i $(SOURCES)

bench: build/release
	cmake --build --preset release -j $(JOBS)
	build/release/bench/runner_bench

# One minute of fuzzing for each target; the examples are the seeds of the requests.
fuzz: build/fuzz
	cmake --build --preset fuzz -j $(JOBS)
	mkdir -p build/corpus/text build/corpus/request
	for f in examples/*.req; do \
	  { printf '\000'; head -c 8191 $$f; } > build/corpus/request/$$(basename $$f); done
	build/fuzz/fuzz/text_fuzz -max_total_time=60 build/corpus/text
	build/fuzz/fuzz/request_fuzz -max_total_time=60 -max_len=8192 build/corpus/request

coverage: build/coverage
	cmake --build --preset coverage -j $(JOBS)
	ctest --preset coverage -j $(JOBS)

install: build/release
	cmake --build --preset release --target runner -j $(JOBS)
	cmake --install build/release

package: build/release
	cmake --build --preset release --target runner -j $(JOBS)
	cd build/release && cpack

build/%: | deps
	cmake --preset $*

# Installs the Debian packages that are missing.
deps:
	@scripts/install-deps

clean:
	rm -rf build
