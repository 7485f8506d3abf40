// Files of a logbook are damaged: bits flipped, pages overwritten, swapped, replaced by older ones or by those of
// another logbook, files cut and deleted, several of that at a time. Each time device software opens the logbook and
// goes on: each record of which a whole copy is left somewhere in the files comes back, nothing comes back that was not
// stored, what is lost is named, and the other logbook notices nothing. What must come back is known from the bytes of
// the records in the undamaged files.

#include "CapturedErrors.h"
#include "Check.h"
#include "SurvivingRows.h"
#include "TemporaryFolder.h"
#include "damages.h"
#include "lines.h"
#include "numbersOf.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace {

using damages::Damage;
using support::Fate;
using support::Files;
using support::PageSlots;
using support::Random;
using support::RowBytes;
using support::TemporaryFolder;
using Texts = std::vector<std::string>;

constexpr const char* customer = "lgbCustomer";
constexpr const char* service = "lgbService";
constexpr std::uint64_t usualRounds = 40;  // damages of several kinds at a time, for each state
constexpr std::uint64_t usualEvery = 500;

std::unique_ptr<lgb::IDatabase> open(const std::filesystem::path& folder, const char* name, std::uint32_t capacity) {
    return standalone::SqliteDatabaseFactory(folder).create(name, 0, capacity);
}

std::string lineOf(const lgb::timestamp::Timestamp& time, const std::string& json) {
    return std::to_string(time.seconds) + ' ' + std::to_string(time.nanoseconds) + ' ' + time.text + ' ' + json;
}

/// Records newest first, each as one line.
Texts linesOf(lgb::IDatabase& database) {
    Texts lines;
    for (const lgb::DatabaseRecord& record : database.fetch(0, 1000)) {
        lines.push_back(lineOf(record.timestamp, record.json));
    }
    return lines;
}

Files filesIn(const std::filesystem::path& folder) {
    const auto content = [&](const char* end) {
        const auto file = folder / (std::string(customer) + ".db" + end);
        return std::filesystem::exists(file) ? std::optional(support::contentOf(file)) : std::nullopt;
    };
    return {content(""), content("-wal"), content("-shm")};
}

lgb::timestamp::Timestamp timeOf(std::int64_t number) {
    return {number * 1000, number, "18:" + std::to_string(number)};
}

using TextOf = std::string (*)(const std::string& owner, std::int64_t number);

std::string text(const std::string& owner, std::int64_t number, std::int64_t length) {
    return owner + " record " + std::to_string(number) + ' ' +
           std::string(static_cast<std::size_t>(length), static_cast<char>('a' + number % 26));
}

std::string smallText(const std::string& owner, std::int64_t number) {
    return text(owner, number, 40);
}

/// Each fourth one takes pages of its own.
std::string mixedText(const std::string& owner, std::int64_t number) {
    return text(owner, number, number % 4 == 1 ? 2000 + number * 613 % 4000 : 40 + number % 90);
}

/// Makes a logbook step by step.
class Maker {
public:
    Maker(const char* ofWhom, std::uint32_t recordsKept) : owner(ofWhom), capacity(recordsKept) {}

    void addSmall(std::int64_t count) { add(count, smallText); }

    void addMixed(std::int64_t count) { add(count, mixedText); }

    void clear() { database().clear(); }

    void close() { used.reset(); }

    /// Does the rest of the work in a process that ends without closing.
    template <typename Work>
    void untilKilled(Work work) {
        close();
        const pid_t child = fork();
        if (child == 0) {
            work();
            _exit(std::filesystem::exists(folder / "lgbCustomer.db-wal") ? 0 : 1);
        }
        int status = 0;
        if (child == -1 || waitpid(child, &status, 0) != child || status != 0) {
            throw std::runtime_error("a logbook could not be made");
        }
    }

    /// What is there now is what an older page is taken from.
    void remember() { older = filesIn(folder.path()); }

    /// The log goes too, which would have another copy.
    void losePage(std::size_t page) {
        close();
        Files files = filesIn(folder.path());
        std::filesystem::remove(folder / "lgbCustomer.db-wal");
        files.database->replace(page * support::pageBytes, support::pageBytes, support::pageBytes, '\0');
        support::write(folder / "lgbCustomer.db", *files.database);
    }

    /// As when a copy of the database is put back, and its log stays.
    void putBackRemembered() {
        close();
        newest = filesIn(folder.path());
        support::write(folder / "lgbCustomer.db", older.database.value());
    }

