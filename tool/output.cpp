#include "output.h"

#include <algorithm>
#include <cerrno>
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

[[noreturn]] void refuseToWrite(const std::string& file) {
    const int reason = errno;
    throw std::runtime_error(file + ": can't be written" +
                             (reason == 0 ? "" : ": " + std::generic_category().message(reason)));
}

using Writer = std::function<void(std::ostream&)>;

void writeTo(const std::string& file, const std::string& shown, const Writer& write) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary);
    if (stream) {
        write(stream);
        stream.close();
    }
    if (!stream) {
        refuseToWrite(shown);
    }
}

/// What stood in the file before stays until all of the new is written.
void replace(const std::string& file, const Writer& write) {
    const std::string part = file + ".part";
    try {
        writeTo(part, file, write);
        std::filesystem::rename(part, file);
    } catch (const std::exception&) {
        std::error_code none;
        std::filesystem::remove(part, none);
        throw;
    }
}

}  // namespace

void writeOutput(const Selection& selection, const std::string& file, const Writer& write) {
    if (file.empty()) {
        write(std::cout);
        return;
    }
    refuseLogbook(selection, file);
    std::error_code none;
    if (std::filesystem::exists(file, none) && !std::filesystem::is_regular_file(file, none)) {
        writeTo(file, file, write);  // a device or a pipe
    } else {
        replace(std::filesystem::is_symlink(file, none) ? std::filesystem::canonical(file).string() : file, write);
    }
}

}  // namespace tool
