# Everything from a fresh clone: each target installs what is missing, configures and builds what it needs.
#   make capture ARGS="..."   the environment document on standard output (orvane capture --help lists the arguments)
#   make test                 all tests; PRESET=debug for the build with assertions and traps
#   make lint                 format, clang-tidy, the arrows between the rooms; make format mends the first
#   make coverage             line coverage per room
#   make build, make clean, make setup

SHELL := /bin/bash
MAKEFLAGS += --no-print-directory
PRESET ?= release
BUILD := build/$(PRESET)
JOBS ?= $(shell nproc)
ARGS ?=

export JOBS

.PHONY: capture test lint format coverage build setup clean
.DEFAULT_GOAL := build

setup:
	@scripts/setup build test lint coverage

# Standard output belongs to the document alone.
capture:
	@scripts/setup build >&2
	@scripts/build $(PRESET) --target Orvane orvane >&2
	@scripts/wine-run $(BUILD)/bin/orvane.exe capture $(ARGS)

build:
	@scripts/setup build
	@scripts/build $(PRESET)

test:
	@scripts/setup build test
	@scripts/build $(PRESET)
	@ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

lint:
	@scripts/setup build lint
	@scripts/lint

format:
	@scripts/setup lint
	@scripts/format

coverage:
	@scripts/setup build test coverage
	@scripts/coverage

clean:
	@scripts/clean