    TemporaryFolder folder;
    Files older;
    std::optional<Files> newest;  // where what is there now is older than the logbook was

private:
    lgb::IDatabase& database() {
        if (!used) {
            used = open(folder.path(), customer, capacity);
        }
        return *used;
    }

    void add(std::int64_t count, TextOf textOf) {
        for (const std::int64_t end = last + count; last < end;) {
            ++last;
            database().add(textOf(owner, last), timeOf(last));
        }
    }

    std::string owner;
    std::uint32_t capacity;
    std::int64_t last = 0;
    std::unique_ptr<lgb::IDatabase> used;
};

struct Recipe {
    const char* name;
    std::uint32_t capacity;
    void (*make)(Maker&);
};

constexpr std::array<Recipe, 10> recipes = {{
    {"small", 20,
     [](Maker& maker) {
         maker.addSmall(42);
         maker.remember();
         maker.addSmall(8);
     }},
    {"mixed", 40,
     [](Maker& maker) {
         maker.addMixed(60);
         maker.remember();
         maker.addMixed(10);
     }},
    {"cleared", 30,
     [](Maker& maker) {
         maker.addSmall(40);
         maker.remember();
         maker.clear();
         maker.addSmall(15);
     }},
    {"with a log", 20,
     [](Maker& maker) {
         maker.addSmall(50);
         maker.close();
         maker.remember();
         maker.untilKilled([&] { maker.addSmall(9); });
     }},
    {"with a log begun anew", 40,
     [](Maker& maker) {
         maker.addMixed(45);
         maker.untilKilled([&] {
             maker.addMixed(20);
             maker.remember();
             maker.addMixed(25);
         });
     }},
    {"cleared in the log", 20,
     [](Maker& maker) {
         maker.addSmall(30);
         maker.untilKilled([&] {
             maker.addSmall(4);
             maker.clear();
             maker.addSmall(5);
         });
     }},
    {"healed before", 20,
     [](Maker& maker) {
         maker.addSmall(50);
         maker.losePage(6);
         maker.addSmall(3);
         maker.close();
         maker.remember();
         maker.addSmall(7);
     }},
    {"older than its log", 20,
     [](Maker& maker) {
         maker.addSmall(42);
         maker.close();
         maker.remember();
         maker.addSmall(8);
         maker.putBackRemembered();
     }},
    {"empty", 20, [](Maker& maker) { maker.clear(); }},
    {"emptied", 20,
     [](Maker& maker) {
         maker.addSmall(10);
         maker.remember();
         maker.clear();
     }},
}};

struct StoredRecord {
    std::string line;
    RowBytes bytes;
    bool isInDatabase;
};

/// A logbook, what it holds, and where that stands in its files.
struct State {
    const char* name;
    std::uint32_t capacity;
    damages::Sources sources;
    std::map<std::int64_t, StoredRecord> records;  // by number
    std::vector<RowBytes> heads;                   // each tells which logbook it is
    std::int64_t newest = 0;                       // number given out
    std::set<std::size_t> oldestPages;             // of the database, that tell which record is the oldest
};

/// Reads what the logbook holds, through SQLite alone.
void readInto(State& state, const Files& newest) {
    const TemporaryFolder folder;
    support::write(folder / "copy.db", *newest.database);
    support::write(folder / "copy.db-wal", newest.log.value_or(""));
    SQLite::Database database((folder / "copy.db").string(), SQLite::OPEN_READWRITE);
    const PageSlots slots(state.sources.whole);
    SQLite::Statement rows(database, "SELECT number, seconds, nanoseconds, time, json, checksum FROM record");
    while (rows.executeStep()) {
        const std::int64_t number = rows.getColumn(0).getInt64();
        const lgb::timestamp::Timestamp time{rows.getColumn(1).getInt64(), rows.getColumn(2).getInt64(),
                                             rows.getColumn(3).getString()};
        const std::string json = rows.getColumn(4).getString();
        const RowBytes bytes = support::tableRow(
            number, {{}, time.seconds, time.nanoseconds, time.text, json, rows.getColumn(5).getInt64()});
        if (slots.fateOf(bytes) != Fate::Whole) {
            throw std::runtime_error(std::string(state.name) + ": record " + std::to_string(number) + " was not found");
        }
        state.records.emplace(number, StoredRecord{lineOf(time, json), bytes, !slots.pagesOf(bytes).empty()});
    }
    SQLite::Statement head(database,
                           "SELECT id, capacity, cleared, checksum, coalesce((SELECT max(number) FROM "
                           "record), 0) FROM logbook");
    head.executeStep();
    const support::Blob id{head.getColumn(0).getString()};
    const std::vector<support::Field> fields = {id, head.getColumn(1).getInt64(), head.getColumn(2).getInt64(),
                                                head.getColumn(3).getInt64()};
    std::vector<support::Field> indexed = fields;
    indexed.emplace_back(std::int64_t{1});
    state.heads = {support::tableRow(1, fields), support::indexRow(indexed)};
    state.newest = std::max(head.getColumn(2).getInt64(), head.getColumn(4).getInt64());
    constexpr std::size_t root = 3;
    state.oldestPages.insert(root);
    if (!state.records.empty()) {
        state.oldestPages.merge(slots.pagesOf(state.records.begin()->second.bytes));
    }
}

