#include "commands.h"
#include "exportLine.h"
#include "foundFile.h"
#include "logbooks.h"
#include "output.h"
#include "progress.h"
#include "rights.h"
#include "words.h"

#include <standalone/LogbookReader.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <ext/stdio_filebuf.h>
#include <iostream>
#include <iterator>
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
    constexpr unsigned int linesAtOnce = 16;  // any of which may be of 1 MiB
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

/// The lines of what is imported, of which none may be longer than any entry is, however it is written.
class Lines {
public:
    explicit Lines(std::istream& itsStream) : stream(itsStream), bytes(new char[longest + 1]) {}

    /// @return whether there is one more
    /// @throws std::runtime_error for one that is too long
    bool next(std::string& line) {
        stream.getline(bytes.get(), longest + 1);
        const auto count = static_cast<std::size_t>(stream.gcount());
        if (stream.fail() && count == longest) {
            throw std::runtime_error("it is longer than 8 MiB, as no entry is");
        }
        line.assign(bytes.get(), stream.good() ? count - 1 : count);
        return !stream.fail();
    }

private:
    static constexpr std::size_t longest = std::size_t{8} << 20;

    std::istream& stream;
    const std::unique_ptr<char[]> bytes;  // of which no more is touched than the longest line takes
};

/// Reads all lines; of the records the newest that the logbook can keep are added.
void importFrom(std::istream& stream, const std::string& file, const Selection& selection) {
    const std::uint32_t capacity = capacityOf(selection);
    Progress progress(0);
    std::deque<DatabaseRecord> newest;
    std::int64_t number = 0;
    skipByteOrderMark(stream);
    try {
        Lines lines(stream);
        for (std::string line; lines.next(line); progress.advance(1)) {
            newest.push_back(recordOf(line));
            ++number;
            if (capacity > 0 && newest.size() > capacity) {
                newest.pop_front();
            }
        }
    } catch (const std::exception& bad) {
        throw std::runtime_error(fmt::format("{}: line {}: {}; nothing was imported", file, number + 1, bad.what()));
    }
    if (couldNotBeRead(stream)) {
        throw std::runtime_error(fmt::format("{}: can't be read behind line {}; nothing was imported", file, number));
    }
    const auto kept = static_cast<std::int64_t>(newest.size());
    const bool isNew = !folderExists(selection);
    const std::int64_t dropped =
        factoryFor(selection).addAll(databaseName(selection), capacity,
                                     {std::make_move_iterator(newest.begin()), std::make_move_iterator(newest.end())});
    if (isNew) {
        tellOfNewFolder(selection);
    }
    std::cout << entries(number) << " imported";
    if (kept < number) {
        std::cout << ", of which the newest " << kept << " are kept";
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

/// Of the caller's own files: not by links that others have prepared.
Descriptor openedByCaller(const std::string& file) {
    const CallersRights callers;
    try {
        const FilePlace place = placeOf(file);
        if (place.found && S_ISDIR(place.found->st_mode)) {
            throw std::runtime_error(file + ": is a folder, not a file of entries");
        }
        return opened(place, O_RDONLY | O_NOCTTY);
    } catch (const Reason& reason) {
        throw std::runtime_error(file + ": can't be read: " + std::generic_category().message(reason.error));
    }
}

void importFile(const Selection& selection, const std::string& file) {
    if (file == "-") {
        importFrom(std::cin, "standard input", selection);
        return;
    }
    __gnu_cxx::stdio_filebuf<char> buffer(openedByCaller(file).release(), std::ios::in | std::ios::binary);
    std::istream stream(&buffer);
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
