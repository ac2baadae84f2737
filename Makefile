# The front door. `make` alone lists the commands.
FUZZ_RUNS ?= 20000
BENCH_ARGS ?=
PROCESSORS := $(shell nproc)
SOURCES = $(shell git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp' | sort -u)
export CTEST_PARALLEL_LEVEL ?= $(PROCESSORS)

.PHONY: help run test asan bench fuzz format format-check layers lint check install clean deps deps-more build

help:
	@echo "make run      build a model web shop in a fresh folder and say where it is"
	@echo "make test     run all tests"
	@echo "make asan     run all tests under the address and undefined behaviour sanitizers"
	@echo "make bench    run the benchmarks (BENCH_ARGS=--quick: the small shops only)"
	@echo "make fuzz     run each fuzz target for FUZZ_RUNS inputs (now $(FUZZ_RUNS))"
	@echo "make format   lay out all C++ files"
	@echo "make lint     clang-tidy and the layout check"
	@echo "make check    layout, layers, lint, tests; says how long each took"
	@echo "make install  install the release build (PREFIX=/usr/local, DESTDIR=)"
	@echo "make clean    remove everything that was built"

deps:
	@tools/install-deps

deps-more:
	@tools/install-deps more

build: deps
	@cmake --preset dev

run: build
	@cmake --build --preset dev --target korvane-cli korvane_data
	@tools/run-model-shop build/dev/bin/korvane-cli

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

clean:
	@rm -rf build