State make(const Recipe& recipe) {
    Maker ours("our", recipe.capacity);
    Maker others("other", recipe.capacity);
    recipe.make(ours);
    recipe.make(others);
    ours.close();
    others.close();
    State state{recipe.name,
                recipe.capacity,
                {filesIn(ours.folder.path()), ours.older, filesIn(others.folder.path())},
                {},
                {},
                0,
                {}};
    readInto(state, ours.newest.value_or(state.sources.whole));
    return state;
}

struct Figures {
    std::uint64_t damages = 0;
    std::uint64_t healed = 0;
    std::uint64_t thereStill = 0;   // records of which the files still held a whole copy
    std::uint64_t broughtBack = 0;  // of those
    std::uint64_t unharmed = 0;     // records back as they were, though no copy has all its bytes: SQLite ignores some
    std::uint64_t inDoubt = 0;      // records whose further pages don't fit one another
    std::uint64_t nameless = 0;     // records of what can't tell any more which logbook it was
    std::uint64_t lost = 0;         // records of which no whole copy was left
    std::uint64_t untold = 0;       // of those, in a log whose rest does not tell of them
    std::uint64_t revived = 0;      // records dropped or cleared by what was damaged
    std::uint64_t crashes = 0;
    std::uint64_t hangs = 0;
    std::uint64_t wrong = 0;
    std::uint64_t refused = 0;
    std::uint64_t failures = 0;
};

/// What a child tells its parent, also when it crashes.
struct Shared {
    std::size_t next = 0;  // to be done
    Figures figures;
    std::size_t textBytes = 0;
    std::array<char, std::size_t{64} * 1024> text{};

    void fail(const std::string& what) {
        ++figures.failures;
        std::string line = what.substr(0, 1000);
        std::replace(line.begin(), line.end(), '\n', ' ');
        line += '\n';
        if (textBytes + line.size() < text.size()) {
            std::copy(line.begin(), line.end(), text.begin() + static_cast<std::ptrdiff_t>(textBytes));
            textBytes += line.size();
        }
    }
};

Shared& shareMemory() {
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "mmap");
    }
    return *new (memory) Shared;
}

/// The numbers behind each "lost:" of log lines.
std::set<std::int64_t> toldAsLost(const std::string& log) {
    std::set<std::int64_t> numbers;
    static const std::regex listed("lost: (?:records? )?([0-9, to]+)");
    static const std::regex range("([0-9]+)(?: to ([0-9]+))?");
    for (std::sregex_iterator list(log.begin(), log.end(), listed); list != std::sregex_iterator(); ++list) {
        const std::string text = (*list)[1];
        for (std::sregex_iterator one(text.begin(), text.end(), range); one != std::sregex_iterator(); ++one) {
            const std::int64_t first = std::stoll((*one)[1]);
            const std::int64_t last = (*one)[2].matched ? std::stoll((*one)[2]) : first;
            for (std::int64_t number = first; number <= std::min(last, first + 10000); ++number) {
                numbers.insert(number);
            }
        }
    }
    return numbers;
}

/// One damaged logbook and what becomes of it.
class Trial {
public:
    Trial(const State& whole, const std::filesystem::path& workFolder, std::string what, Files damagedFiles,
          support::CapturedErrors& captured, Shared& result)
        : state(whole),
          folder(workFolder),
          file(workFolder / "lgbCustomer.db"),
          description(std::move(what)),
          files(std::move(damagedFiles)),
          slots(files),
          errors(captured),
          shared(result) {}

    void run() {
        ++figures().damages;
        place();
        errors.take();
        try {
            const Texts found = firstOpening();
            judge(found);
            goesOn(found);
        } catch (const std::exception& exception) {
            ++figures().refused;
            fail(std::string("does not record: ") + exception.what());
        }
    }

private:
    Figures& figures() { return shared.figures; }

