# The front door. `make` alone lists the commands.
FUZZ_RUNS ?= 20000
SOAK_SEEDS ?= 20
SOAK_SHOPS ?= 1000
DEMO_ARGS ?=
SHOTS_ARGS ?=
BENCH_ARGS ?=
PROCESSORS := $(shell nproc)
SOURCES = $(shell git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp' | sort -u)
# One more than processors: tests of servers and browsers wait for most of their time.
export CTEST_PARALLEL_LEVEL ?= $(shell expr $(PROCESSORS) + 1)

.PHONY: help run demo test asan bench lighthouse screenshots fuzz soak format format-check layers lint check install package package-test clean deps deps-more build

help:
	@echo "make run      open the workbench on a model shop in a fresh folder (without a display: build it and say where)"
	@echo "make demo     serve the model web shop on this machine and open it (DEMO_ARGS=--stay: leave it running)"
	@echo "make test     run all tests"
	@echo "make asan     run the tests of the programs under the sanitizers too, as far as they are C++"
	@echo "make bench    run the benchmarks (BENCH_ARGS=--quick: the small shops only)"
	@echo "make lighthouse  measure the pages of the model shop with Lighthouse"
	@echo "make screenshots  a picture of every window and tab, in two sizes and palettes (SHOTS_ARGS=--font 125 ...)"
	@echo "make fuzz     run each fuzz target for FUZZ_RUNS inputs (now $(FUZZ_RUNS))"
	@echo "make soak     the random and the failing tests for longer: SOAK_SEEDS series each (now $(SOAK_SEEDS)) and"
	@echo "               SOAK_SHOPS shops (now $(SOAK_SHOPS)), some hours"
	@echo "make format   lay out all C++ files"
	@echo "make lint     clang-tidy, the layout check, the lists of words and names"
	@echo "make check    layout, layers, lint, tests; says how long each took"
	@echo "make install  install the release build (PREFIX=/usr/local, DESTDIR=)"
	@echo "make package  make a Debian package of the program"
	@echo "make package-test  install that package on a bare system and use it there (as root; fetches from the Debian mirror)"
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

test: deps
	@tools/run-tests

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
	@for template in chiaro classico; do echo "$$template"; node tests/e2e/lighthouse.mjs \
	  --cli build/dev/bin/korvane-cli --template $$template --work build/lighthouse || low=1; done; exit $${low:-0}

screenshots: deps
	@tools/screenshots $(SHOTS_ARGS)

fuzz: deps-more
	@cmake --preset fuzz
	@cmake --build --preset fuzz --target fuzz_targets
	@tools/run-fuzz-targets build/fuzz $(FUZZ_RUNS)

# One series after the other in one program, without the time limit that a test has otherwise.
soak: build
	@cmake --build --preset dev --target test_store test_builder test_commerce test_forms test_shell test_import test_media \
	  test_shops jet_rows
	@tools/install-npm
	@KORVANE_TEST_OPERATIONS=10000 KORVANE_TEST_SEEDS=$(SOAK_SEEDS) build/dev/tests/test_store \
	  --gtest_filter='*TreeProperty*:*FailingCommands*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=50 build/dev/tests/test_store --gtest_filter='KilledHistory*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=500 build/dev/tests/test_store --gtest_brief=1 \
	  --gtest_filter='KilledExchange*:AnAgedShop.However*:PatchingScripts.ASecondRun*'
	@KORVANE_TEST_OPERATIONS=500 build/dev/tests/test_shell --gtest_filter='KilledPictures*' --gtest_brief=1
	@KORVANE_TEST_SEEDS=$(SOAK_SHOPS) build/dev/tests/test_shops --gtest_brief=1
	@KORVANE_TEST_SEEDS=1 KORVANE_TEST_OPERATIONS=10000 build/dev/tests/test_media \
	  --gtest_filter='PictureNames.NamesOfChance*' --gtest_brief=1
	@KORVANE_TEST_SEEDS=200 build/dev/tests/test_builder --gtest_filter='DoctorProperty*' --gtest_brief=1
	@KORVANE_TEST_MOMENTS=100000 build/dev/tests/test_builder --gtest_filter='*FailingBuild*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=500 build/dev/tests/test_commerce --gtest_brief=1 \
	  --gtest_filter='Random*:ReplicatingRandom*:*EqualsAWalk*:TheTrialAndTheCart*:Hostile*'
	@KORVANE_TEST_OPERATIONS=50 build/dev/tests/test_commerce --gtest_filter='Killed*' --gtest_brief=1
	@KORVANE_TEST_SEEDS=200 build/dev/tests/test_import --gtest_filter='TablesOfChance*:ImportsOfChance*' --gtest_brief=1
	@KORVANE_TEST_SEEDS=200 build/dev/tests/test_shell --gtest_filter='SheetOfChance*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=500 build/dev/tests/test_import --gtest_filter='Killed*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=50000 build/dev/tests/test_import --gtest_filter='*AgreeWithMdbExport*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=50000 node tests/e2e/jet_agreement.test.mjs build/dev/tests/e2e/jet_rows
	@KORVANE_TEST_OPERATIONS=10000 KORVANE_TEST_SEEDS=$(SOAK_SEEDS) build/dev/tests/test_forms \
	  --gtest_filter='*TreeEndurance*' --gtest_brief=1
	@KORVANE_TEST_OPERATIONS=500 build/dev/tests/test_forms --gtest_filter='RandomDialogs*' --gtest_brief=1
	@cmake --build --preset dev --target korvane korvane-cli korvane_data
	@tools/check-accessibility build/dev/bin --whole
	@tests/e2e/first_day.py build/dev/bin --all
	@KORVANE_TEST_SEEDS=$(SOAK_SEEDS) node --test-name-pattern='built like' tests/e2e/aged.mjs \
	  --cli build/dev/bin/korvane-cli --template chiaro --work build/dev/aged
	@python3 -B tests/web/price_oracle.py build/dev/bin/korvane-cli
	@KORVANE_TEST_ORDERS=1000 KORVANE_DESK_AT_WORK=build/dev/tests/servers/desk_at_work python3 -B tests/web/backoffice_work_test.py build/dev/bin/korvane-cli \
	  RemoteOrders.test_a_fetch_that_breaks_off_goes_on_and_its_sums_are_the_shops \
	  ProgramOrders.test_states_are_set_on_both_sides_and_no_mail_goes_twice
	@python3 -B tests/web/crowd_soak.py build/dev/bin/korvane-cli
	@python3 -B tests/web/equal_times.py build/dev/bin/korvane-cli
	@KORVANE_TEST_SEEDS=$(SOAK_SEEDS) node --test-reporter=spec tests/e2e/run.mjs --cli build/dev/bin/korvane-cli \
	  --template chiaro --work build/dev/chiaro
	@KORVANE_TEST_ROUNDS=200 KORVANE_TEST_KILLS=50 python3 -B tests/servers/ftp_publish.py build/dev/bin/korvane-cli \
	  Publishing.test_a_random_walk_of_edits_keeps_the_live_shop_equal_to_the_build \
	  Publishing.test_after_a_kill_at_any_moment_the_next_run_brings_everything_right

format: deps-more
	@clang-format -i $(SOURCES)

format-check: deps-more
	@clang-format --dry-run -Werror $(SOURCES)

layers: deps
	@tools/check-layers

# The tidy preset runs clang-tidy beside each compilation, so that only what changed is looked at again.
# The unit tests are compiled file by file as well, which proves that each includes what it uses: `make test` joins them.
lint: format-check
	@tools/check-words
	@tools/check-names
	@cmake --preset tidy
	@cmake --build --preset tidy -- -k 0
	@cmake --preset dev
	@cmake --build --preset dev --target unit_tests

check:
	@tools/check format-check layers lint test

PREFIX ?= /usr/local
install: deps
	@cmake --preset release -DKORVANE_BENCH=OFF -DCMAKE_INSTALL_PREFIX=$(PREFIX)
	@cmake --build --preset release
	@umask 022 && cmake --install build/release

# The date of what is in it is that of the last change of the sources, so that the same sources give the same package.
package: deps-more
	@cmake --preset release -B build/package -DKORVANE_BENCH=OFF -DCMAKE_INSTALL_PREFIX=/usr
	@cmake --build build/package
	@rm -f build/package/*.deb
	@umask 022 && cd build/package && SOURCE_DATE_EPOCH=$$(git log -1 --format=%ct 2>/dev/null || date +%s) \
	  cpack --config CPackConfig.cmake >cpack.log || { cat cpack.log; exit 1; }
	@ls -1 build/package/*.deb

package-test: package
	@lintian --allow-root --fail-on error,warning build/package/*.deb
	@tools/check-package build/package/*.deb build/package-root

clean:
	@rm -rf build
