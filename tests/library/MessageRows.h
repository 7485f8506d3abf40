#pragma once

#include <set>
#include <string>
#include <vector>

/// The tests' own list of messages: ids with the texts in full, never made from the tables under test.
namespace librarytest {

inline const std::string module3Bus1 = R"({"bus":1,"module":3})";

struct Row {
    unsigned int id;
    const char* text;
};

struct MemberRow {
    unsigned int id;
    const char* text;         ///< for a record with every member
    const char* ofNoMembers;  ///< for {}
};

struct SharedRow {
    unsigned int id;
    const char* error;
    const char* warning;
};

template <typename Rows>
std::set<unsigned int> idsOf(const Rows& rows) {
    std::set<unsigned int> ids;
    for (const auto& row : rows) {
        ids.insert(row.id);
    }
    return ids;
}

inline std::set<unsigned int> joined(std::set<unsigned int> ids, const std::set<unsigned int>& others) {
    ids.insert(others.begin(), others.end());
    return ids;
}

/// The ids from 0 to 330, where all messages are, that are not among these.
inline std::vector<unsigned int> idsBesides(const std::set<unsigned int>& known) {
    std::vector<unsigned int> others;
    for (unsigned int id = 0; id <= 330; ++id) {
        if (known.count(id) == 0) {
            others.push_back(id);
        }
    }
    return others;
}

/// What errors and warnings say alike, for module3Bus1.
// clang-format off
inline const std::vector<SharedRow> sharedTexts{
    {  1, "Too high temperature for amplifier 3 on bus 1",              "Too high temperature for amplifier 3 on bus 1"},
    {  6, "Too low current for amplifier 3 on bus 1",                   "Too low current for amplifier 3 on bus 1 reduced RF Power"},
    {  7, "-5V out of range for amplifier 3 on bus 1",                  "-5V out of range for amplifier 3 on bus 1"},
    { 12, "Setting to Operate 0 failed for amplifier 3 on bus 1",       "Setting to Operate 0 failed for amplifier 3 on bus 1"},
    { 14, "Setting attenuation failed for amplifier 3 on bus 1",        "Setting attenuation failed for amplifier 3 on bus 1"},
    { 44, "Setting current failed for amplifier 3 on bus 1",            "Setting current failed for amplifier 3 on bus 1"},
    { 63, "Too low driver current for amplifier 3 on bus 1",            "Too low driver current for amplifier 3 on bus 1 reduced RF Power"},
    {202, "VDD out of range for amplifier 3 on bus 1",                  "VDD out of range for amplifier 3 on bus 1 reduced RF Power"},
    {204, "Too low pre driver current for amplifier 3 on bus 1",        "Too low pre driver current for amplifier 3 on bus 1 reduced RF Power"},
    {210, "Setting vGateHmc994 failed for amplifier 3 on bus 1",        "Setting vGateHmc994 failed for amplifier 3 on bus 1"},
    {214, "6V-Switched out of range for amplifier 3 on bus 1",          "6V-Switched out of range for amplifier 3 on bus 1"},
    {215, "VDD_1 out of range for amplifier 3 on bus 1",                "VDD_1 out of range for amplifier 3 on bus 1 reduced RF Power"},
    {216, "VDD_2 out of range for amplifier 3 on bus 1",                "VDD_2 out of range for amplifier 3 on bus 1 reduced RF Power"},
    {217, "Unexpected VDD for amplifier 3 on bus 1",                    "Unexpected VDD for amplifier 3 on bus 1"},
    {225, "VD_DRV out of range for amplifier 3 on bus 1",               "VD_DRV out of range for amplifier 3 on bus 1 reduced RF Power"},
    {226, "VD_PRE_DRV out of range for amplifier 3 on bus 1",           "VD_PRE_DRV out of range for amplifier 3 on bus 1 reduced RF Power"},
    {227, "Setting POTI 0 failed for power detector 3 on bus 1",        "Setting POTI 0 failed for power detector 3 on bus 1"},
    {228, "Setting POTI 1 failed for power detector 3 on bus 1",        "Setting POTI 1 failed for power detector 3 on bus 1"},
    {235, "Gate current out of range for amplifier 3 on bus 1",         "Gate current out of range for amplifier 3 on bus 1"},
    {285, "-6V out of range for amplifier 3 on bus 1",                  "-6V out of range for amplifier 3 on bus 1"},
    {286, "+3.5V out of range for amplifier 3 on bus 1",                "+3.5V out of range for amplifier 3 on bus 1"},
    {287, "+5V out of range for amplifier 3 on bus 1",                  "+5V out of range for amplifier 3 on bus 1"},
    {288, "VDD_PRE_10V_MON out of range for amplifier 3 on bus 1",      "VDD_PRE_10V_MON out of range for amplifier 3 on bus 1"},
    {289, "VDD_PRE_15V_MON out of range for amplifier 3 on bus 1",      "VDD_PRE_15V_MON out of range for amplifier 3 on bus 1"},
    {293, "Setting ZERO_GATE failed for power detector 3 on bus 1",     "Setting ZERO_GATE failed for power detector 3 on bus 1"},
    {294, "-3.5V out of range failed for power detector 3 on bus 1",    "-3.5V out of range failed for power detector 3 on bus 1"},
    {295, "Unexpected VDD_SW_MON for amplifier 3 on bus 1",             "Unexpected VDD_SW_MON for amplifier 3 on bus 1"},
    {296, "VDD_SW_MON out of range failed for power detector 3 on bus 1", "VDD_SW_MON out of range failed for power detector 3 on bus 1"},
    {302, "VDD_MON out of range for amplifier 3 on bus 1",              "VDD_MON out of range for amplifier 3 on bus 1"},
};
// clang-format on

}  // namespace librarytest
