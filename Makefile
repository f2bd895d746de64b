# The front door. Each target installs what is missing, configures, builds and runs; quick when
# nothing has changed.

.PHONY: demo test asan bench install-dependencies clean

demo:
	scripts/demo.sh

test:
	scripts/test.sh dev

# The same tests under the address and undefined behaviour sanitizers.
asan:
	scripts/test.sh asan

bench:
	scripts/bench.sh

install-dependencies:
	scripts/install-dependencies.sh

clean:
	rm -rf build
