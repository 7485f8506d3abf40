// Adds samples to a logbook in a folder, each safe from power loss before the next; scripts/flash-wear looks at what
// the disk has to write for it.
//
//   flash_wear FOLDER ADDS CAPACITY                                 the product
//   flash_wear FOLDER ADDS CAPACITY PAGE_BYTES CHECKPOINT_BYTES     the same table over SQLite's own interface

#include "BareLogbook.h"
#include "samples.h"

#include <standalone/SqliteDatabaseFactory.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace {

void addToProduct(const std::string& folder, unsigned int adds, unsigned int capacity) {
    const auto database = standalone::SqliteDatabaseFactory(folder).create("product", 0, capacity);
    for (std::uint64_t number = 0; number < adds; ++number) {
        database->add(bench::sampleOf(number).json, bench::sampleTime());
    }
}

void addToBare(const std::string& folder, unsigned int adds, unsigned int capacity, int pageBytes,
               int checkpointBytes) {
    const std::string file = standalone::logbookFile(folder, "bare").string();
    if (!std::filesystem::exists(file)) {
        bench::makeFile(file, pageBytes);
    }
    bench::BareLogbook logbook(file, capacity, checkpointBytes / pageBytes);
    for (std::uint64_t number = 0; number < adds; ++number) {
        logbook.add(bench::sampleOf(number).json, bench::sampleTime());
    }
}

unsigned int number(const std::string& text) {
    return static_cast<unsigned int>(std::stoul(text));
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        if (arguments.size() == 3) {
            addToProduct(arguments[0], number(arguments[1]), number(arguments[2]));
            return 0;
        }
        if (arguments.size() == 5) {
            addToBare(arguments[0], number(arguments[1]), number(arguments[2]), std::stoi(arguments[3]),
                      std::stoi(arguments[4]));
            return 0;
        }
        std::cerr << "usage: flash_wear FOLDER ADDS CAPACITY [PAGE_BYTES CHECKPOINT_BYTES]\n";
    } catch (const std::exception& exception) {
        std::cerr << "flash_wear: " << exception.what() << '\n';
    }
    return 1;
}
