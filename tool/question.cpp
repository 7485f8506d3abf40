#include "question.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace tool {

bool isAgreedTo(const std::string& question) {
    std::cout << question << " [y/N] " << std::flush;
    std::string answer;
    if (!std::getline(std::cin, answer)) {
        std::cout << '\n';
        throw CLI::RequiredError("an answer, or --yes,");
    }
    return answer == "y" || answer == "yes";
}

}  // namespace tool
