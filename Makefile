# The front door. `make` alone lists the commands.
FUZZ_RUNS ?= 20000
DEMO_ARGS ?=
BENCH_ARGS ?=
PROCESSORS := $(shell nproc)
SOURCES = $(shell git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp' | sort -u)
export CTEST_PARALLEL_LEVEL ?= $(PROCESSORS)

.PHONY: help run demo test asan bench lighthouse fuzz format format-check layers lint check install package clean deps deps-more build

help:
	@echo "make run      open the workbench on a model shop in a fresh folder (without a display: build it and say where)"
	@echo "make demo     serve the model web shop on this machine and open it (DEMO_ARGS=--stay: leave it running)"
	@echo "make test     run all tests"
	@echo "make asan     run all tests under the address and undefined behaviour sanitizers"
	@echo "make bench    run the benchmarks (BENCH_ARGS=--quick: the small shops only)"
	@echo "make lighthouse  measure the pages of the model shop with Lighthouse"
	@echo "make fuzz     run each fuzz target for FUZZ_RUNS inputs (now $(FUZZ_RUNS))"
	@echo "make format   lay out all C++ files"
	@echo "make lint     clang-tidy and the layout check"
	@echo "make check    layout, layers, lint, tests; says how long each took"
	@echo "make install  install the release build (PREFIX=/usr/local, DESTDIR=)"
	@echo "make package  make a Debian package of the program"
	@echo "make clean    remove everything that was built"

deps:
	@tools/install-deps

deps-more:
	@tools/install-deps more

build: deps
	@cmake --preset dev

run: build
	@cmake --build --preset dev --target korvane korvane-cli korvane_data
	@tools/run-model-shop build/dev/bin

demo: build
	@cmake --build --preset dev --target korvane-cli korvane_data
	@tools/run-demo build/dev/bin/korvane-cli $(DEMO_ARGS)

test: build
	@cmake --build --preset dev
	@ctest --preset dev

asan: deps
	@cmake --preset asan
	@cmake --build --preset asan
	@ctest --preset asan

bench: deps-more
	@cmake --preset release
	@cmake --build --preset release
	@tools/run-benchmarks build/release $(BENCH_ARGS)

lighthouse: build
	@tools/install-npm
	@cmake --build --preset dev --target korvane-cli korvane_data
	@node tests/e2e/lighthouse.mjs --cli build/dev/bin/korvane-cli --template chiaro --work build/lighthouse

fuzz: deps-more
	@cmake --preset fuzz
	@cmake --build --preset fuzz --target fuzz_targets
	@tools/run-fuzz-targets build/fuzz $(FUZZ_RUNS)

format: deps-more
	@clang-format -i $(SOURCES)

format-check: deps-more
	@clang-format --dry-run -Werror $(SOURCES)

layers: deps
	@tools/check-layers

# The tidy preset runs clang-tidy beside each compilation, so that only what changed is looked at again.
lint: format-check
	@cmake --preset tidy
	@cmake --build --preset tidy -- -k 0

check:
	@tools/check format-check layers lint test

PREFIX ?= /usr/local
install: deps
	@cmake --preset release -DKORVANE_BENCH=OFF -DCMAKE_INSTALL_PREFIX=$(PREFIX)
	@cmake --build --preset release
	@cmake --install build/release

package: deps-more
	@cmake --preset release -B build/package -DKORVANE_BENCH=OFF -DKORVANE_TESTS=OFF -DCMAKE_INSTALL_PREFIX=/usr
	@cmake --build build/package
	@cd build/package && cpack --config CPackConfig.cmake && ls -1 $(CURDIR)/build/package/*.deb

clean:
	@rm -rf build
