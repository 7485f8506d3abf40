#include "commands.h"
#include "entries.h"
#include "logbooks.h"
#include "moments.h"
#include "terminal.h"
#include "words.h"

#include <lgb/Entry.h>
#include <standalone/errors.h>

#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

namespace {

/// What it is that a logbook does not show, and why not.
std::string describe(const ReadEntry& read) {
    const bool hasCode = isRead(read) && !lgb::isServiceOnly(read.entry);
    const std::string code = hasCode ? ", " + codeOf(read.entry) + ',' : "";
    const std::string reason = read.reason.empty() ? "" : ": " + printable(read.reason);
    return "entry " + std::to_string(read.number) + code + " is " + nameOf(read.standing) + reason;
}

/// What is listed below a file.
std::string item(const std::string& text, std::size_t width) {
    return hanging("  - ", text, width);
}

/// Prints what the file says of itself.
void describe(const standalone::LogbookDescription& logbook, std::size_t width) {
    const std::string kept = logbook.capacity == 0 ? "all entries" : "the newest " + entries(logbook.capacity);
    std::cout << item("id " + logbook.id + ", keeps " + kept, width);
    for (const standalone::LostRange& range : logbook.lost) {
        std::cout << item(entriesFrom(range.first, range.last) + " lost, found " + utc(range.found), width);
    }
}

/// Prints whether every entry can be read, and which can't.
bool entriesAreReadable(const Selection& selection, std::size_t width) {
    standalone::LogbookReader reader(fileOf(selection));
    std::int64_t all = 0;
    std::int64_t shown = 0;
    std::string faults;
    forEachEntry(reader, {true, 0}, isService(selection), [&](ReadEntry&& read) {
        ++all;
        if (read.standing == Standing::Shown) {
            ++shown;
        } else {
            faults += item(describe(read), width);
        }
        return true;
    });
    std::cout << "sound, " << shown << " of " << entries(all) << " readable\n" << faults;
    describe(reader.description(), width);
    return shown == all;
}

/// Prints what a file is like.
/// @param width of the terminal in columns; 0: no limit
/// @return whether all of it is as it should be
bool isSound(const Selection& selection, std::size_t width) {
    const std::string prefix = fileOf(selection).string() + ": ";
    std::cout << printable(prefix);
    try {
        const auto damage = standalone::structuralDamage(fileOf(selection));
        std::cout << (damage.empty() ? "" : "damaged\n");
        for (const std::string& line : damage) {
            std::cout << item(printable(line), width);
        }
        return damage.empty() && entriesAreReadable(selection, width);
    } catch (const standalone::DatabaseError& error) {
        const std::string text = error.what();
        std::cout << printable(text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text) << '\n';
        return false;
    }
}

/// Prints which damaged files were set aside when the logbook was healed.
void listSetAside(const Selection& selection, std::size_t width) {
    try {
        for (const std::filesystem::path& file : standalone::filesSetAside(fileOf(selection))) {
            std::cout << item("set aside when it was damaged: " + printable(file.string()), width);
        }
    } catch (const standalone::DatabaseError&) {  // of the folder, as the logbook's line has told
    }
}

void check(const Selection& selection) {
    const std::size_t width = terminalWidth();
    const Pager pager(true);
    bool sound = true;
    for (const std::string& name : selection.logbook.empty() ? logbookNames : std::vector{selection.logbook}) {
        const Selection each{selection.folder, name};
        sound = isSound(each, width) && sound;
        listSetAside(each, width);
    }
    if (!sound) {
        throw std::runtime_error("not everything is as it should be");
    }
}

}  // namespace

void declareCheck(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("check", "Check the files: whether they are sound and each entry readable");
    declareLogbook(command, selection)->required(false)->description("The logbook, both unless given");
    command.callback([&selection] { check(selection); });
}

}  // namespace tool
