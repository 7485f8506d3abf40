#pragma once

#include <lgb/IDatabase.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace bench {

/// Records in memory, newest first: a logbook over it costs what the library alone does.
class MemoryDatabase : public lgb::IDatabase {
public:
    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int number) override {
        const auto from = records.begin() + std::min<std::ptrdiff_t>(offset, std::ptrdiff_t(records.size()));
        return {from, from + std::min<std::ptrdiff_t>(number, records.end() - from)};
    }

    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override {
        records.push_front({timestamp, json});
    }

    void clear() override { records.clear(); }

    unsigned int count() override { return static_cast<unsigned int>(records.size()); }

private:
    std::deque<lgb::DatabaseRecord> records;
};

}  // namespace bench
