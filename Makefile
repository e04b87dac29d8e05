# Set-up and everyday targets. `make run` and `make test` are the two commands of the README.
JOBS ?= $(shell nproc)
BUILD ?= build
ASAN_BUILD ?= build-asan
export LANG := de_DE.UTF-8
export TZ := Europe/Berlin

.PHONY: deps build run test unit-test asan-test bench fuzz screenshots clean

deps:
	./scripts/install-deps

build: deps
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
	cmake --build $(BUILD) -j $(JOBS)

run: build
	./scripts/start $(BUILD)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)
	$(MAKE) --no-print-directory asan-test

asan-test: deps
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DZIFORA_SANITIZE=ON -DZIFORA_GUI=OFF >/dev/null
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS) -L unit

bench: build
	./bench/run $(BUILD)

# Pictures of the program for the README: a demonstration book in a temporary home, shot
# without a display at 1280×800 into docs/screenshots (the shots: app/gui/screenshots.cpp).
screenshots: build
	@home=$$(mktemp -d) && trap 'rm -rf "$$home"' EXIT && \
	  $(BUILD)/app/cli/zifora-cli demo "$$home" >/dev/null && \
	  env -u XDG_DATA_HOME -u XDG_CONFIG_HOME HOME="$$home" XDG_RUNTIME_DIR="$$home" \
	    QT_QPA_PLATFORM=offscreen $(BUILD)/app/gui/zifora-screenshots docs/screenshots

fuzz:
	./scripts/install-deps --fuzz
	./fuzz/run

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) build-fuzz
