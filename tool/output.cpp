#include "output.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace tool {

namespace {

/// Whether a file is a logbook, or one of those that SQLite keeps beside it.
bool belongsTo(const std::filesystem::path& logbook, const std::string& file) {
    const char* const ends[] = {"", "-wal", "-shm"};
    return std::any_of(std::begin(ends), std::end(ends), [&](const char* end) {
        std::error_code none;
        return std::filesystem::equivalent(logbook.string() + end, file, none);
    });
}

void refuseLogbook(const Selection& selection, const std::string& file) {
    for (const char* const name : {"customer", "service"}) {
        if (belongsTo(fileOf({selection.folder, name}), file)) {
            throw CLI::ValidationError("--output", file + " is the " + name + " logbook itself");
        }
    }
}

}  // namespace

void writeOutput(const Selection& selection, const std::string& file, const std::function<void(std::ostream&)>& write) {
    if (file.empty()) {
        write(std::cout);
        return;
    }
    refuseLogbook(selection, file);
    std::ofstream stream(file, std::ios::binary);
    write(stream);
    stream.flush();
    if (!stream) {
        throw std::runtime_error(file + ": can't be written");
    }
}

}  // namespace tool
