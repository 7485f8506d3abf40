#include "commands.h"
#include "logbooks.h"
#include "output.h"
#include "terminal.h"
#include "words.h"

#include <standalone/LogbookReader.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <tqbase2/system/JsonUtility.h>

#include <unistd.h>

#include <fmt/format.h>
#include <json/value.h>
#include <boost/algorithm/hex.hpp>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
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
using tqbase2::system::JsonUtility;

// A line of an export is a JSON object with these members. A text that is no UTF-8 stands as hexadecimal digits, under
// its key with "Hex" behind it.
namespace {

constexpr const char* secondsKey = "seconds";
constexpr const char* nanosecondsKey = "nanoseconds";
constexpr const char* timeKey = "time";
constexpr const char* entryKey = "entry";

/// How far a long export or import is, on a terminal, from the second second on.
class Progress {
public:
    explicit Progress(std::int64_t expected) : all(expected), shows(isatty(STDERR_FILENO) == 1) {}

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    ~Progress() {
        if (lastShown != start) {
            std::cerr << "\r\x1b[K" << std::flush;
        }
    }

    void advance(std::int64_t count) {
        done += count;
        const auto now = std::chrono::steady_clock::now();
        if (!shows || now - start < std::chrono::seconds(1) || now - lastShown < std::chrono::milliseconds(100)) {
            return;
        }
        lastShown = now;
        constexpr std::size_t columns = 40;
        const std::size_t filled =
            all == 0 ? 0 : static_cast<std::size_t>(std::min(done, all) * std::int64_t{columns} / all);
        std::cerr << fmt::format("\r[{}{}] {}", std::string(filled, '='), std::string(columns - filled, ' '), done)
                  << std::flush;
    }

private:
    std::int64_t all;
    std::int64_t done = 0;
    bool shows;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point lastShown = start;
};

void setText(Json::Value& line, const std::string& key, const std::string& text) {
    if (isUtf8(text)) {
        line[key] = text;
        return;
    }
    std::string digits;
    boost::algorithm::hex_lower(text, std::back_inserter(digits));
    line[key + "Hex"] = digits;
}

std::string lineOf(const DatabaseRecord& record) {
    Json::Value line;
    line[secondsKey] = Json::Int64{record.timestamp.seconds};
    line[nanosecondsKey] = Json::Int64{record.timestamp.nanoseconds};
    setText(line, timeKey, record.timestamp.text);
    setText(line, entryKey, record.json);
    return JsonUtility::toJsonString(line);
}

/// Writes every record of a logbook, oldest first.
/// @return how many had to be left out, being damaged
std::int64_t exportTo(std::ostream& stream, standalone::LogbookReader& reader) {
    Progress progress(reader.count());
    constexpr unsigned int linesAtOnce = 256;
    std::int64_t damaged = 0;
    std::vector<StoredRecord> records = reader.after(0, linesAtOnce);
    while (!records.empty() && stream) {
        for (const StoredRecord& record : records) {
            if (record.intact) {
                stream << lineOf(record.content) << '\n';
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

std::int64_t integerOf(const Json::Value& line, const char* key, std::int64_t least, std::int64_t most) {
    const Json::Value& value = line[key];
    if (!value.isInt64() || value.asInt64() < least || value.asInt64() > most) {
        throw std::invalid_argument(fmt::format("\"{}\" is no whole number from {} to {}", key, least, most));
    }
    return value.asInt64();
}

std::string textOf(const Json::Value& line, const std::string& key) {
    const Json::Value& text = line[key];
    const Json::Value& digits = line[key + "Hex"];
    if (text.isString() == digits.isString()) {
        throw std::invalid_argument(fmt::format("either \"{0}\" or \"{0}Hex\" must be a text", key));
    }
    if (text.isString()) {
        return text.asString();
    }
    std::string bytes;
    try {
        boost::algorithm::unhex(digits.asString(), std::back_inserter(bytes));
    } catch (const boost::algorithm::hex_decode_error&) {
        throw std::invalid_argument(fmt::format("\"{}Hex\" is not an even number of hexadecimal digits", key));
    }
    return bytes;
}

DatabaseRecord recordOf(const std::string& text) {
    const Json::Value line = JsonUtility::toJsonValue(text);
    if (!line.isObject()) {
        throw std::invalid_argument(text.empty() ? "is empty" : "is no JSON object");
    }
    constexpr std::int64_t lastNanosecond = 999999999;
    return {{integerOf(line, secondsKey, INT64_MIN, INT64_MAX), integerOf(line, nanosecondsKey, 0, lastNanosecond),
             textOf(line, timeKey)},
            textOf(line, entryKey)};
}

/// @param file and number of the line, for the error
DatabaseRecord recordOf(const std::string& line, const std::string& file, std::int64_t number) {
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
        newest.push_back(recordOf(line, file, ++number));
        if (newest.size() > capacity) {
            newest.pop_front();
        }
    }
    if (couldNotBeRead(stream)) {
        throw std::runtime_error(fmt::format("{}: can't be read behind line {}; nothing was imported", file, number));
    }
    const bool isNew = !folderExists(selection);
    const std::int64_t dropped = standalone::SqliteDatabaseFactory(folderOf(selection))
                                     .addAll(databaseName(selection), capacity, {newest.begin(), newest.end()});
    if (isNew) {
        tellOfNewFolder(selection);
    }
    std::cout << entries(number) << " imported";
    if (number > capacity) {
        std::cout << ", of which the newest " << capacity << " are kept";
    }
    if (dropped > 0) {
        std::cout << "; the oldest " << entries(dropped) << " of before made room";
    }
    std::cout << ".\n";
}

void exportFile(const Selection& selection, const std::string& file) {
    standalone::LogbookReader reader(fileOf(selection));
    std::int64_t damaged = 0;
    writeOutput(selection, file, [&](std::ostream& stream) { damaged = exportTo(stream, reader); });
    if (damaged > 0 && std::cout) {
        throw std::runtime_error(fmt::format("{}: {} damaged {} left out; all others were exported",
                                             fileOf(selection).string(), damaged,
                                             damaged == 1 ? "entry was" : "entries were"));
    }
}

void importFile(const Selection& selection, const std::string& file) {
    if (file == "-") {
        importFrom(std::cin, "standard input", selection);
        return;
    }
    if (std::filesystem::is_directory(file)) {
        throw std::runtime_error(file + ": is a folder, not a file of entries");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw std::runtime_error(file + ": can't be read: " + std::generic_category().message(errno));
    }
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
