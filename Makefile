# The front door for developers; ./run and ./check are that of everybody else. The work is done by
# CMake and its presets (CMakePresets.json). Every target first installs the Debian packages that it
# needs and that are missing. Paths reach the recipes through the environment, so that blanks in
# them do no harm.

export REQUEST  ?= examples/aes-128-cbc-encryption.req
export RESPONSE ?= build/response.rsp
export DESTDIR  ?=
export PREFIX   ?= /usr/local
JOBS            ?= $(shell nproc)
FUZZ_SECONDS    ?= 60

FOLDERS  = src tests bench fuzz
SOURCES  = find $(FOLDERS) '(' -name '*.cc' -o -name '*.h' ')' -print0
PROGRAMS = build/program/runner build/program/runner-check
SHELLS   = run check .ci/run $$(grep -lE '^\#!.*sh$$' scripts/*)

.PHONY: run check clang lint lint-package format bench fuzz coverage install package clean

# Runs the program on a request and shows the response.
run:
	@./run "$$REQUEST" "$$RESPONSE"

# The whole suite, built for release and again under the sanitizers.
check: deps-build deps-test
	cmake --preset dev
	cmake --build --preset dev -j $(JOBS)
	cmake --preset sanitize
	cmake --build --preset sanitize -j $(JOBS)
	ctest --preset dev -j $(JOBS)
	ctest --preset sanitize -j $(JOBS)

# The release build and its tests with the other compiler.
clang: deps-build deps-test deps-clang
	cmake --preset clang
	cmake --build --preset clang -j $(JOBS)
	ctest --preset clang -j $(JOBS)

lint: deps-build deps-test deps-lint deps-fuzz build/program
	scripts/check-rooms
	scripts/check-failure-numbers
	scripts/formats-to-man --check
	scripts/check-hardening $(PROGRAMS)
	shellcheck $(SHELLS)
	mandoc -T lint -W warning docs/*.[15]
	$(SOURCES) | xargs -0 clang-format --dry-run --Werror
	cmake --preset dev > /dev/null
	scripts/tidy build/dev $(JOBS) src tests bench
	cmake --preset fuzz > /dev/null
	scripts/tidy build/fuzz $(JOBS) fuzz

format: deps-lint
	$(SOURCES) | xargs -0 clang-format -i

bench: deps-build deps-test
	cmake --preset release
	cmake --build --preset release -j $(JOBS)
	build/release/bench/runner_bench

fuzz: deps-build deps-fuzz
	scripts/fuzz $(FUZZ_SECONDS)

# A table of the lines of src/ that the tests reach, the least covered files last. The programs that
# the tests start count too.
coverage: deps-build deps-test deps-coverage
	cmake --preset coverage
	cmake --build --preset coverage -j $(JOBS)
	find build/coverage -name '*.gcda' -delete
	ctest --preset coverage -j $(JOBS)
	gcovr --root . --filter src/ --sort-percentage -j $(JOBS) build/coverage

install: build/program
	cmake --install build/program --prefix "$$PREFIX"

package: build/program deps-package
	rm -rf build/package
	cpack --config build/program/CPackConfig.cmake -B build/package

lint-package: package deps-lint-package
	lintian --allow-root --fail-on error,warning --tag-display-limit 0 build/package/*.deb

# The programs alone, without tests and benchmarks.
.PHONY: build/program
build/program: deps-build
	cmake --preset program
	cmake --build --preset program -j $(JOBS)

deps-%:
	@scripts/install-deps $*

clean:
	rm -rf build
