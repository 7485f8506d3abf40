#pragma once

#include "Losses.h"
#include "NumberedLogbook.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <vector>

namespace support {

/// What was asked of a logbook of numbered records and what of it was acknowledged. What was not is in doubt: it is
/// either done or not, until the logbook was opened again and has shown which.
class Ledger {
public:
    /// @param recordsKept 0: all
    /// @param before the number before that of the first record
    explicit Ledger(std::size_t recordsKept, std::int64_t before = 0) : capacity(recordsKept), last(before) {}

    /// The number of the record that is to be added now.
    std::int64_t adding() {
        acknowledged[++last] = false;
        return last;
    }

    /// What was being added is not there, and its number is given out again.
    void takeBack() { --last; }

    void added() { acknowledged[last] = true; }

    bool isLast(std::int64_t number) const { return number == last; }

    /// The last number that was given out.
    std::int64_t newest() const { return last; }

    void clearing() { doubtfulClears.insert(last); }

    void cleared() {
        acknowledged.clear();
        doubtfulClears.clear();
    }

    /// Holds all records of the logbook, as they were fetched, against what was acknowledged.
    Losses audit(const std::vector<Entry>& stored) const {
        return audit(stored, capacity > 0 && stored.size() >= capacity);
    }

    /// The same for one who is not alone in adding to the logbook.
    /// @param stored its own records
    /// @param isFull whether older ones may have made room
    Losses audit(const std::vector<Entry>& stored, bool isFull) const {
        Losses losses;
        std::set<std::int64_t> seen;
        std::int64_t newer = last + 1;
        for (const Entry& entry : stored) {
            const std::int64_t number = numberOf(entry);
            losses.twice += seen.insert(number).second ? 0 : 1;
            losses.torn += isWhole(entry) ? 0 : 1;
            losses.strange += acknowledged.count(number) == 0 ? 1 : 0;
            losses.misplaced += number >= newer ? 1 : 0;
            newer = number;
        }
        losses.strange += capacity > 0 && stored.size() > capacity ? 1 : 0;
        const std::int64_t first = oldestNeeded(seen, isFull);
        losses.lost += std::count_if(acknowledged.lower_bound(first), acknowledged.end(), [&](const auto& record) {
            return record.second && seen.count(record.first) == 0;
        });
        return losses;
    }

    /// What is there stays there, as far as the logbook isn't cleared.
    /// @return how many records had not been acknowledged
    std::int64_t confirm(const std::vector<Entry>& stored) {
        std::int64_t inDoubt = 0;
        for (const Entry& entry : stored) {
            bool& isKnown = acknowledged[numberOf(entry)];
            inDoubt += isKnown ? 0 : 1;
            isKnown = true;
        }
        return inDoubt;
    }

    /// Damage left these records, and may have left others of which nobody knows.
    void damaged(const std::vector<Entry>& left) {
        for (auto& [number, isKnown] : acknowledged) {
            isKnown = false;
        }
        confirm(left);
    }

    /// Ends all doubt: what is not there stays away, too.
    /// @return how many records had not been acknowledged
    std::int64_t settle(const std::vector<Entry>& stored) {
        const std::int64_t inDoubt = confirm(stored);
        cleared();
        confirm(stored);
        return inDoubt;
    }

private:
    /// Older records were removed by a clear, or dropped from a full logbook.
    std::int64_t oldestNeeded(const std::set<std::int64_t>& stored, bool isFull) const {
        const std::int64_t oldest = stored.empty() ? last + 1 : *stored.begin();
        if (isFull) {
            return oldest;
        }
        const auto behind = doubtfulClears.lower_bound(oldest);
        return behind == doubtfulClears.begin() ? 0 : *std::prev(behind) + 1;
    }

    std::size_t capacity;
    std::int64_t last;
    std::map<std::int64_t, bool> acknowledged;  // by number, all that may be stored
    std::set<std::int64_t> doubtfulClears;      // the last number before each
};

/// What stands in a logbook that was opened again.
struct Finding {
    Losses losses;
    std::int64_t inDoubt;  ///< records that are there and had not been acknowledged
};

/// Looks at all records of a logbook, which ends all doubt.
inline Finding look(const NumberedLogbook& open, Ledger& ledger) {
    const std::vector<Entry> stored = open.logbook->fetchAll();
    Losses losses = ledger.audit(stored);
    losses.torn += std::int64_t{open.database->count()} - static_cast<std::int64_t>(stored.size());
    return {losses, ledger.settle(stored)};
}

/// Whether the last record that was to be added is the newest one.
inline bool showsLast(const NumberedLogbook& open, const Ledger& ledger) {
    const std::vector<Entry> newest = open.logbook->fetch(0, 1);
    return newest.size() == 1 && ledger.isLast(numberOf(newest.front()));
}

}  // namespace support
