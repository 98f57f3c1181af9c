# The commands of daily work. The build itself is CMake's: `cmake --list-presets`.
.DEFAULT_GOAL := help
.PHONY: help deps test demo dist faults soak fuzz coverage bench format lint clean
.NOTPARALLEL:

help: ## this list
	@awk -F ':.*## ' '/^[a-z]+:.*## /{printf "  make %-8s %s\n", $$1, $$2}' $(MAKEFILE_LIST)

deps: ## install the Debian packages that building and testing need (needs root)
	@scripts/install-deps

test: deps ## everything: check the sources, build and test every preset (PRESETS="..." for some)
	@scripts/test $(PRESETS)

demo: deps ## build the product and let it back up a folder to an S3 server and restore it
	@scripts/demo

dist: deps ## build the product and pack it: build/dist/mirqos-VERSION-windows-x64.zip
	@scripts/dist

faults: deps ## put every operation through every fault of the network (PRESET=linux-release)
	@scripts/faults $(PRESET)

soak: deps ## half an hour of work over a failing network (MINUTES=30 PRESET=linux-release SEED=...)
	@scripts/soak $(or $(MINUTES),30) $(or $(PRESET),linux-release) $(SEED)

fuzz: deps ## let fuzzers look for crashes (SECONDS_EACH=60 TARGETS="...")
	@scripts/fuzz $(or $(SECONDS_EACH),60) $(TARGETS)

coverage: deps ## list what the tests do not run (build/coverage/)
	@scripts/coverage

bench: deps ## measure the library beside its floor and its peers (ONLY=log|store, ROWS=pattern)
	@scripts/bench "$(ONLY)" "$(ROWS)"

format: deps ## lay out the sources as .clang-format says
	@scripts/format fix

lint: deps ## only the checks of the sources: layout and clang-tidy
	@scripts/format check
	@scripts/tidy

clean: ## remove everything built
	@scripts/clean
