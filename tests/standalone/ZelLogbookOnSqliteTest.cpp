#include "CapturedErrors.h"
#include "TemporaryFolder.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/ZelLogbook.h>
#include <lgb/params.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using lgb::LogbookEntryCreator;
using lgb::code::Code;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using Texts = std::vector<std::string>;

const lgb::Entry attenuationFailed{Code(14, LogbookEntryType::Error), lgb::params::createBusModule(1, 3)};

/// The logbooks of a device on real files.
class ZelLogbookOnSqlite : public testing::Test {
protected:
    void restart() {
        device.reset();
        device = start();
    }

    static Texts shown(lgb::ILogbook& logbook) {
        Texts texts;
        for (const auto& entry : logbook.fetchAll()) {
            texts.push_back(entry.description);
        }
        return texts;
    }

    support::TemporaryFolder folder;
    std::unique_ptr<lgb::ZelLogbook> device = start();

private:
    std::unique_ptr<lgb::ZelLogbook> start() const {
        return std::make_unique<lgb::ZelLogbook>(standalone::SqliteDatabaseFactory(folder.path()),
                                                 lgb::LogbookFactory());
    }
};

TEST_F(ZelLogbookOnSqlite, GivesAnEventBackInWordsAfterARestart) {
    device->customer().add(LogbookEntryCreator::create(attenuationFailed));
    restart();
    EXPECT_EQ(shown(device->customer()), Texts{"Setting attenuation failed for amplifier 3 on bus 1!"});
    EXPECT_EQ(shown(device->service()), Texts{});
}

TEST_F(ZelLogbookOnSqlite, StoresAnEntryCompactly) {
    device->customer().add(LogbookEntryCreator::create(attenuationFailed));
    device.reset();
    SQLite::Database file((folder / "lgbCustomer.db").string());
    EXPECT_EQ(file.execAndGet("SELECT json FROM record").getString(),
              R"({"code":14,"description":"","details":{"device":-1,"generation":"Heron",)"
              R"("params":"{\"bus\":1,\"module\":3}","unit":-1},"type":"E"})");
}

TEST_F(ZelLogbookOnSqlite, GivesTheTimeOfRecordingBack) {
    const auto entry = LogbookEntryCreator::create(attenuationFailed);
    device->service().add(entry);
    restart();
    const auto fetched = device->service().fetchAll().at(0);
    EXPECT_EQ(fetched.timestamp.seconds, entry.timestamp.seconds);
    EXPECT_EQ(fetched.timestamp.nanoseconds, entry.timestamp.nanoseconds);
    EXPECT_EQ(fetched.timestamp.text, entry.timestamp.text);
}

TEST_F(ZelLogbookOnSqlite, ShowsServiceOnlyEntriesAndDetailsToServiceAlone) {
    const auto freeText =
        LogbookEntryCreator::createServiceOnly("Filter cleaned", lgb::code::ServiceCode(LogbookEntryType::Info));
    const auto detailed = LogbookEntryCreator::create(
        lgb::Entry(Code(15, LogbookEntryType::Error), lgb::params::createBusModuleAndService(1, 3, "(Id 82 A)")));
    for (lgb::ILogbook* logbook : {&device->customer(), &device->service()}) {
        logbook->add(freeText);
        logbook->add(detailed);
    }
    restart();
    EXPECT_EQ(shown(device->customer()), Texts{"Self-Protection occurred for amplifier 3 on bus 1!"});
    EXPECT_EQ(shown(device->service()),
              (Texts{"Self-Protection occurred for amplifier 3 on bus 1! (Id 82 A)", "Filter cleaned"}));
}

TEST_F(ZelLogbookOnSqlite, KeepsAnyBytesOfAFreeText) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    device->service().add(
        LogbookEntryCreator::createServiceOnly(everyByte, lgb::code::ServiceCode(LogbookEntryType::Info)));
    restart();
    EXPECT_EQ(shown(device->service()), Texts{everyByte});
}

TEST_F(ZelLogbookOnSqlite, LogsATextThatIsNoEntryHarmlesslyAndInShort) {
    const std::string stored = "\x1b]52;c;\x9b\u202e\u202c" + std::string(1000000, 'x') + '\0';
    standalone::SqliteDatabaseFactory(folder.path()).addAll("lgbService", 0, {{{0, 0, ""}, stored}});
    restart();
    support::CapturedErrors errors;
    EXPECT_EQ(shown(device->service()), Texts{});
    const std::string line = errors.take();
    EXPECT_THAT(line, testing::HasSubstr("stored logbook entry: \\x1b]52;c;\\x9b\\xe2\\x80\\xae\\xe2\\x80\\xacxxx"));
    EXPECT_THAT(line, testing::ContainsRegex("xxx[.][.][.] and 99[0-9]{4} more bytes [.][.][.]xxx"));
    EXPECT_THAT(line, testing::ContainsRegex("xxx\\\\x00 - error: not JSON: .*\n$"));
    EXPECT_LT(line.size(), 1200U);
}

TEST_F(ZelLogbookOnSqlite, KeepsTheNewest500ForTheCustomerAnd1000ForService) {
    for (int number = 0; number < 1003; ++number) {
        device->customer().add(LogbookEntryCreator::create(attenuationFailed));
        device->service().add(LogbookEntryCreator::create(attenuationFailed));
    }
    restart();
    EXPECT_EQ(device->customer().fetchAll().size(), 500u);
    EXPECT_EQ(device->service().fetchAll().size(), 1000u);
}

TEST_F(ZelLogbookOnSqlite, MakesALogbookOfEachName) {
    EXPECT_TRUE(std::filesystem::exists(folder / "lgbCustomer.db"));
    EXPECT_TRUE(std::filesystem::exists(folder / "lgbService.db"));
}

}  // namespace
