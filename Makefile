# Set-up and everyday targets. `make demo` and `make test` install what is
# missing from Debian's packages (as root; otherwise they print the apt-get
# line), configure with CMake, build and run.

PACKAGES := cmake make g++ pkg-config libopencv-core-dev libopencv-imgproc-dev libgtest-dev libbenchmark-dev
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
BUILD ?= build
ASAN_BUILD ?= build-asan

.PHONY: all deps build demo test test-release test-sanitize bench install clean

all: build

deps:
	@missing=""; \
	for p in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "install ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  if [ "$$(id -u)" = 0 ]; then \
	    echo "installing:$$missing"; \
	    DEBIAN_FRONTEND=noninteractive apt-get update -q && \
	    DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends$$missing; \
	  else \
	    echo "missing packages; run as root:"; \
	    echo "  sudo apt-get update && sudo apt-get install -y --no-install-recommends$$missing"; \
	    exit 1; \
	  fi; \
	fi

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(BUILD) -j $(JOBS)

demo: build
	./$(BUILD)/tools/sonolex_demo

test-release: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

test-sanitize: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DSONOLEX_SANITIZE=ON -DSONOLEX_BENCH=OFF
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS)

test: test-release test-sanitize

bench: build
	./$(BUILD)/bench/sonolex_bench

install: build
	cmake --install $(BUILD)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD)
