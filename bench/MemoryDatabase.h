#pragma once

#include <lgb/IDatabase.h>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace bench {

/// Records in memory, newest first: a logbook over it costs what the library alone does.
class MemoryDatabase : public lgb::IDatabase {
public:
    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int number) override {
        const std::size_t first = std::min<std::size_t>(offset, records.size());
        const std::size_t last = first + std::min<std::size_t>(number, records.size() - first);
        return {at(first), at(last)};
    }

    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override {
        records.push_front({timestamp, json});
    }

    void clear() override { records.clear(); }

    unsigned int count() override { return static_cast<unsigned int>(records.size()); }

private:
    std::deque<lgb::DatabaseRecord>::const_iterator at(std::size_t index) const {
        return records.begin() + static_cast<std::ptrdiff_t>(index);
    }

    std::deque<lgb::DatabaseRecord> records;
};

}  // namespace bench
