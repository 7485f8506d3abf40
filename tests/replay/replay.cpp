// Hands each file of a folder to a fuzz target, which ends the program when it breaks a promise; the last name on
// standard output is then that of the culprit.

#include "TemporaryFolder.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return 2;
    }
    std::size_t replayed = 0;
    for (const auto& file : std::filesystem::directory_iterator(argv[1])) {
        std::cout << file.path().filename().string() << std::endl;
        const std::string content = support::contentOf(file.path());
        LLVMFuzzerTestOneInput(std::vector<std::uint8_t>(content.begin(), content.end()).data(), content.size());
        ++replayed;
    }
    std::cout << replayed << " inputs replayed\n";
    return replayed > 0 ? 0 : 1;
}
