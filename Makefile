# Set-up and everyday targets. `make demo` and `make test` install what is
# missing from Debian's packages (as root; otherwise they print the apt-get
# line and stop), configure with CMake, build and run.

# What the library and its programs need, and what the tests and benchmarks
# add. Only OpenCV's split packages: never the libopencv-dev meta-package.
LIB_PACKAGES := cmake make g++ pkg-config libopencv-core-dev libopencv-imgproc-dev libopencv-shape-dev libopencv-ml-dev
TEST_PACKAGES := libgtest-dev libbenchmark-dev
# The command-line program: options, JSON, image codecs and DICOM (GDCM).
TOOL_PACKAGES := libcli11-dev nlohmann-json3-dev libopencv-imgcodecs-dev libgdcm-dev
# The Python package: pybind11, numpy, Dask and pandas, pytest, and pip with venv.
PYTHON_PACKAGES := pybind11-dev python3-dev python3-numpy python3-pandas python3-dask python3-distributed \
                   python3-pytest python3-setuptools python3-pip python3-venv
FUZZ_PACKAGES := clang libclang-rt-14-dev
CHECK_PACKAGES := valgrind
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
BUILD ?= build
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60
FUZZ_ENTRIES := breast breast_model thyroid liver carotid gallwall gallbladder

.PHONY: all deps deps-test build build-all demo test test-release test-sanitize \
        bench bench-instructions install fresh-check fuzz test-tsan soak memcheck python clean

all: build

# Installs the packages named in $(1) that dpkg does not list as installed.
define install_missing
	@missing=""; \
	for p in $(1); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  line="apt-get update && apt-get install -y --no-install-recommends$$missing"; \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "installing:$$missing"; \
	    export DEBIAN_FRONTEND=noninteractive; \
	    apt-get update -q && apt-get install -y -q --no-install-recommends$$missing; \
	  else \
	    echo "Missing Debian packages:$$missing"; \
	    echo "Run this as root, then the same make command again:"; \
	    echo "  su -c '$$line'"; \
	    exit 1; \
	  fi; \
	fi
endef

deps:
	$(call install_missing,$(LIB_PACKAGES) $(TOOL_PACKAGES))

deps-test: deps
	$(call install_missing,$(TEST_PACKAGES) $(PYTHON_PACKAGES))

# The library and the demo program only: what `make demo` needs.
build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DSONOLEX_TESTS=OFF -DSONOLEX_BENCH=OFF
	cmake --build $(BUILD) -j $(JOBS)

# Everything, tests, benchmarks and the Python package included.
build-all: deps-test
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DSONOLEX_TESTS=ON -DSONOLEX_BENCH=ON -DSONOLEX_PYTHON=ON
	cmake --build $(BUILD) -j $(JOBS)

# Synthetic cases as PNG files, described one by one and as a batch, with overlays.
demo: build
	./$(BUILD)/tools/sonolex_demo_cases $(BUILD)/demo
	./$(BUILD)/tools/sonolex describe --organ breast $(BUILD)/demo/breast-oval.png $(BUILD)/demo/breast-oval-mask.png \
	  --overlay $(BUILD)/demo/breast-oval-overlay.png
	./$(BUILD)/tools/sonolex batch $(BUILD)/demo/cases.csv $(BUILD)/demo/verdicts.csv --overlays $(BUILD)/demo
	@echo "verdicts: $(BUILD)/demo/verdicts.csv; overlays: $(BUILD)/demo/[1-7]-*.png"

test-release: build-all
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

test-sanitize: deps-test
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DSONOLEX_SANITIZE=ON -DSONOLEX_BENCH=OFF
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS)

test: test-release test-sanitize

