# The front door: every everyday command of the project, on a bare Debian 12 too.
#   make help    lists them
PREFIX ?= /usr/local
JOBS := $(shell nproc)
# With PRAL_WARNINGS_AS_ERRORS=ON in the environment a warning breaks the build.
STRICT := $(if $(PRAL_WARNINGS_AS_ERRORS),-DPRAL_WARNINGS_AS_ERRORS=$(PRAL_WARNINGS_AS_ERRORS))
# Compiled files are found again in another checkout of the same sources.
export CCACHE_BASEDIR := $(CURDIR)
export CCACHE_NOHASHDIR := 1

.DEFAULT_GOAL := build
.PHONY: accuracy build coverage demo fits levels test test-linux test-windows windows bench sanitize thread lint lint-all format install clean help

build:  ## the library, the companion and the example, for Linux (build/release)
	@scripts/install-deps.sh linux
	cmake --preset release $(STRICT)
	cmake --build --preset release --parallel $(JOBS) --target product

demo: build  ## a small risk model, and distributions fitted to public data, with a verdict
	@scripts/demo.sh build/release && echo "demo: passed" || { echo "demo: FAILED"; exit 1; }

test:  ## all tests on Linux and, under Wine, on Windows
	@scripts/install-deps.sh windows
	@scripts/test.sh release windows

test-linux:  ## the Linux half of them
	@scripts/install-deps.sh linux
	@scripts/test.sh release

test-windows:  ## the Windows half
	@scripts/install-deps.sh windows
	@scripts/test.sh windows

windows:  ## pral_core.dll with its import library, and pral.exe (build/windows)
	@scripts/install-deps.sh windows
	cmake --preset windows
	cmake --build --preset windows --parallel $(JOBS) --target product
	@ls -l build/windows/pral_core.dll build/windows/libpral_core.dll.a build/windows/pral_core.def

bench:  ## benchmarks; BENCH='--benchmark_filter=Normal' picks some
	@scripts/install-deps.sh linux
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target benchmarks
	@for program in build/release/*_benchmarks; do echo "== $$program"; $$program $(BENCH) || exit 1; done

accuracy:  ## measures the accuracy and writes the tables of docs/numerics.md
	@scripts/install-deps.sh linux
	cmake --preset release
	cmake --build --preset release --parallel $(JOBS) --target numerics_tests distributions_tests
	tools/write_accuracy.py build/release

fits: build  ## log-likelihoods of fits beside those of R's packages and SciPy, where these are installed
	@PRAL_LIBRARY=build/release/libpral_core.so /usr/bin/python3 tests/fits/compare.py

coverage: build  ## what the intervals of fits hold, by simulation; ten minutes
	@PRAL_LIBRARY=build/release/libpral_core.so /usr/bin/python3 tests/fits/simulate.py coverage

levels: build  ## at which level the tests of fits reject, by 20,000 samples each; an hour
	@PRAL_LIBRARY=build/release/libpral_core.so /usr/bin/python3 tests/fits/simulate.py levels 20000

sanitize:  ## the Linux tests under the address and undefined-behaviour sanitizers
	@scripts/install-deps.sh linux
	@scripts/test.sh sanitize

thread:  ## distributions that eight threads share, under the thread sanitizer
	@scripts/test.sh thread

lint:  ## formatting and whitespace everywhere, clang-tidy on what differs from upstream
	@scripts/install-deps.sh linux lint
	scripts/lint.sh format
	scripts/lint.sh tidy

lint-all:  ## the same with clang-tidy on every source
	@scripts/install-deps.sh linux lint
	scripts/lint.sh format
	scripts/lint.sh tidy all

format:  ## rewrites the sources in the project's format
	@scripts/install-deps.sh lint
	scripts/lint.sh fix-format

install: build  ## installs into $(DESTDIR)$(PREFIX); into a running system, as root, the loader learns of it
	DESTDIR="$(DESTDIR)" cmake --install build/release --prefix "$(PREFIX)"
	@scripts/tell-loader.sh "$(DESTDIR)" "$(PREFIX)"

clean:  ## removes build/ (not the cached Windows dependencies)
	rm -rf build

help:
	@sed -n 's/^\([a-z-]*\):[^#]*##  *\(.*\)/\1|\2/p' $(MAKEFILE_LIST) | \
	    while IFS='|' read -r name text; do printf 'make %-13s %s\n' "$$name" "$$text"; done
