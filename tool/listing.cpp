#include "listing.h"

#include "moments.h"
#include "table.h"
#include "terminal.h"
#include "validators.h"

#include <nsa/zel/converter/zel/enums/GenerationConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <string_view>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;
using tqbase2::nsa::zel::logbook::Entry;
using tqbase2::system::JsonUtility;

namespace {

struct TypeLook {
    const char* name;
    fmt::text_style style;
};

// Index is the type.
const TypeLook typeLooks[] = {
    {"Info", fmt::fg(fmt::terminal_color::green)},
    {"Warning", fmt::fg(fmt::terminal_color::yellow)},
    {"Error", fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red)},
};

const TypeLook unknownType{"?", fmt::text_style()};

const TypeLook& lookOf(const ReadEntry& read) {
    return isRead(read) ? typeLooks[static_cast<std::size_t>(read.entry.type)] : unknownType;
}

/// The words of an entry, or why there are none.
std::string wordsOf(const ReadEntry& read) {
    if (read.standing == Standing::Shown) {
        return read.entry.description;
    }
    std::string words = std::string("(") + nameOf(read.standing);
    if (!read.reason.empty()) {
        words += ": " + read.reason;
    }
    words += ')';
    if (read.standing == Standing::Wordless) {
        return read.entry.description + words;  // behind the unit and the device
    }
    return read.entry.description.empty() ? words : words + ' ' + read.entry.description;
}

/// What the words of an entry leave out.
std::string notesOf(const ReadEntry& read, bool raw) {
    std::string notes;
    if (read.standing == Standing::Lost) {
        return notes;
    }
    if (!isRead(read)) {
        notes += " [" + read.document + ']';
    } else if (raw || !read.hasMessage) {
        const std::string& params = read.entry.details.params;
        notes += " [" + codeOf(read.entry) + (params.empty() ? "" : ' ' + params) + ']';
    }
    if (read.clockSetBack > 0) {
        notes += " [clock set back by " + duration(read.clockSetBack) + ']';
    }
    return notes;
}

/// As wide as the time of an entry may be; one that a device wrote is 25 columns wide.
constexpr std::size_t widestTime = 40;

std::string timeOf(const ReadEntry& read, const Look& look) {
    const auto& timestamp = read.entry.timestamp;
    return look.utc ? utc(timestamp.seconds) : shortened(printable(timestamp.text), widestTime);
}

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width - widthOf(text), ' ');
}

/// Columns as wide as their widest text, but for very long times; the last one wraps within the terminal.
class Table : public Listing {
public:
    explicit Table(const Look& wanted) : look(wanted) {
        if (look.goesOn) {
            makeRoomForAllTypes();
        }
    }

    void add(const ReadEntry& read) override {
        rows.push_back({{std::to_string(read.number), timeOf(read, look), lookOf(read).name,
                         printable(wordsOf(read) + notesOf(read, look.raw))},
                        lookOf(read).style});
    }

    void flush() override {
        if (!hasHeader) {
            rows.insert(rows.begin(), Row{{"No.", "Time", "Type", "Description"}, fmt::text_style()});
            hasHeader = true;
        }
        for (const Row& row : rows) {
            for (std::size_t column = 0; column < widths.size(); ++column) {
                widths[column] = std::max(widths[column], widthOf(row.cells[column]));
            }
        }
        for (const Row& row : rows) {
            write(row);
        }
        rows.clear();
        std::cout.flush();
    }

    void end() override { flush(); }

private:
    static constexpr std::size_t typeColumn = 2;

    struct Row {
        std::array<std::string, 4> cells;
        fmt::text_style style;
    };

    void makeRoomForAllTypes() {
        for (const TypeLook& type : typeLooks) {
            widths[typeColumn] = std::max(widths[typeColumn], widthOf(type.name));
        }
    }

    void write(const Row& row) const {
        const std::string type = padded(row.cells[typeColumn], widths[typeColumn]);
        std::cout << fmt::format("{:>{}}  {}  {}  ", row.cells[0], widths[0], padded(row.cells[1], widths[1]),
                                 look.coloured ? fmt::format(row.style, "{}", type) : type);
        const std::size_t indent = widths[0] + widths[1] + widths[2] + 6;
        const std::size_t leastWords = 20;
        const std::size_t width = look.width < indent + leastWords ? 0 : look.width - indent;
        bool first = true;
        for (const std::string& line : wrapped(row.cells[3], width)) {
            std::cout << std::string(first ? 0 : indent, ' ') << line << '\n';
            first = false;
        }
    }

    Look look;
    std::vector<Row> rows;
    std::array<std::size_t, 3> widths{};
    bool hasHeader = false;
};

Json::Value numberOrNull(std::int64_t number) {
    return number < 0 ? Json::Value() : Json::Value(Json::Int64{number});
}

