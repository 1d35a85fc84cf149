# Thin wrapper round CMake so that each set-up step is one command.
BUILD := build

.PHONY: build demo test clean

build:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2

# Builds the program and runs the bundled catchment model in a scratch folder.
demo:
	cmake -S . -B $(BUILD)
	cmake --build $(BUILD) -j 2 --target tesseramill
	rm -rf $(BUILD)/demo
	mkdir -p $(BUILD)/demo
	cp examples/catchment/* $(BUILD)/demo/
	cd $(BUILD)/demo && ../tesseramill catchment.in

# Builds everything and runs every test.
test: build
	cd $(BUILD) && ctest --output-on-failure -j 2

clean:
	rm -rf $(BUILD)