    void fail(const std::string& what) { shared.fail(std::string(state.name) + ", " + description + ": " + what); }

    void expect(bool holds, const std::string& what) {
        if (!holds) {
            fail(what);
        }
    }

    void place() const {
        const std::array<std::pair<const char*, const std::optional<std::string>&>, 3> all = {
            {{"", files.database}, {"-wal", files.log}, {"-shm", files.index}}};
        for (const auto& [end, content] : all) {
            std::filesystem::remove(file.string() + end);
            if (content) {
                support::write(file.string() + end, *content);
            }
        }
    }

    Texts firstOpening() {
        const auto database = open(folder, customer, state.capacity);
        Texts found = linesOf(*database);
        log = errors.take();
        return found;
    }

    bool isLogTouched() const { return files.log != state.sources.whole.log; }

    bool isHeadLeft() const {
        return std::any_of(state.heads.begin(), state.heads.end(),
                           [&](const RowBytes& head) { return slots.fateOf(head) == Fate::Whole; });
    }

    /// Whether the files can't tell any more which records were dropped or cleared.
    bool mayRevive() const {
        const auto page = [](const std::optional<std::string>& all, std::size_t number) {
            const std::size_t at = number * support::pageBytes;
            return all && at < all->size() ? all->substr(at, support::pageBytes) : "";
        };
        return isLogTouched() || !isHeadLeft() ||
               std::any_of(state.oldestPages.begin(), state.oldestPages.end(), [&](std::size_t number) {
                   return page(files.database, number) != page(state.sources.whole.database, number);
               });
    }

    void judge(const Texts& found) {
        std::set<std::string> back(found.begin(), found.end());
        expect(back.size() == found.size(), "a record came back twice");
        // An older page in the place of the oldest one fits all others, until the next record drops what it revived.
        expect(found.size() <= state.capacity || mayRevive(), "more records than are kept");
        isNothingLeft = found.empty();
        const std::set<std::int64_t> toldLost = toldAsLost(log);
        for (const auto& [number, record] : state.records) {
            judge(number, record, back.erase(record.line) == 1, toldLost);
        }
        expect(notBroughtBack.empty(), "whole, and not brought back:" + notBroughtBack);
        expect(notNamed.empty(), "lost, and not named:" + notNamed);
        for (const std::string& line : back) {
            judgeUnexpected(line);
        }
        const auto secondsOf = [](const std::string& line) { return std::stoll(line); };
        expect(std::is_sorted(found.begin(), found.end(),
                              [&](const auto& one, const auto& other) { return secondsOf(one) > secondsOf(other); }),
               "records are out of order");
        figures().healed += support::occurrences(log, "; healed with ");
    }

    void judge(std::int64_t number, const StoredRecord& record, bool isBack, const std::set<std::int64_t>& toldLost) {
        const Fate fate = slots.fateOf(record.bytes);
        figures().inDoubt += fate == Fate::InDoubt ? 1U : 0U;
        if (fate == Fate::Whole && !isBack && !isHeadLeft()) {
            ++figures().nameless;
        } else if (fate == Fate::Whole) {
            ++figures().thereStill;
            figures().broughtBack += isBack ? 1U : 0U;
            notBroughtBack += isBack ? "" : ' ' + std::to_string(number);
        }
        figures().unharmed += fate == Fate::Gone && isBack ? 1U : 0U;
        if (fate == Fate::Gone && !isBack) {
            ++figures().lost;
            const bool isTold = toldLost.count(number) != 0;
            const bool mustBeTold = record.isInDatabase && !isLogTouched();
            figures().untold += isTold ? 0U : 1U;
            notNamed += isTold || !mustBeTold ? "" : ' ' + std::to_string(number);
        }
    }

    /// Neither what others stored, nor what was dropped or cleared, as long as that can be known.
    void judgeUnexpected(const std::string& line) {
        const std::int64_t number = std::stoll(line) / 1000;
        const bool isOurs = line == lineOf(timeOf(number), smallText("our", number)) ||
                            line == lineOf(timeOf(number), mixedText("our", number));
        figures().wrong += isOurs ? 0U : 1U;
        expect(isOurs, "a record that was never stored: " + line.substr(0, 100));
        figures().revived += isOurs && mayRevive() ? 1U : 0U;
        expect(!isOurs || mayRevive(), "a record that was dropped or cleared: " + line.substr(0, 60));
    }