/// The parameter record as JSON, or its text when it is none.
Json::Value parametersOf(const std::string& params) {
    try {
        return JsonUtility::toJsonValue(validUtf8(params));
    } catch (const std::exception&) {
        return validUtf8(params);
    }
}

Json::Value jsonOf(const ReadEntry& read) {
    const Entry& entry = read.entry;
    Json::Value json;
    json["number"] = Json::Int64{read.number};
    json["time"] = iso8601(entry.timestamp.seconds, entry.timestamp.nanoseconds);
    json["timeText"] = validUtf8(entry.timestamp.text);
    json["standing"] = nameOf(read.standing);
    if (read.standing == Standing::Lost) {
        json["firstNumber"] = Json::Int64{read.firstLost};
        return json;
    }
    if (!read.reason.empty()) {
        json["reason"] = validUtf8(read.reason);
    }
    if (read.clockSetBack > 0) {
        json["clockSetBack"] = Json::Int64{read.clockSetBack};
    }
    if (!isRead(read)) {
        json["document"] = validUtf8(read.document);
        return json;
    }
    json["type"] = nameOf(entry.type);
    json["code"] = codeOf(entry);
    json["description"] = validUtf8(entry.description);
    json["unit"] = numberOrNull(entry.details.unit);
    json["device"] = numberOrNull(entry.details.device);
    json["generation"] = enums::GenerationConverter::fromValToJsonValue(entry.details.generation);
    json["parameters"] = parametersOf(entry.details.params);
    return json;
}

std::string jsonTextOf(const ReadEntry& read, const Look& look) {
    const std::string text = JsonUtility::toJsonString(jsonOf(read));
    return look.isSeen ? printableJson(text) : text;
}

class JsonLines : public Listing {
public:
    explicit JsonLines(const Look& wanted) : look(wanted) {}

    void add(const ReadEntry& read) override { std::cout << jsonTextOf(read, look) << '\n'; }

    void flush() override { std::cout.flush(); }

private:
    Look look;
};

class JsonArray : public Listing {
public:
    explicit JsonArray(const Look& wanted) : look(wanted) {}

    void add(const ReadEntry& read) override {
        std::cout << before << jsonTextOf(read, look);
        before = ",\n";
    }

    void end() override { std::cout << (before == begin ? "[]\n" : "\n]\n"); }

private:
    static constexpr std::string_view begin = "[\n";
    Look look;
    std::string_view before = begin;
};

/// A field as RFC 4180 has it.
std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string field = "\"";
    for (const char character : text) {
        field += character == '"' ? "\"\"" : std::string(1, character);
    }
    return field + '"';
}

class Csv : public Listing {
public:
    explicit Csv(const Look& wanted) : look(wanted) {
        std::cout << "number,time,standing,type,code,unit,device,generation,description,parameters\n";
    }

    void add(const ReadEntry& read) override {
        const Entry& entry = read.entry;
        const bool readable = isRead(read);
        const auto text = [&](const std::string& stored) {
            return look.isSeen ? printable(stored) : validUtf8(stored);
        };
        const auto number = [&](std::int64_t value) { return readable && value >= 0 ? std::to_string(value) : ""; };
        const std::string fields[] = {
            std::to_string(read.number),
            iso8601(entry.timestamp.seconds, entry.timestamp.nanoseconds),
            nameOf(read.standing),
            readable ? nameOf(entry.type) : "",
            readable ? codeOf(entry) : "",
            number(entry.details.unit),
            number(entry.details.device),
            readable ? enums::GenerationConverter::fromValToJsonValue(entry.details.generation).asString() : "",
            text(readable || read.standing == Standing::Lost ? wordsOf(read) : read.document),
            text(entry.details.params),
        };
        std::string line;
        for (const std::string& field : fields) {
            line += (line.empty() ? "" : ",") + csvField(field);
        }
        std::cout << line << '\n';
    }

    void flush() override { std::cout.flush(); }

private:
    Look look;
};

struct Format {
    const char* name;
    std::unique_ptr<Listing> (*create)(const Look& look);
};

// clang-format off
constexpr Format formats[] = {
    {"table", [](const Look& look) -> std::unique_ptr<Listing> { return std::make_unique<Table>(look); }},
    {"json",  [](const Look& look) -> std::unique_ptr<Listing> { return std::make_unique<JsonArray>(look); }},
    {"jsonl", [](const Look& look) -> std::unique_ptr<Listing> { return std::make_unique<JsonLines>(look); }},
    {"csv",   [](const Look& look) -> std::unique_ptr<Listing> { return std::make_unique<Csv>(look); }},
};
// clang-format on

}  // namespace

std::vector<std::string> listingFormats() {
    return namesIn(formats);
}

std::unique_ptr<Listing> createListing(const std::string& format, const Look& look) {
    return rowNamed(formats, format).create(look);
}

}  // namespace tool
