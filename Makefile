# make demo: install what is missing, build, render the bundled example.
# make test: install what is missing, build, run every test, plainly and under ASan/UBSan.
BUILD := build
SANITIZE_BUILD := build-sanitize
JOBS := -j2

.PHONY: all setup build build-sanitize demo test bench bench-pieces clean

all: build

setup:
	scripts/setup

build: setup
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) $(JOBS)

build-sanitize: setup
	cmake -S . -B $(SANITIZE_BUILD) -DCMAKE_BUILD_TYPE=Debug -DKTR_SANITIZE=ON -DKTR_BENCH=OFF
	cmake --build $(SANITIZE_BUILD) $(JOBS)

demo: build
	cd examples && ../$(BUILD)/ktr-render in=demo.esc out=../$(BUILD)/demo.bmp
	@echo
	@echo "The demo bitmap is $(BUILD)/demo.bmp"

test: build build-sanitize
	cd $(BUILD) && ctest --output-on-failure $(JOBS)
	cd $(SANITIZE_BUILD) && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 ctest --output-on-failure $(JOBS)

# The whole process, exec to exit, against its floors; then the pieces one by one.
bench: build
	$(BUILD)/bench/ktr_process_bench

bench-pieces: build
	$(BUILD)/bench/ktr_bench

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD)
