# Melkora Browser: the commands a developer types. CMake does the building.
#
#   make            build into build/ (programs in build/bin/)
#   make test       install what is missing, build, run the whole suite,
#                   then build and run it again under ASan and UBSan, and the
#                   threaded tests under ThreadSanitizer
#   make fuzz       build the libFuzzer targets and run each for FUZZ_SECONDS
#   make run        install what is missing, build, and start the desktop program
#                   on a demo collection made once in build/demo/
#   make install    build, then install under PREFIX (/usr/local), below DESTDIR
#   make uninstall  remove what make install put there
#   make deb        build the Debian package melkora_VERSION_ARCH.deb in build/

BUILD      ?= build
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc)
FUZZ_SECONDS ?= 300
PREFIX     ?= /usr/local
DESTDIR    ?=
GENERATOR  := $(shell command -v ninja >/dev/null 2>&1 && echo "-G Ninja")

.PHONY: all build deps test test-fast test-asan test-tsan fuzz fuzz-build run format clean \
        install uninstall deb

all: build

deps:
	@./scripts/install-deps.sh

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

test: deps
	$(MAKE) build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)
	$(MAKE) test-asan
	$(MAKE) test-tsan

test-fast: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

$(ASAN_BUILD)/CMakeCache.txt:
	cmake -S . -B $(ASAN_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=Debug -DMELKORA_SANITIZE=ON

test-asan: $(ASAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	    LSAN_OPTIONS=suppressions=$(CURDIR)/tests/support/lsan.supp:print_suppressions=0 ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS)

# Only the threaded tests are built with ThreadSanitizer: the queues,
# SThread and workers posting to windows.
$(TSAN_BUILD)/CMakeCache.txt:
	cmake -S . -B $(TSAN_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMELKORA_TSAN=ON \
	    -DMELKORA_BENCH=OFF

test-tsan: $(TSAN_BUILD)/CMakeCache.txt
	cmake --build $(TSAN_BUILD) -j $(JOBS) --target thread_tests
	TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1:suppressions=$(CURDIR)/tests/support/tsan.supp \
	    $(TSAN_BUILD)/bin/thread_tests

$(FUZZ_BUILD)/CMakeCache.txt:
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) $(GENERATOR) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DMELKORA_FUZZ=ON -DMELKORA_TESTS=OFF

fuzz-build: deps $(FUZZ_BUILD)/CMakeCache.txt
	cmake --build $(FUZZ_BUILD) -j $(JOBS)

# Runs every fuzz target in turn; FUZZ_TARGETS narrows the list.
fuzz: fuzz-build
	@./scripts/run-fuzzers.sh $(FUZZ_BUILD)/bin $(FUZZ_SECONDS) $(FUZZ_TARGETS)

# The demo collection is made once, into a folder of its own that is put in
# place only when the job has finished, so a run cut short makes it again.
# The program keeps its settings beside it, never in the user's own.
DEMO_DIR := $(abspath $(BUILD)/demo)

run: deps
	$(MAKE) build
	@if [ ! -d "$(DEMO_DIR)/collection" ]; then \
	    rm -rf "$(DEMO_DIR)/collection.new" && mkdir -p "$(DEMO_DIR)" && \
	    "$(BUILD)/bin/melkora-cli" demo "$(DEMO_DIR)/collection.new" && \
	    mv "$(DEMO_DIR)/collection.new" "$(DEMO_DIR)/collection"; \
	fi
	mkdir -p "$(DEMO_DIR)/settings"
	MELKORA_CONFIG_HOME="$(DEMO_DIR)/settings" "$(BUILD)/bin/melkora" --root "$(DEMO_DIR)/collection"

install: build
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD) --prefix "$(PREFIX)"

uninstall:
	DESTDIR="$(DESTDIR)" cmake -DMANIFEST=$(CURDIR)/$(BUILD)/install_manifest.txt \
	    -P $(CURDIR)/cmake/Uninstall.cmake

# The package holds the programs of the build, stripped.
deb: build
	@./scripts/make-deb.sh $(BUILD)

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) $(FUZZ_BUILD)