# Every entry's libFuzzer target for FUZZ_SECONDS each, under ASan and
# UBSan, from the seed corpus the project writes. An input that fails is
# kept in fuzz/regressions/<entry>/, which every test build replays.
fuzz: deps
	$(call install_missing,$(FUZZ_PACKAGES))
	CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSONOLEX_SANITIZE=ON \
	  -DSONOLEX_FUZZ=ON -DSONOLEX_TESTS=OFF -DSONOLEX_BENCH=OFF -DSONOLEX_TOOLS=OFF
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	rm -rf $(FUZZ_BUILD)/seeds && ./$(FUZZ_BUILD)/fuzz/fuzz_seeds $(FUZZ_BUILD)/seeds
	@for e in $(FUZZ_ENTRIES); do \
	  mkdir -p $(FUZZ_BUILD)/corpus/$$e fuzz/regressions/$$e; \
	  echo "fuzz $$e: $(FUZZ_SECONDS) s"; \
	  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
	  ./$(FUZZ_BUILD)/fuzz/fuzz_$$e -max_total_time=$(FUZZ_SECONDS) -timeout=30 -rss_limit_mb=2048 \
	    -max_len=1024 -print_final_stats=1 -artifact_prefix=fuzz/regressions/$$e/ \
	    $(FUZZ_BUILD)/corpus/$$e $(FUZZ_BUILD)/seeds/$$e 2>$(FUZZ_BUILD)/fuzz-$$e.log \
	  || { tail -n 40 $(FUZZ_BUILD)/fuzz-$$e.log; exit 1; }; \
	  grep -E "^stat::(number_of_executed_units|average_exec_per_sec|peak_rss_mb)|cov: " $(FUZZ_BUILD)/fuzz-$$e.log | tail -n 4; \
	done

# Eight threads calling every entry under ThreadSanitizer.
test-tsan: deps-test
	cmake -S . -B $(TSAN_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSONOLEX_TSAN=ON -DSONOLEX_BENCH=OFF -DSONOLEX_TOOLS=OFF
	cmake --build $(TSAN_BUILD) -j $(JOBS) --target sonolex_call_checks
	SONOLEX_FUZZ_LIMIT_MS=1000000 TSAN_OPTIONS=halt_on_error=1 ./$(TSAN_BUILD)/tests/sonolex_call_checks --gtest_filter='Threads.*'

# 100,000 calls of each entry with resident memory checked for growth.
soak: build-all
	SONOLEX_FUZZ_LIMIT_MS=1000000 ./$(BUILD)/tests/sonolex_call_checks --gtest_also_run_disabled_tests --gtest_filter='Memory.*'

# The random scenes of every entry under valgrind's memcheck.
memcheck: build-all
	$(call install_missing,$(CHECK_PACKAGES))
	SONOLEX_FUZZ_LIMIT_MS=100000 valgrind -q --error-exitcode=1 --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
	  ./$(BUILD)/tests/sonolex_call_checks --gtest_filter='FuzzCalls.*'

bench: build-all
	./$(BUILD)/bench/sonolex_bench
	PYTHONPATH=$(BUILD)/python /usr/bin/python3 bench/bench_python.py

# Instructions per call of every entry on its typical scene, counted by
# callgrind; BENCH_WIDTH=50|100|200|400 counts the size series' scenes instead.
bench-instructions: build-all
	$(call install_missing,$(CHECK_PACKAGES))
	bash bench/instructions.sh ./$(BUILD)/bench/sonolex_instructions $(BENCH_WIDTH)

# The Python package, assembled in $(BUILD)/python/sonolex (use it with
# PYTHONPATH=$(BUILD)/python, or `pip install --no-build-isolation ./python`).
python: deps
	$(call install_missing,$(PYTHON_PACKAGES))
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DSONOLEX_PYTHON=ON
	cmake --build $(BUILD) -j $(JOBS) --target python
	@echo "package: $(BUILD)/python/sonolex (PYTHONPATH=$(BUILD)/python /usr/bin/python3)"

# Installs under /usr/local (configure with -DCMAKE_INSTALL_PREFIX=... for
# elsewhere) and refreshes the linker cache, so that a plain
# `cc ... -lsonolex` host finds the library.
install: build
	cmake --install $(BUILD)
	@if [ "$$(id -u)" = 0 ] && command -v ldconfig >/dev/null; then ldconfig; fi

# Builds, demos and tests the committed HEAD on a minimal Debian 12 root with
# only git, make and ca-certificates, as a newcomer's machine is. Needs root.
fresh-check:
	bash .ci/fresh-check

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) $(FUZZ_BUILD)
