#include "commands.h"
#include "exportLine.h"
#include "logbooks.h"
#include "output.h"
#include "progress.h"
#include "rights.h"
#include "words.h"

#include <standalone/LogbookReader.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace tool {

using lgb::DatabaseRecord;
using standalone::StoredRecord;

namespace {

/// Writes every record of a logbook, oldest first.
/// @param seen on a terminal
/// @return how many had to be left out, being damaged
std::int64_t exportTo(std::ostream& stream, bool seen, standalone::LogbookReader& reader) {
    Progress progress(reader.count());
    constexpr unsigned int linesAtOnce = 256;
    std::int64_t damaged = 0;
    std::vector<StoredRecord> records = reader.after(0, linesAtOnce);
    while (!records.empty() && stream) {
        for (const StoredRecord& record : records) {
            if (record.intact) {
                writeExportLine(stream, seen, record.content);
            } else {
                ++damaged;
            }
        }
        progress.advance(static_cast<std::int64_t>(records.size()));
        records = reader.after(records.back().number, linesAtOnce);
    }
    stream.flush();
    return damaged;
}

/// @param file and number of the line, for the error
DatabaseRecord recordAt(const std::string& line, const std::string& file, std::int64_t number) {
    try {
        return recordOf(line);
    } catch (const std::exception& exception) {
        throw std::runtime_error(fmt::format("{}: line {}: {}; nothing was imported", file, number, exception.what()));
    }
}

/// Some programs begin a text with U+FEFF.
void skipByteOrderMark(std::istream& stream) {
    const std::string mark = "\xef\xbb\xbf";
    for (const char byte : mark) {
        if (stream.peek() != std::char_traits<char>::to_int_type(byte)) {
            return;
        }
        stream.get();
    }
}

/// std::cin takes an error for the end of what it reads.
bool couldNotBeRead(const std::istream& stream) {
    return stream.bad() || (&stream == &std::cin && std::ferror(stdin) != 0);
}

/// Reads all lines; of the records the newest that the logbook can keep are added.
void importFrom(std::istream& stream, const std::string& file, const Selection& selection) {
    const std::uint32_t capacity = capacityOf(selection);
    Progress progress(0);
    std::deque<DatabaseRecord> newest;
    std::int64_t number = 0;
    skipByteOrderMark(stream);
    for (std::string line; std::getline(stream, line); progress.advance(1)) {
        newest.push_back(recordAt(line, file, ++number));
        if (capacity > 0 && newest.size() > capacity) {
            newest.pop_front();
        }
    }
    if (couldNotBeRead(stream)) {
        throw std::runtime_error(fmt::format("{}: can't be read behind line {}; nothing was imported", file, number));
    }
    const bool isNew = !folderExists(selection);
    const std::int64_t dropped =
        factoryFor(selection).addAll(databaseName(selection), capacity, {newest.begin(), newest.end()});
    if (isNew) {
        tellOfNewFolder(selection);
    }
    std::cout << entries(number) << " imported";
    if (static_cast<std::int64_t>(newest.size()) < number) {
        std::cout << ", of which the newest " << newest.size() << " are kept";
    }
    if (dropped > 0) {
        std::cout << "; the oldest " << entries(dropped) << " of before made room";
    }
    std::cout << ".\n";
}

void exportFile(const Selection& selection, const std::string& file) {
    standalone::LogbookReader reader(fileOf(selection));
    std::int64_t damaged = 0;
    writeOutput(selection, file,
                [&](std::ostream& stream, bool isSeen) { damaged = exportTo(stream, isSeen, reader); });
    if (damaged > 0 && std::cout) {
        throw std::runtime_error(fmt::format("{}: {} damaged {} left out; all others were exported",
                                             fileOf(selection).string(), damaged,
                                             damaged == 1 ? "entry was" : "entries were"));
    }
}

std::ifstream openedByCaller(const std::string& file) {
    const CallersRights callers;
    if (std::filesystem::is_directory(file)) {
        throw std::runtime_error(file + ": is a folder, not a file of entries");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error(file + ": can't be read: " + std::generic_category().message(errno));
    }
    return stream;
}

void importFile(const Selection& selection, const std::string& file) {
    if (file == "-") {
        importFrom(std::cin, "standard input", selection);
        return;
    }
    std::ifstream stream = openedByCaller(file);
    importFrom(stream, file, selection);
}

}  // namespace

void declareExport(CLI::App& app, Selection& selection) {
    CLI::App& command =
        *app.add_subcommand("export", "Write a logbook as JSON lines, without loss, oldest entry first");
    const auto file = std::make_shared<std::string>();
    declareLogbook(command, selection);
    command.add_option("--output", *file, "File to write, standard output unless given")->type_name("FILE");
    command.callback([&selection, file] { exportFile(selection, *file); });
}

void declareImport(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("import", "Add what was exported to a logbook: every entry, or none");
    const auto file = std::make_shared<std::string>();
    declareLogbook(command, selection);
    command.add_option("file", *file, "What was exported; - for standard input")->required()->type_name("FILE");
    command.callback([&selection, file] { importFile(selection, *file); });
}

}  // namespace tool
