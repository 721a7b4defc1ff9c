# The two commands of a fresh machine: `make run` and `make test`.
# Both install what is missing, configure once and build incrementally with Ninja.

BUILD      ?= build
BUILD_ASAN ?= build-asan
BUILD_FUZZ ?= build-fuzz
# Seconds of fuzzing per harness in `make test` (each also runs its committed inputs once).
FUZZ_SECONDS ?= 15
JOBS       ?= 2
CMAKE_FLAGS ?=

.PHONY: all deps build build-asan build-fuzz run test test-plain test-asan test-fuzz format clean

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

$(BUILD_ASAN)/build.ninja:
	cmake -S . -B $(BUILD_ASAN) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKOQDDE_SANITIZE=ON $(CMAKE_FLAGS)

$(BUILD_FUZZ)/build.ninja:
	cmake -S . -B $(BUILD_FUZZ) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_CXX_COMPILER=clang++ -DKOQDDE_FUZZ=ON -DKOQDDE_GUI=OFF -DKOQDDE_TESTS=OFF \
	  -DKOQDDE_BENCH=OFF $(CMAKE_FLAGS)

build: deps $(BUILD)/build.ninja
	ninja -C $(BUILD) -j$(JOBS)

build-asan: deps $(BUILD_ASAN)/build.ninja
	ninja -C $(BUILD_ASAN) -j$(JOBS)

# The main program: the workbench on the bundled pack. Without a display it renders the
# workbench into ~/.cache/koqdde/workbench.png (or $XDG_CACHE_HOME/koqdde/) and says where.
run: build
	./$(BUILD)/apps/koqdde-workbench

test-plain: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan: build-asan
	cd $(BUILD_ASAN) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j$(JOBS)

# The libFuzzer harnesses of tests/fuzz, in a clang build of their own; skipped, and said so,
# where clang++ is missing (install-deps installs it).
build-fuzz: deps
	@if command -v clang++ >/dev/null; then \
	  $(MAKE) --no-print-directory $(BUILD_FUZZ)/build.ninja && \
	  ninja -C $(BUILD_FUZZ) -j$(JOBS) koqdde-fuzzers; \
	fi

test-fuzz: build-fuzz
	@if command -v clang++ >/dev/null; then \
	  tests/fuzz/run.sh $(BUILD_FUZZ) $(FUZZ_SECONDS); \
	else \
	  echo "fuzz: skipped, clang++ is not installed"; \
	fi

test: test-plain test-asan test-fuzz

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(BUILD_ASAN) $(BUILD_FUZZ)
