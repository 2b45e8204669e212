# A thin wrapper over the CMake presets. `make demo` and `make test` work on a fresh Debian 12 system: they
# install the packages that are missing first. SKIP_DEPS=1 leaves the system's packages alone.
#
# make install PREFIX=/usr puts the products where the system and OpenFX hosts look; DESTDIR goes before that.
# make quality SEEDS="1 2" SIZE=1920x1080 scores keys of other plates than the usual ones.
# make bench BENCH_ARGS=--benchmark_filter=REGEX runs some of the benchmarks.

.PHONY: build viewer bundle install deb deb-check deps deps-viewer deps-test demo test bench quality asan tsan debug \
	format format-check tidy check-house clean

build: deps
	cmake --preset release
	cmake --build --preset release

# The interactive viewer, which alone needs Qt.
viewer: deps-viewer
	cmake --preset release
	cmake --build --preset release --target veloxa veloxa-viewer

PREFIX ?= /usr/local

bundle: deps
	cmake --preset release
	cmake --build --preset release --target veloxa_ofx

# With the viewer where what it needs is there.
install: deps
	cmake --preset release
	cmake --build --preset release --target products
	cmake --install build --prefix "$(PREFIX)"

# Of what is committed, with the tests unless DEB_BUILD_OPTIONS=nocheck.
deb:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh deb
	tools/deb.sh

# Builds twice and compares, then installs, tests and purges in a system of its own. Root only.
deb-check:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh deb-check
	tools/deb.sh --twice
	tools/deb_check.sh

deps:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh

deps-viewer:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh viewer

deps-test:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh test

# Builds the program and its module alone, so that a newcomer need not wait for the tests.
demo: deps
	cmake --preset release
	cmake --build --preset release --target veloxa
	tools/demo.sh

test: deps-test
	cmake --preset release
	cmake --build --preset release
	tools/run_tests.sh release

bench:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh bench
	cmake --preset bench
	cmake --build --preset bench
	tools/bench.sh $(BENCH_ARGS)

quality: deps
	cmake --preset release
	cmake --build --preset release --target veloxa
	tools/quality.sh

debug asan tsan: deps-test
	cmake --preset $@
	cmake --build --preset $@
	tools/run_tests.sh $@

format:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh dev
	tools/format.sh

format-check:
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh dev
	tools/format.sh --check

tidy: build
	@[ -n "$(SKIP_DEPS)" ] || tools/deps.sh dev
	tools/tidy.sh

check-house:
	tools/check_house.sh

clean:
	rm -rf build demo