    /// Adding goes on, also for whoever opens the logbook next.
    void goesOn(const Texts& found) {
        const std::string added = "9000000 9 now added";
        Texts page;
        {
            const auto database = open(folder, customer, state.capacity);
            database->add("added", {9000000, 9, "now"});
            page = linesOf(*database);
            expect(!page.empty() && page.front() == added, "the record that was added is not the newest");
            Texts expected{added};
            expected.insert(expected.end(), found.begin(), found.end());
            expected.resize(std::min<std::size_t>(expected.size(), state.capacity));
            expect(page == expected, "adding changed the other records");
        }
        expect(linesOf(*open(folder, customer, state.capacity)) == page, "opened again, it shows something else");
        const std::string later = errors.take();
        expect(later.empty(), "opened again, it says: " + later);
        judgeNumbers();
        judgeSetAside();
    }

    void judgeNumbers() {
        const support::Numbers now = support::numbersOf(file);
        expect(now.areWithoutGaps, "its numbers have gaps that are not named, or overlap");
        const std::string& head = state.heads.front().cell;
        const bool isSame = head.find(now.id) != std::string::npos;
        const bool mayBeginAnew = isNothingLeft && isLogTouched();  // nothing tells how far numbers had come
        expect(isSame || !isHeadLeft() || mayBeginAnew, "it has become another logbook");
        expect(!isSame || isLogTouched() || now.newest > state.newest, "a number was given out twice");
    }

    void judgeSetAside() {
        static const std::regex name("the damaged files are kept as ([^;\n]*\\.db)");
        std::smatch kept;
        if (std::regex_search(log, kept, name)) {
            const std::string database = kept[1];
            const std::string before = files.database.value_or("");
            const bool isNothing = before.size() == 1;  // SQLite takes a file of one byte for an empty one
            expect(isNothing || support::contentOf(database) == before, "the database was not set aside as it was");
            const bool isLogElsewhere = log.find("is the log of another logbook, and kept") != std::string::npos;
            expect(isLogElsewhere || support::contentOf(database + "-wal") == files.log.value_or(""),
                   "its log was not set aside as it was");
        }
        std::size_t sets = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string entryName = entry.path().filename();
            sets += entryName.find(".damaged-") != std::string::npos && entry.path().extension() == ".db" ? 1U : 0U;
        }
        constexpr std::size_t mostSets = 2;
        expect(sets <= mostSets, std::to_string(sets) + " sets of damaged files are kept");
    }

    const State& state;
    const std::filesystem::path& folder;
    std::filesystem::path file;
    std::string description;
    Files files;
    PageSlots slots;
    support::CapturedErrors& errors;
    Shared& shared;
    std::string log;  // lines of the first opening
    std::string notBroughtBack;
    std::string notNamed;
    bool isNothingLeft = false;
};

/// What happens at once; the random numbers of each are its own, so that it can be repeated alone.
using Case = std::vector<Damage>;

std::vector<Case> casesOf(const State& state, const damages::Density& density, std::uint64_t severalAtATime,
                          Random& random) {
    const Files& files = state.sources.whole;
    std::vector<Damage> singles = damages::ofFile(&Files::database, files.database, density, random);
    const std::vector<Damage> ofLog = damages::ofFile(&Files::log, files.log, density, random);
    singles.insert(singles.end(), ofLog.begin(), ofLog.end());
    singles.push_back({&damages::deleted, &Files::log, {0, 0}});
    std::vector<Case> cases;
    for (const Damage& damage : singles) {
        cases.push_back({damage});
    }
    for (std::uint64_t i = 0; i < severalAtATime; ++i) {
        Case several;
        for (std::int64_t count = 2 + support::upTo(random, 3); count > 0; --count) {
            several.push_back(singles[damages::below(random, singles.size())]);
        }
        cases.push_back(std::move(several));
    }
    return cases;
}

class Workplace {
public:
    Workplace() {
        const auto other = open(folder.path(), service, 20);
        for (int number = 1; number <= 50; ++number) {
            other->add("service record " + std::to_string(number), {});
        }
    }

    /// The files of the logbook that is not damaged.
    std::string other() const {
        return support::contentOf(folder / "lgbService.db") + support::contentOf(folder / "lgbService.db-wal");
    }

    bool otherGoesOn(const std::string& text) const {
        const auto database = open(folder.path(), service, 20);
        database->add(text, {});
        return linesOf(*database).front() == "0 0  " + text;
    }

