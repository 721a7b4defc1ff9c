# The two commands of a fresh machine: `make run` and `make test`.
# Both install what is missing, configure once and build incrementally with Ninja.

BUILD      ?= build
BUILD_ASAN ?= build-asan
JOBS       ?= 2
CMAKE_FLAGS ?=

.PHONY: all deps build build-asan run test test-plain test-asan format clean

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

$(BUILD_ASAN)/build.ninja:
	cmake -S . -B $(BUILD_ASAN) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKOQDDE_SANITIZE=ON $(CMAKE_FLAGS)

build: deps $(BUILD)/build.ninja
	ninja -C $(BUILD) -j$(JOBS)

build-asan: deps $(BUILD_ASAN)/build.ninja
	ninja -C $(BUILD_ASAN) -j$(JOBS)

# Until the workbench exists, the main program is the command-line tool on the bundled pack.
run: build
	./$(BUILD)/apps/koqdde tree

test-plain: build
	cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

test-asan: build-asan
	cd $(BUILD_ASAN) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure -j$(JOBS)

test: test-plain test-asan

format:
	git ls-files '*.h' '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(BUILD_ASAN)
