#pragma once

#include "TemporaryFolder.h"
#include "child.h"
#include "execute.h"
#include "spoil.h"

#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using Texts = std::vector<std::string>;

/// What was thrown: its kind and its text.
using Refusal = std::pair<standalone::Failure, std::string>;

/// The logbook of each test is lgbTest.db in a folder of its own; what looks at it opens it anew.
class SqliteLogbook : public testing::Test {
protected:
    std::unique_ptr<lgb::IDatabase> open(std::uint32_t capacity = 0) const {
        return standalone::SqliteDatabaseFactory(folder.path()).create("lgbTest", 6381, capacity);
    }

    /// For those that look at it or add to it as it is.
    standalone::SqliteDatabaseFactory factory() const {
        return standalone::SqliteDatabaseFactory(folder.path(), standalone::Capacity::OfNewAlone);
    }

    static void add(lgb::IDatabase& database, const std::string& json, std::int64_t seconds = 0) {
        database.add(json, {seconds, 0, ""});
    }

    static void addNumbers(lgb::IDatabase& database, int first, int last) {
        for (int number = first; number <= last; ++number) {
            add(database, std::to_string(number));
        }
    }

    /// By a process that is killed then: it closes nothing.
    static void doAndBeKilled(const std::function<void()>& work) {
        EXPECT_EQ(support::endOf(support::startChild(work)), 0);
    }

    void addNumbersAndBeKilled(int first, int last) const {
        doAndBeKilled([&] { addNumbers(*open().release(), first, last); });
    }

    static Texts textsIn(lgb::IDatabase& database) {
        Texts texts;
        for (const lgb::DatabaseRecord& record : database.fetch(0, 1000000)) {
            texts.push_back(record.json);
        }
        return texts;
    }

    Texts stored() const { return textsIn(*factory().create("lgbTest", 0, 0)); }

    /// What it throws; nothing when it throws nothing.
    static std::optional<Refusal> refusalOf(const std::function<void()>& operation) {
        try {
            operation();
            return std::nullopt;
        } catch (const standalone::DatabaseError& error) {
            return Refusal{error.kind(), error.what()};
        }
    }

    /// What opening is refused with.
    std::optional<Refusal> refusal() const {
        return refusalOf([this] { open(); });
    }

    /// What is told meanwhile.
    static std::string toldBy(const std::function<void()>& operation) {
        testing::internal::CaptureStderr();
        operation();
        return testing::internal::GetCapturedStderr();
    }

    /// Changes the file behind the logbook's back.
    void execute(const std::string& sql) const { support::execute(file, sql); }

    void removeFiles() const {
        for (const auto& each : {file, log, index}) {
            std::filesystem::remove(each);
        }
    }

    /// Turns a bit of a text wherever it stands, in the file and in the log.
    void spoil(const std::string& text) const {
        support::spoil(file, text);
        support::spoil(log, text);
    }

    static constexpr std::uintmax_t logSize = 128 * std::uintmax_t{1024};

    support::TemporaryFolder folder;
    const std::filesystem::path file = folder / "lgbTest.db";
    const std::filesystem::path log = folder / "lgbTest.db-wal";
    const std::filesystem::path index = folder / "lgbTest.db-shm";
};

inline Texts countingDown(int from, int to) {
    Texts numbers;
    for (int number = from; number >= to; --number) {
        numbers.push_back(std::to_string(number));
    }
    return numbers;
}
