# One entry point for a fresh Debian 12 machine: install what is missing, build, run or test.
BUILD ?= build
JOBS ?= 2
# SANITIZE=1: the same build and suite with AddressSanitizer and UBSan, in its own folder.
ifeq ($(SANITIZE),1)
BUILD := build-asan
CMAKE_EXTRA := -DQUILLON_SANITIZE=ON
endif
# What building and running the program needs; the test suite, packaging and fuzzing add theirs.
RUN_DEPS := cmake g++ make pkg-config qt6-base-dev qt6-qpa-plugins libqt6sql6-sqlite libgsasl-dev libgmime-3.0-dev libical-dev help2man \
        libglib2.0-dev libicu-dev util-linux shared-mime-info xdg-utils desktop-file-utils hicolor-icon-theme \
        adwaita-icon-theme qt6-l10n-tools qt6-tools-dev qt6-tools-dev-tools qt6-translations-l10n qt6-wayland libwayland-dev libcap2-bin libsecret-1-dev libsecret-tools
TEST_DEPS := xvfb xauth dbus python3-dbusmock python3-aiosmtpd openssl msmtp clang libclang-rt-14-dev \
        appstream dpkg-dev file gnome-keyring e2fsprogs weston python3-pyatspi at-spi2-core xdotool \
        clang-format clang-tidy
SUDO := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: deps test-deps configure build build-app run test tsan bench fuzz lint format format-check install package clean
FUZZ_SECONDS ?= 600

# Installs those of the packages named in its argument that are missing.
define install_missing
	@missing=$$(for p in $(1); do \
	    dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q 'install ok installed' || echo $$p; done); \
	if [ -n "$$missing" ]; then \
	    echo "Installing missing packages:" $$missing; \
	    $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get update -qq && \
	    $(SUDO) env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $$missing; \
	fi
endef

deps:
	$(call install_missing,$(RUN_DEPS))

test-deps: deps
	$(call install_missing,$(TEST_DEPS))

# Installs under PREFIX; the program and the service files it installs name their paths under it.
PREFIX ?= /usr/local
configure: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_INSTALL_PREFIX=$(PREFIX) $(CMAKE_EXTRA)

# Everything: the program, the tests and the benchmarks.
build: configure test-deps
	cmake --build $(BUILD) -j$(JOBS)

# The program, its wake helper and what they install beside them (translations, changelog); no tests.
build-app: configure
	cmake --build $(BUILD) -j$(JOBS) --target quillon quillon-wake-service quillon_man changelog dbus-interface

run: build-app
	$(BUILD)/bin/quillon

test: build format-check
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 300

# The tests whose code runs threads (the opener pool and the reaper, the history's checkpoint on
# the pool) under ThreadSanitizer, in a build of their own.
TSAN_TESTS := desktop_launch_test history_test launcher_test
tsan: test-deps
	cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLON_TSAN=ON
	cmake --build build-tsan -j$(JOBS) --target $(TSAN_TESTS)
	cd build-tsan && QT_QPA_PLATFORM=offscreen TSAN_OPTIONS="halt_on_error=1 die_after_fork=0 suppressions=$(CURDIR)/cmake/tsan.supp" \
	    ctest --output-on-failure --timeout 300 -R '^($(subst $(eval) ,|,$(TSAN_TESTS)))$$'

# The C++ layout is .clang-format's: `make format` applies it, and the suite fails on a file it would change.
CXX_FILES = $(shell git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
format:
	clang-format -i --style=file $(CXX_FILES)

format-check: test-deps
	@clang-format --dry-run -Werror --style=file $(CXX_FILES) 2>&1 | grep -m 20 'error:' \
	    && { echo "Unformatted C++ above: run make format."; exit 1; } || echo "format: the C++ files follow .clang-format"

# Installs under PREFIX (default /usr/local), the wake service, its unit and its polkit action included.
install: build-app
	$(SUDO) cmake --install $(BUILD)

# A Debian package in build-package/: quillon_<version>_<arch>.deb. A build of its own, for /usr:
# the program and the service files name the paths they are installed at.
PACKAGE_BUILD := build-package
package: test-deps
	cmake -S . -B $(PACKAGE_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr
	cmake --build $(PACKAGE_BUILD) -j$(JOBS) --target quillon quillon-wake-service quillon_man changelog dbus-interface
	cd $(PACKAGE_BUILD) && cpack -G DEB
	cmake/check-package.sh $(PACKAGE_BUILD)/quillon_*.deb

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; QT_QPA_PLATFORM=offscreen $$b; done

# libFuzzer on the SMTP reply parser and on a whole client session; new inputs that add coverage
# are merged into each one's corpus (fuzz/corpus, fuzz/session_corpus).
fuzz: test-deps
	cmake -S fuzz -B build-fuzz -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build build-fuzz -j$(JOBS)
	mkdir -p build-fuzz/corpus build-fuzz/session_corpus
	build-fuzz/smtp_reply_fuzz -max_total_time=$(FUZZ_SECONDS) -max_len=200000 -rss_limit_mb=2048 build-fuzz/corpus fuzz/corpus
	build-fuzz/smtp_reply_fuzz -merge=1 fuzz/corpus build-fuzz/corpus
	build-fuzz/smtp_session_fuzz -max_total_time=$(FUZZ_SECONDS) -max_len=8192 -rss_limit_mb=2048 build-fuzz/session_corpus fuzz/session_corpus
	build-fuzz/smtp_session_fuzz -merge=1 fuzz/session_corpus build-fuzz/session_corpus

# clang-tidy (.clang-tidy) on the C++ files changed against LINT_BASE (default: origin/main, else HEAD).
LINT_BASE ?= $(shell git rev-parse -q --verify origin/main >/dev/null && echo origin/main || echo HEAD)
lint: configure
	@files=$$(git diff --name-only --diff-filter=d $(LINT_BASE) -- '*.cpp'; git ls-files --others --exclude-standard -- '*.cpp'); \
	if [ -z "$$files" ]; then echo "lint: no changed C++ files"; exit 0; fi; \
	clang-tidy -p $(BUILD) --quiet $$files

clean:
	rm -rf $(BUILD)
