# The two commands of the README: `make run` and `make test`.
SHELL := /bin/bash
BUILD ?= build
SANITIZE_BUILD ?= build-sanitize
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)

.PHONY: run test test-sanitize bench fuzz deps build build-sanitize package clean

deps:
	@bash tools/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -z "$$DISPLAY" ] && [ "$$VANTOR_DISPLAY" != terminal ]; then \
	  echo "No display is set: run it as 'xvfb-run -a make run', set DISPLAY to an X server, or play in the terminal with 'VANTOR_DISPLAY=terminal make run'."; \
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

# bench_display opens a window: without DISPLAY, every benchmark runs on a
# virtual X server with room for its largest window.
bench: build
	@for b in $(BUILD)/bench/*; do \
	  [ -f "$$b" ] && [ -x "$$b" ] || continue; \
	  echo "== $$b"; \
	  if [ -n "$$DISPLAY" ]; then $$b; else xvfb-run -a -s "-screen 0 1920x1200x24" $$b; fi; \
	done

# Each fuzz target runs FUZZ_SECONDS from its seed corpus; what it finds
# new goes to $(FUZZ_BUILD)/corpus, a failing input to $(FUZZ_BUILD).
fuzz: deps
	@cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DCMAKE_CXX_COMPILER=clang++ -DVANTOR_FUZZ=ON -DVANTOR_BENCH=OFF > /dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS) --target fuzz_targets
	@for fuzzer in $(FUZZ_BUILD)/tests/fuzz/fuzz_*; do \
	  target=$$(basename $$fuzzer); target=$${target#fuzz_}; \
	  mkdir -p $(FUZZ_BUILD)/corpus/$$target; \
	  echo "== $$target for $(FUZZ_SECONDS) s"; \
	  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 $$fuzzer -max_total_time=$(FUZZ_SECONDS) \
	    -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/$$target- \
	    $$( [ -f tests/fuzz/$$target.dict ] && echo -dict=tests/fuzz/$$target.dict ) \
	    $(FUZZ_BUILD)/corpus/$$target tests/fuzz/corpus/$$target 2>&1 | \
	    grep -E "^(stat::|==|SUMMARY|Done)|ERROR|runtime error" ; \
	  [ $${PIPESTATUS[0]} -eq 0 ] || exit 1; \
	done

clean:
	rm -rf $(BUILD) $(SANITIZE_BUILD) $(FUZZ_BUILD)
