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

fuzz: build/fuzz
	cmake --build --preset fuzz -j $(JOBS)

coverage: build/coverage
	cmake --build --preset coverage -j $(JOBS)
	ctest --preset coverage -j $(JOBS)

install: build/release
	cmake --build --preset release --target runner -j $(JOBS)
	cmake --install build/release

package: build/release
	cmake --build --preset release --target runner -j $(JOBS)
	cd build/release && cpack -G DEB

build/%: | deps
	cmake --preset $*

# Installs the Debian packages that are missing.
deps:
	@scripts/install-deps

clean:
	rm -rf build
