#pragma once

#include "Check.h"

#include <cstdint>
#include <string>

namespace support {

/// What is wrong with what a logbook holds.
struct Losses {
    std::int64_t lost = 0;
    std::int64_t twice = 0;
    std::int64_t torn = 0;
    std::int64_t strange = 0;
    std::int64_t misplaced = 0;

    Losses& operator+=(const Losses& more) {
        lost += more.lost;
        twice += more.twice;
        torn += more.torn;
        strange += more.strange;
        misplaced += more.misplaced;
        return *this;
    }

    void expectNone(Failures& failures) const {
        failures.expect(lost == 0, "acknowledged records were lost");
        failures.expect(twice == 0, "records were stored twice");
        failures.expect(torn == 0, "records came back in part");
        failures.expect(strange == 0, "there were records that should not be there");
        failures.expect(misplaced == 0, "records were out of order");
    }

    std::int64_t all() const { return lost + twice + torn + strange + misplaced; }

    std::string text() const {
        return std::to_string(lost) + " lost, " + std::to_string(twice) + " twice, " + std::to_string(torn) +
               " torn, " + std::to_string(strange) + " strange, " + std::to_string(misplaced) + " misplaced";
    }
};

}  // namespace support
