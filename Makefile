# Works from a fresh clone: each target installs missing packages, then configures and builds what it needs.
#   make capture ARGS="..."   the environment document on standard output (ARGS=--help lists the arguments)
#   make dump ARGS=disks      lines for support staff: wmi, disks, volumes or firmware
#   make check ARGS="..."     what can be backed up, and why not
#   make record ARGS="..."    records a machine as a description, with a proof (ARGS=--help lists the arguments)
#                             These four describe an example workstation unless ARGS contains --machine.
#   make test                 all tests; PRESET=debug for the build with assertions and traps
#   make test-clang           builds the library with the second compiler, and runs the cases
#   make native               orvane for this system, with the commands for documents alone: build/native/bin/orvane
#   make man                  the manual page of that program: build/native/orvane.1
#   make report-picture       docs/report.png, the picture of a report in the README
#   make fuzz                 feeds the readers of documents and descriptions with altered ones; ARGS=3600 for an hour instead of a minute
#   make test-documents       the tests of the documents that need a browser or DuckDB; installs them
#   make loop ARGS="..."      random disks: captured, planned, made again, captured again (ARGS=--help lists the options)
#   make expect CASE=NAME     writes the expected files of a described machine, to be read as a difference
#   make format-page          writes the tables of docs/machine-format.md from the rows that read descriptions
#   make faults ARGS="..."    fault injection (ARGS=--help lists the options)
#   make alter ARGS="..."     alters the library in 40 places and shows what no test notices; takes hours
#   make package              what is released, in dist: archives, debug symbols, check sums
#   make test-package         builds the package in two folders and compares the bytes
#   make bench                benchmarks of time and memory (ARGS=--help lists the options)
#   make lint                 format, dependencies of the rooms, list of oddities, clang-tidy, warnings
#   make format               corrects the format
#   make coverage             line coverage per room
#   make build, make clean, make setup

SHELL := /bin/bash
MAKEFLAGS += --no-print-directory
PRESET ?= release
BUILD := build/$(PRESET)
JOBS ?= $(shell nproc)
ARGS ?=
CASE ?=
DESCRIBED = $(if $(findstring --machine,$(ARGS)),,--machine examples/machines/uefi-workstation)

export JOBS

.PHONY: capture dump check record test test-clang test-documents native report-picture man fuzz loop expect format-page faults alter package test-package bench lint format coverage build setup clean
.DEFAULT_GOAL := build

setup:
	@scripts/setup build test lint coverage

# Only the command itself writes to standard output.
capture dump check record:
	@scripts/setup build >&2
	@scripts/build $(PRESET) --target Orvane orvane >&2
	@scripts/wine-run $(BUILD)/bin/orvane.exe $@ $(ARGS) $(DESCRIBED)

build:
	@scripts/setup build
	@scripts/build $(PRESET)

# The native tests come first: they are quick. The last tests compare the native program with orvane.exe.
test: native
	@scripts/setup build test native
	@scripts/build native-sanitized
	@ctest --test-dir build/native-sanitized --output-on-failure -j $(JOBS)
	@scripts/build $(PRESET)
	@ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

test-clang:
	@scripts/setup build clang
	@scripts/build clang --target Orvane cases
	@ctest --test-dir build/clang --output-on-failure -R '^(cases|imports)$$'

# The packages of npm lie in the build folder; the lock file says which.
test-documents: native
	@scripts/setup browser
	@mkdir -p build/browser
	@cp tests/browser/package.json tests/browser/package-lock.json build/browser
	@cd build/browser && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error
	@NODE_PATH=$(CURDIR)/build/browser/node_modules node --test tests/browser/

native:
	@scripts/setup native
	@scripts/build native

man:
	@scripts/setup native
	@scripts/build native --target man_page

report-picture: native
	@scripts/setup browser
	@scripts/report-picture

fuzz:
	@scripts/setup native fuzz
	@scripts/build fuzz
	@scripts/fuzz $(ARGS)

loop: native
	@scripts/setup build test
	@scripts/build $(PRESET) --target Orvane capture_machines write_tables
	@ORVANE_CAPTURES=$(BUILD)/bin/capture_machines.exe ORVANE_WRITES=$(BUILD)/bin/write_tables.exe \
		ORVANE_RUN=scripts/wine-run ORVANE_NATIVE=build/native/bin/orvane tests/documents/loop/run-loop $(ARGS)

# Only by hand: what it writes is what the library makes, right or wrong. In the code page that the tests expect.
expect:
	@[ -n "$(CASE)" ] || { echo "usage: make expect CASE=NAME, a folder of examples/machines" >&2; exit 2; }
	@scripts/setup build test
	@scripts/build $(PRESET) --target Orvane expect
	@LC_ALL=C.UTF-8 scripts/wine-run $(BUILD)/bin/expect.exe "examples/machines/$(CASE)"

format-page:
	@scripts/setup build
	@scripts/build $(PRESET) --target format_page
	@scripts/wine-run $(BUILD)/bin/format_page.exe docs/machine-format.md

faults:
	@scripts/setup build test
	@scripts/build $(PRESET) --target Orvane faults recordings
	@ORVANE_FAULTS=$(BUILD)/bin/faults.exe ORVANE_RUN=scripts/wine-run tests/faults/run-faults --jobs $(JOBS) $(ARGS)
	@[ -n "$(filter-out --all,$(ARGS))" ] || \
		ORVANE_RUN=scripts/wine-run tests/recordings/run-faults $(BUILD)/bin/recordings.exe $(ARGS)

alter:
	@scripts/setup build test
	@scripts/alter $(ARGS)

package:
	@scripts/setup build native package
	@scripts/package $(ARGS)

test-package:
	@scripts/setup build native package
	@scripts/build $(PRESET) --target Orvane orvane
	@tests/package/run-reproduce $(BUILD)

# The commands for documents are measured natively, on documents that the library makes. ARGS are for the library alone.
bench: native
	@scripts/setup build test
	@scripts/build $(PRESET) --target Orvane bench
	@scripts/build native --target bench_documents
	@scripts/wine-run $(BUILD)/bin/bench.exe --documents $(BUILD)/documents
	@status=0; scripts/wine-run $(BUILD)/bin/bench.exe $(ARGS) || status=1; \
		$(if $(ARGS),,build/native/bin/bench_documents $(BUILD)/documents || status=1;) exit $$status

lint:
	@scripts/setup build lint
	@scripts/lint

format:
	@scripts/setup lint
	@scripts/format

coverage: native
	@scripts/setup build test coverage
	@scripts/coverage

clean:
	@scripts/clean