    TemporaryFolder folder;
};

void tryCase(const State& state, const Case& happens, std::uint32_t seed, const Workplace& workplace,
             support::CapturedErrors& errors, Shared& shared) {
    constexpr unsigned int longest = 10;  // seconds
    Files files = state.sources.whole;
    files.index.reset();
    Random random(seed);
    std::string description = "seed " + std::to_string(seed);
    if (support::oneIn(random, 8)) {
        files.index =
            support::oneIn(random, 2) ? state.sources.older.index : std::string(std::size_t{32} * 1024, '\xa5');
        description += ", a strange index";
    }
    for (const Damage& damage : happens) {
        damage.apply(state.sources, random, files);
        description += ", " + damage.text();
    }
    const std::string other = workplace.other();
    alarm(longest);
    Trial(state, workplace.folder.path(), description, std::move(files), errors, shared).run();
    alarm(0);
    if (workplace.other() != other) {
        shared.fail(description + ": the other logbook was touched");
    }
}

/// Does the cases in child processes, so that a crash costs one of them.
void tryAll(const State& state, const std::vector<Case>& cases, std::uint32_t seed, const Workplace& workplace,
            Shared& shared) {
    support::CapturedErrors errors;
    for (shared.next = 0; shared.next < cases.size();) {
        const pid_t child = fork();
        if (child == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);  // the folder goes with the parent
            for (; shared.next < cases.size(); ++shared.next) {
                tryCase(state, cases[shared.next], seed + static_cast<std::uint32_t>(shared.next), workplace, errors,
                        shared);
            }
            std::exit(0);  // which a coverage build counts up to
        }
        int status = 0;
        if (child == -1 || waitpid(child, &status, 0) != child) {
            throw std::system_error(errno, std::generic_category(), "fork");
        }
        if (shared.next < cases.size()) {
            const bool isHang = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
            ++(isHang ? shared.figures.hangs : shared.figures.crashes);
            std::string what = std::string(state.name) + (isHang ? ", hangs" : ", crashes");
            for (const Damage& damage : cases[shared.next]) {
                what += ", " + damage.text();
            }
            shared.fail(what + ": " + errors.take());
            ++shared.next;
        }
    }
}

void conclude(const Shared& shared, support::Failures& failures) {
    std::string text(shared.text.data(), shared.textBytes);
    std::size_t told = 0;
    for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        failures.expect(false, text.substr(at, end - at));
        ++told;
    }
    for (; told < shared.figures.failures; ++told) {
        failures.expect(false, "and more of that");
    }
}

int run(int argc, char** argv) {
    std::uint64_t every = usualEvery;
    std::string only;
    const support::Extent extent = support::extentOf(argc, argv, usualRounds,
                                                     {{"--every", &every, "damage only each n-th byte"},
                                                      {"--only", &only, "the state of the logbook to be damaged"}});
    const damages::Density density{static_cast<std::size_t>(every), static_cast<std::size_t>(1 + every / 50),
                                   static_cast<std::size_t>(2 + extent.rounds / 10)};
    Shared& shared = shareMemory();
    support::Failures failures;
    Random random(extent.seed);
    const Workplace workplace;
    for (const Recipe& recipe : recipes) {
        if (only.empty() || only == recipe.name) {
            const State state = make(recipe);
            tryAll(state, casesOf(state, density, extent.rounds, random), static_cast<std::uint32_t>(random()),
                   workplace, shared);
            failures.expect(workplace.otherGoesOn(recipe.name), "the other logbook does not go on");
        }
    }
    conclude(shared, failures);
    const Figures& figures = shared.figures;
    failures.expect(figures.damages > 0 && figures.healed > 0 && figures.lost > 0, "too few damages to tell");
    const auto number = [](std::uint64_t value) { return std::to_string(value); };
    return failures.conclude(
        "damaged files: " + number(figures.damages) + " damages, " + number(figures.healed) + " healed, " +
        number(figures.thereStill) + " records still there, " + number(figures.broughtBack) + " brought back, " +
        number(figures.lost) + " lost (" + number(figures.untold) + " in a log that does not tell of them), " +
        number(figures.unharmed) + " unharmed, " + number(figures.inDoubt) + " unclear by their chains of pages, " +
        number(figures.nameless) + " by a lost name, " + number(figures.revived) + " older ones revived, " +
        number(figures.wrong) + " wrong, " + number(figures.crashes) + " crashes, " + number(figures.hangs) +
        " hangs, " + number(figures.refused) + " can't record");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
