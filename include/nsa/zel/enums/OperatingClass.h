#pragma once

#include <nsa/zel/enums/spelling.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// Operating class of an RF path: AB, A, and eight steps between them.
enum class OperatingClass : std::int32_t {
    AB = 0,
    Step1 = 1,
    Step2 = 2,
    Step3 = 3,
    Step4 = 4,
    Step5 = 5,
    Step6 = 6,
    Step7 = 7,
    Step8 = 8,
    A = 9,
};

/// How each value is spelled in JSON text. Stored in parameter records: append, never change.
inline constexpr std::array<std::string_view, 10> operatingClassSpellings{"AB",    "step1", "step2", "step3", "step4",
                                                                          "step5", "step6", "step7", "step8", "A"};

/// Writes the spelling; nothing for a number outside the enumeration.
inline std::ostream& operator<<(std::ostream& stream, OperatingClass value) {
    return write(stream, spelling(operatingClassSpellings, value));
}

}  // namespace tqbase2::nsa::zel::enums
