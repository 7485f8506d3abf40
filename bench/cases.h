#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// What is measured: `run`, on what `prepare` has put in place.
struct Work {
    std::function<void()> run;
    std::function<void()> prepare = {};  ///< may be missing

    void doPrepare() const {
        if (prepare) {
            prepare();
        }
    }
};

/// Something that a user does with the library, and its floor: the same with nothing but the unavoidable.
struct Case {
    std::string name;
    unsigned int entries;  ///< that one run adds or gives
    std::function<Work()> product;
    std::function<Work()> floor;
    unsigned int runs = 1;  ///< to take the mean of
};

const std::vector<Case>& cases();

/// @throws std::invalid_argument when there is no such case
const Case& caseOf(const std::string& name);

/// @param side "product" or "floor"
/// @throws std::invalid_argument for another one
Work workOf(const Case& measured, const std::string& side);

}  // namespace bench
