#include "Check.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <exception>
#include <iostream>

namespace support {

namespace {

void declare(CLI::App& app, const Choice& choice, bool& flag) {
    app.add_flag(choice.name, flag, choice.purpose);
}

void declare(CLI::App& app, const Choice& choice, std::uint64_t& number) {
    app.add_option(choice.name, number, choice.purpose)->check(CLI::PositiveNumber);
}

void declare(CLI::App& app, const Choice& choice, std::string& text) {
    app.add_option(choice.name, text, choice.purpose);
}

}  // namespace

Extent extentOf(int argc, char** argv, std::uint64_t usual, std::initializer_list<Choice> choices) {
    Extent extent{usual};
    CLI::App app;
    app.add_option("--rounds", extent.rounds, "how often");
    app.add_option("--seed", extent.seed, "first random number");
    for (const Choice& choice : choices) {
        std::visit([&](auto* value) { declare(app, choice, *value); }, choice.value);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        std::exit(app.exit(error));
    }
    return extent;
}

int outcomeOf(int (*check)(int argc, char** argv), int argc, char** argv) noexcept {
    try {
        return check(argc, argv);
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        return 1;
    }
}

}  // namespace support
