# The two commands of the README: `make run` and `make test`.
BUILD ?= build
SANITIZE_BUILD ?= build-sanitize
JOBS ?= $(shell nproc)

.PHONY: run test test-sanitize bench deps build build-sanitize package clean

deps:
	@bash tools/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -z "$$DISPLAY" ]; then \
	  echo "No display is set: run it as 'xvfb-run -a make run' or set DISPLAY to an X server."; \
	fi
	@cd $(BUILD)/game && ./shooter

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

build-sanitize: deps
	@cmake -S . -B $(SANITIZE_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTOR_SANITIZE=ON -DVANTOR_BENCH=OFF > /dev/null
	@cmake --build $(SANITIZE_BUILD) -j $(JOBS)

test-sanitize: build-sanitize
	@cd $(SANITIZE_BUILD) && \
	  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tools/lsan.supp:print_suppressions=0 \
	  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --output-on-failure -j $(JOBS)

# A Debian package of the engine for game makers, left in $(BUILD)/.
package: build
	@cmake --build $(BUILD) --target package

bench: build
	@for b in $(BUILD)/bench/*; do echo "== $$b"; $$b; done

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD)
