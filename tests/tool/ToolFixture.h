#pragma once

#include "TemporaryFolder.h"
#include "execute.h"
#include "run.h"
#include "spoil.h"

#include <standalone/SqliteDatabaseFactory.h>
#include <tqbase2/system/JsonUtility.h>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <json/value.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// Each test has a folder of logbooks of its own, and the words to fill and to show them.
class ToolFixture : public testing::Test {
protected:
    /// What a shell runs as the tool.
    /// @param environment assignments, such as "TZ=UTC"
    std::string command(const std::string& arguments, const std::string& environment = "") const {
        return "TQZEL_LOGBOOK_DIR='" + folder.path().string() + "' " + environment + ' ' + TQZEL_TOOL + ' ' + arguments;
    }

    support::Outcome tool(const std::string& arguments, const std::string& environment = "") const {
        return support::run(command(arguments, environment));
    }

    /// What the tool prints when it succeeds and complains of nothing.
    std::string output(const std::string& arguments, const std::string& environment = "") const {
        const support::Outcome outcome = tool(arguments, environment);
        EXPECT_EQ(outcome.exitCode, 0) << arguments;
        EXPECT_EQ(outcome.errors, "") << arguments;
        return outcome.output;
    }

    /// Records an event by the tool itself.
    void add(const std::string& arguments) const { EXPECT_EQ(output("add " + arguments), ""); }

    /// What a terminal of 80 columns shows.
    std::string onTerminal(const std::string& arguments, const std::string& environment, int exitCode = 0) const {
        const support::TemporaryFolder scripts;
        support::write(scripts / "run", "stty cols 80\n" + command(arguments, environment) + '\n');
        const support::Outcome outcome =
            support::run("SHELL=/bin/sh script -qec 'sh " + (scripts / "run").string() + "' /dev/null </dev/null");
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.errors;
        std::string text = outcome.output;
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }

    static std::string error(const support::Outcome& outcome, int exitCode) {
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.output, "");
        return outcome.errors;
    }

    /// The one line that answers wrong use.
    std::string wrongUse(const std::string& arguments) const { return error(tool(arguments), 2); }

    /// The one line that tells of a failure.
    std::string failure(const std::string& arguments) const { return error(tool(arguments), 1); }

    /// A document as the library stores it.
    static std::string document(const std::string& type, unsigned int code, const std::string& params, int unit = -1,
                                int device = -1, const std::string& description = "") {
        Json::Value json;
        json["type"] = type;
        json["code"] = code;
        json["description"] = description;
        json["details"]["unit"] = unit;
        json["details"]["device"] = device;
        json["details"]["params"] = params;
        json["details"]["generation"] = "Heron";
        return tqbase2::system::JsonUtility::toJsonString(json);
    }

    /// Damages a text of the customer logbook wherever it stands in its files.
    void spoil(const std::string& text) const {
        support::spoil(customerFile(), text);
        support::spoil(customerFile().string() + "-wal", text);
    }

    static std::string freeText(const std::string& text) { return document("I", 0, "", -1, -1, text); }

    static constexpr std::int64_t evening = 1795284000;  // 2026-11-21T18:00:00Z

    /// A minute of the evening, as a device in Berlin shows it.
    static lgb::timestamp::Timestamp minute(int past) {
        return {evening + std::int64_t{60} * past, 0, fmt::format("2026-11-21 19:{:02}:00 +0100", past)};
    }

    /// Adds documents, one made each minute.
    /// @param database "lgbCustomer" or "lgbService"
    void store(const char* database, const std::vector<std::string>& documents) const {
        std::vector<lgb::DatabaseRecord> records;
        for (const std::string& json : documents) {
            records.push_back({minute(static_cast<int>(records.size())), json});
        }
        store(database, records);
    }

    void store(const char* database, const std::vector<lgb::DatabaseRecord>& records) const {
        standalone::SqliteDatabaseFactory(folder.path()).addAll(database, 0, records);
    }

    std::filesystem::path customerFile() const { return folder / "lgbCustomer.db"; }

    void change(const std::string& sql) const { support::execute(customerFile(), sql); }

    /// All files of the folder with their contents.
    std::map<std::string, std::string> files() const { return support::filesOf(folder.path()); }

    /// An evening of three entries, each of another type.
    void storeEvening() const {
        store("lgbCustomer", std::vector<std::string>{
                                 document("E", 14, R"({"bus":1,"module":3})"),
                                 document("I", 20, ""),
                                 document("W", 63, R"({"bus":1,"module":3})", 2, 4),
                             });
    }

    /// What is shown of a logbook without any entry to show.
    static constexpr const char* headingsAlone = "No.  Time  Type  Description\n";

    support::TemporaryFolder folder;
};
