BUILD ?= build
JOBS ?= 2
PROGRAM_DIR := $(BUILD)/bin

.PHONY: all deps build run test bench clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j$(JOBS)

run: build
	cd $(PROGRAM_DIR) && ./velmora

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j$(JOBS)

bench: build
	$(PROGRAM_DIR)/velmora-bench

clean:
	rm -rf $(BUILD)
