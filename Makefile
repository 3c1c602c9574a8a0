# make demo: install what is missing, build, render the bundled example.
# make test: install what is missing, build, run every test, plainly and under ASan/UBSan, and smoke-run the
# fuzz targets.
BUILD := build
SANITIZE_BUILD := build-sanitize
FUZZ_BUILD := build-fuzz
JOBS := -j2

.PHONY: all setup build build-sanitize build-fuzz demo test fuzz bench bench-pieces clean

all: build

setup:
	scripts/setup

build: setup
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) $(JOBS)

build-sanitize: setup
	cmake -S . -B $(SANITIZE_BUILD) -DCMAKE_BUILD_TYPE=Debug -DKTR_SANITIZE=ON -DKTR_BENCH=OFF
	cmake --build $(SANITIZE_BUILD) $(JOBS)

# The fuzz targets, built with clang for libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer.
build-fuzz: setup
	cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ -DKTR_FUZZ=ON
	cmake --build $(FUZZ_BUILD) $(JOBS)

demo: build
	cd examples && ../$(BUILD)/ktr-render in=demo.esc out=../$(BUILD)/demo.bmp
	@echo
	@echo "The demo bitmap is $(BUILD)/demo.bmp"

test: build build-sanitize build-fuzz
	cd $(BUILD) && ctest --output-on-failure $(JOBS)
	cd $(SANITIZE_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure $(JOBS)
	scripts/fuzz smoke

# Each fuzz target for FUZZ_SECONDS (30 minutes by default), keeping what it finds in build-fuzz/corpus.
FUZZ_SECONDS ?= 1800
fuzz: build-fuzz
	scripts/fuzz run $(FUZZ_SECONDS)

# The whole process, exec to exit, against its floors; then the pieces one by one.
bench: build
	$(BUILD)/bench/ktr_process_bench

bench-pieces: build
	$(BUILD)/bench/ktr_bench

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD) $(FUZZ_BUILD)
