BUILD ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
JOBS ?= 2
PREFIX ?= $(HOME)/.local
PROGRAM_DIR := $(BUILD)/bin

.PHONY: all deps build run test test-asan fuzz bench install uninstall deb clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j$(JOBS)

run: build
	cd $(PROGRAM_DIR) && ./velmora

# The folders' include arrows first: each must point down, no folder may reach itself again.
test: build
	scripts/check-layers.sh
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j$(JOBS)

# The whole suite again under AddressSanitizer and UBSan, in a build folder of its own.
test-asan: deps
	@cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g" \
		-DVELMORA_SANITIZE=ON >/dev/null
	@cmake --build $(ASAN_BUILD) -j$(JOBS)
	cd $(ASAN_BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j$(JOBS)

# Each parser of outside input under libFuzzer for a short while (FUZZ_SECONDS each).
FUZZ_SECONDS ?= 20
fuzz: deps
	@cmake -S . -B $(FUZZ_BUILD) -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
		-DVELMORA_FUZZ=ON -DVELMORA_FUZZ_SECONDS=$(FUZZ_SECONDS) >/dev/null
	@cmake --build $(FUZZ_BUILD) -j$(JOBS)
	cd $(FUZZ_BUILD) && ctest --output-on-failure -j$(JOBS)

bench: build
	$(BUILD)/bench/velmora-bench

install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

# Removes what install put there; the catalogue (data.gdb) was never installed and stays.
uninstall:
	@test -f $(BUILD)/install_manifest.txt || { echo "Nothing was installed from $(BUILD)."; exit 1; }
	@xargs -d '\n' rm -fv < $(BUILD)/install_manifest.txt
	@-rmdir --ignore-fail-on-non-empty $(PREFIX)/lib/velmora $(PREFIX)/share/doc/velmora

# The Debian package, then a check that it installs and starts.
deb: build
	@scripts/install-deps.sh deb
	cd $(BUILD) && cpack -G DEB
	scripts/check-deb.sh $(BUILD)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD)
