# Set-up and everyday targets. `make demo` and `make test` install what is
# missing from Debian's packages (as root; otherwise they print the apt-get
# line and stop), configure with CMake, build and run.

# What the library and its programs need, and what the tests and benchmarks
# add. Only OpenCV's split packages: never the libopencv-dev meta-package.
LIB_PACKAGES := cmake make g++ pkg-config libopencv-core-dev libopencv-imgproc-dev
TEST_PACKAGES := libgtest-dev libbenchmark-dev
# The command-line program: options, JSON, image codecs and DICOM (GDCM).
TOOL_PACKAGES := libcli11-dev nlohmann-json3-dev libopencv-imgcodecs-dev libgdcm-dev
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
BUILD ?= build
ASAN_BUILD ?= build-asan

.PHONY: all deps deps-test build build-all demo test test-release test-sanitize \
        bench install fresh-check clean

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
	$(call install_missing,$(TEST_PACKAGES))

# The library and the demo program only: what `make demo` needs.
build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DSONOLEX_TESTS=OFF -DSONOLEX_BENCH=OFF
	cmake --build $(BUILD) -j $(JOBS)

# Everything, tests and benchmarks included.
build-all: deps-test
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release -DSONOLEX_TESTS=ON -DSONOLEX_BENCH=ON
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

bench: build-all
	./$(BUILD)/bench/sonolex_bench

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
	rm -rf $(BUILD) $(ASAN_BUILD)
