#include "scenes.h"

#include "child.h"
#include "numbersOf.h"

#include <standalone/SqliteDatabaseFactory.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <exception>
#include <set>
#include <utility>

namespace support {

namespace {

std::unique_ptr<lgb::IDatabase> openLogbook(const std::filesystem::path& folder, std::uint32_t capacity) {
    return standalone::SqliteDatabaseFactory(folder).create("lgbCustomer", 0, capacity);
}

std::string textOf(int number) {
    const std::size_t length = number % 8 == 3 ? 3000 : 40;
    return "record " + std::to_string(number) + ' ' + std::string(length, static_cast<char>('a' + number % 26));
}

void addRecords(lgb::IDatabase& database, int first, int last) {
    for (int number = first; number <= last; ++number) {
        database.add(textOf(number), {number, number, "18:00"});
    }
}

int numberOf(const std::string& text) {
    return std::atoi(text.substr(std::min(text.size(), std::string("record ").size())).c_str());
}

/// Whether these records, newest first, are some of those above.
bool wereAdded(const Texts& texts) {
    int last = INT_MAX;
    return std::all_of(texts.begin(), texts.end(), [&](const std::string& text) {
        const int number = numberOf(text);
        return number < std::exchange(last, number) && text == textOf(number);
    });
}

std::string& databaseIn(Folder& folder) {
    return folder["lgbCustomer.db"];
}

std::string& logIn(Folder& folder) {
    return folder["lgbCustomer.db-wal"];
}

/// As a closed logbook leaves it.
Folder closed(std::uint32_t capacity, int records) {
    const TemporaryFolder folder;
    addRecords(*openLogbook(folder.path(), capacity), 1, records);
    return filesOf(folder.path());
}

/// As a killed writer leaves it, with its last records in the log alone.
Folder killed(std::uint32_t capacity, int records, int recordsInLog) {
    const TemporaryFolder folder;
    addRecords(*openLogbook(folder.path(), capacity), 1, records);
    endOf(startChild([&] {
        const auto database = openLogbook(folder.path(), capacity);
        addRecords(*database, records + 1, records + recordsInLog);
        _exit(0);
    }));
    return filesOf(folder.path());
}

constexpr std::size_t pageBytes = 1024;
constexpr std::size_t logHeaderBytes = 32;
constexpr std::size_t frameBytes = 24 + pageBytes;

void flipByte(std::string& file, std::size_t at) {
    file.at(at) = static_cast<char>(file.at(at) ^ 0x10);
}

Folder withPageLost(std::size_t page, Folder folder) {
    databaseIn(folder).replace((page - 1) * pageBytes, pageBytes, pageBytes, '\0');
    return folder;
}

Folder withRecordChanged(int record, Folder folder) {
    const std::string begin = "record " + std::to_string(record);
    flipByte(databaseIn(folder), databaseIn(folder).find(begin) + begin.size() + 3);
    return folder;
}

Folder withDatabaseCutTo(std::size_t bytes, Folder folder) {
    databaseIn(folder).resize(bytes);
    return folder;
}

Folder withFrameOfLogDamaged(std::size_t frame, Folder folder) {
    flipByte(logIn(folder), logHeaderBytes + frame * frameBytes + 600);
    return folder;
}

/// Where the newest frame of a log begins: those behind it are left from before the log began anew.
std::size_t lastFrame(const std::string& log) {
    constexpr std::size_t saltsAt = 16;
    std::size_t at = logHeaderBytes;
    while (at + 2 * frameBytes <= log.size() && log.compare(at + frameBytes + 8, 8, log, saltsAt, 8) == 0) {
        at += frameBytes;
    }
    return at;
}

Folder withFrameBeforeTheLastDamaged(Folder folder) {
    flipByte(logIn(folder), lastFrame(logIn(folder)) - frameBytes + 300);
    return folder;
}

Folder withLastCommitDamaged(Folder folder) {
    flipByte(logIn(folder), lastFrame(logIn(folder)) + 9);
    return folder;
}

Folder withLogOf(Folder other, Folder folder) {
    logIn(folder) = logIn(other);
    return folder;
}

Folder withoutDatabase(Folder folder) {
    folder.erase("lgbCustomer.db");
    return folder;
}

Folder writtenWithoutLog(Folder folder) {
    databaseIn(folder)[18] = '\1';
    databaseIn(folder)[19] = '\1';
    folder.erase("lgbCustomer.db-wal");
    return folder;
}

/// An older database was put back beside the log of the newest.
Folder withLogOfLater(int first, int last, Folder folder) {
    const TemporaryFolder later;
    write(later / "lgbCustomer.db", databaseIn(folder));
    addRecords(*openLogbook(later.path(), 1), first, last);
    return withLogOf(filesOf(later.path()), std::move(folder));
}

Folder withTwoSetsAside(Folder folder) {
    folder["lgbCustomer.damaged-1.db"] = "one";
    folder["lgbCustomer.damaged-1.db-wal"] = "its log";
    folder["lgbCustomer.damaged-2.db"] = "another";
    return folder;
}

/// In that order, and perhaps with others in between.
bool isIn(const Texts& some, const Texts& all) {
    auto next = some.begin();
    for (const std::string& text : all) {
        next += next != some.end() && *next == text ? 1 : 0;
    }
    return next == some.end();
}

}  // namespace

const std::vector<Scene>& scenes() {
    constexpr std::size_t sixPagesAndSome = 6 * pageBytes + 100;
    static const std::vector<Scene> all = {
        {"nothing", 20, 0, false, [] { return Folder(); }},
        {"a whole logbook", 20, 20, false, [] { return closed(20, 50); }},
        {"a logbook that is to grow", 600, 20, false, [] { return closed(20, 50); }},
        {"a logbook that was written without a log", 20, 20, false, [] { return writtenWithoutLog(closed(20, 50)); }},
        {"a log left by a killed writer", 20, 20, false, [] { return killed(20, 45, 9); }},
        {"a page of records lost", 20, 20, true, [] { return withPageLost(7, closed(20, 50)); }},
        {"the root of records lost", 40, 40, true, [] { return withPageLost(4, closed(40, 70)); }},
        {"the header lost", 20, 20, true, [] { return withPageLost(1, closed(20, 50)); }},
        {"a record changed", 40, 40, true, [] { return withRecordChanged(55, closed(40, 60)); }},
        {"a record changed, newer ones in the log", 40, 40, true,
         [] { return withRecordChanged(50, killed(40, 60, 6)); }},
        {"a short database", 20, 17, true, [] { return withDatabaseCutTo(sixPagesAndSome, closed(20, 50)); }},
        {"an empty database", 20, 20, true, [] { return withDatabaseCutTo(0, closed(20, 50)); }},
        {"a damaged log", 20, 20, true, [] { return withFrameOfLogDamaged(5, killed(20, 45, 9)); }},
        {"a log damaged near its end", 20, 20, true, [] { return withFrameBeforeTheLastDamaged(killed(20, 45, 9)); }},
        {"a log whose last commit is damaged", 20, 20, true, [] { return withLastCommitDamaged(killed(20, 45, 9)); }},
        {"a damaged log and a page lost", 20, 20, true,
         [] { return withPageLost(6, withFrameOfLogDamaged(2, killed(20, 45, 9))); }},
        {"the log of another logbook", 20, 20, true, [] { return withLogOf(killed(20, 10, 5), closed(20, 50)); }},
        {"a log without its database", 20, 0, true, [] { return withoutDatabase(killed(20, 45, 9)); }},
        {"an older database", 20, 20, true, [] { return withLogOfLater(51, 55, closed(20, 50)); }},
        {"a page lost for the third time", 300, 290, true,
         [] { return withTwoSetsAside(withPageLost(20, closed(300, 320))); }},
        {"a record changed among few", 7, 6, true, [] { return withRecordChanged(9, closed(7, 10)); }},
        {"a damaged log of few", 7, 7, true, [] { return withFrameOfLogDamaged(1, killed(7, 7, 3)); }},
        {"a log of few, damaged near its end", 7, 7, true,
         [] { return withFrameBeforeTheLastDamaged(killed(7, 7, 3)); }},
        {"a page of few lost for the third time", 7, 0, true,
         [] { return withTwoSetsAside(withPageLost(1, closed(7, 10))); }},
        {"the log of another logbook beside few", 7, 7, true, [] { return withLogOf(killed(7, 2, 2), closed(7, 10)); }},
    };
    return all;
}

Texts textsOf(lgb::IDatabase& database) {
    Texts texts;
    for (const lgb::DatabaseRecord& record : database.fetch(0, 1000)) {
        texts.push_back(record.json);
    }
    return texts;
}

Stage::Stage(const Scene& ofThis) : scene(ofThis), begin(scene.begin()) {
    reset();
    undisturbed = textsOf(*open());
    open()->add("the next one", {});
    nextNumber = numbersOf(database()).newest;
}

std::filesystem::path Stage::database() const {
    return place() / "lgbCustomer.db";
}

std::unique_ptr<lgb::IDatabase> Stage::open() const {
    return openLogbook(place(), scene.capacity);
}

void Stage::reset() const {
    std::filesystem::remove_all(place());
    if (!begin.empty()) {
        std::filesystem::create_directory(place());
    }
    for (const auto& [file, content] : begin) {
        write(place() / file, content);
    }
}

void Stage::look(const std::string& what, const std::vector<Added>& added, Aftermath& aftermath, Failures& failures,
                 bool mayLack) const {
    const std::string where = title() + ", " + what + ": ";
    try {
        const auto database = open();
        judge(textsOf(*database), added, where, aftermath, failures, mayLack);
        database->add("afterwards", {});
        const bool goesOn = textsOf(*database).front() == "afterwards";
        failures.expect(goesOn, where + "recording does not go on");
        aftermath.lost += goesOn ? 0U : 1U;
    } catch (const std::exception& exception) {
        ++aftermath.refused;
        failures.expect(false, where + exception.what());
        return;
    }
    judgeNumbers(where, failures, mayLack);
    judgeFolder(where, aftermath, failures);
}

/// In front of what an undisturbed process found stands what was acknowledged, and may stand what was not.
void Stage::judge(const Texts& found, const std::vector<Added>& added, const std::string& where, Aftermath& aftermath,
                  Failures& failures, bool mayLack) const {
    std::size_t at = 0;
    for (auto record = added.rbegin(); record != added.rend(); ++record) {
        const bool isThere = at < found.size() && found[at] == record->text;
        at += isThere ? 1U : 0U;
        if (record->isAcknowledged && !isThere) {
            ++aftermath.lost;
            failures.expect(false, "acknowledged records were lost: " + where + record->text);
        }
    }
    const std::size_t room = scene.capacity - at;
    const Texts expected(undisturbed.begin(),
                         undisturbed.begin() + static_cast<std::ptrdiff_t>(std::min(room, undisturbed.size())));
    const Texts older(found.begin() + static_cast<std::ptrdiff_t>(at), found.end());
    if (older != expected && !(mayLack && wereAdded(older))) {
        const bool isLess = isIn(older, expected);
        ++(isLess ? aftermath.lost : aftermath.strange);
        failures.expect(
            false, where + std::to_string(older.size()) + " records instead of " + std::to_string(expected.size()));
    }
}

void Stage::judgeNumbers(const std::string& where, Failures& failures, bool mayLack) const {
    const Numbers numbers = numbersOf(database());
    failures.expect(numbers.areWithoutGaps, where + "numbers have gaps");
    const std::int64_t newestFound = undisturbed.empty() ? 0 : numberOf(undisturbed.front());
    failures.expect(numbers.newest >= (mayLack ? newestFound + 1 : nextNumber), where + "a number was given out twice");
}

void Stage::judgeFolder(const std::string& where, Aftermath& aftermath, Failures& failures) const {
    std::set<std::string> sets;
    std::string others;
    for (const auto& [file, content] : filesOf(place())) {
        const std::size_t end = file.find(".db");
        if (file.find(".damaged-") != std::string::npos) {
            sets.insert(file.substr(0, end));
        } else if (file.find("-making") != std::string::npos || file.find("-healed") != std::string::npos) {
            others += ' ' + file;
        }
    }
    const std::size_t mostSets = scene.isDamaged ? 2 : 0;
    const bool isTidy = sets.size() <= mostSets && others.empty();
    aftermath.leftBehind += isTidy ? 0U : 1U;
    failures.expect(isTidy, where + std::to_string(sets.size()) + " sets of damaged files are left, and" + others);
}

}  // namespace support
