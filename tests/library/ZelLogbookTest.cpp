#include "LibraryTest.h"

#include <lgb/Logbook.h>
#include <lgb/ZelLogbook.h>

#include <memory>
#include <optional>

namespace librarytest {

namespace {

using Page = std::vector<tqbase2::nsa::zel::logbook::Entry>;

/// A database that tells of logbooks which outlive it.
class WatchfulDatabase : public recording::MemoryDatabase {
public:
    using MemoryDatabase::MemoryDatabase;
    WatchfulDatabase(const WatchfulDatabase&) = delete;
    WatchfulDatabase& operator=(const WatchfulDatabase&) = delete;

    ~WatchfulDatabase() override { platform().databases.push_back(std::to_string(users) + " users left"); }

    int users = 0;
};

class FactoryOfWatchfulDatabases : public lgb::DatabaseFactory {
public:
    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t, std::uint32_t) const override {
        auto database = std::make_unique<WatchfulDatabase>(name);
        made.push_back(database.get());
        return database;
    }

    mutable std::vector<WatchfulDatabase*> made;
};

/// A logbook that notes its beginning and its end among those of the databases.
class NotingLogbook : public lgb::Logbook {
public:
    NotingLogbook(lgb::IDatabase& storage, bool isService)
        : Logbook(storage, isService),
          name(isService ? "service logbook" : "customer logbook"),
          watchful(dynamic_cast<WatchfulDatabase*>(&storage)) {
        platform().databases.push_back("begin " + name);
        count(1);
    }

    NotingLogbook(const NotingLogbook&) = delete;
    NotingLogbook& operator=(const NotingLogbook&) = delete;

    ~NotingLogbook() override {
        count(-1);
        platform().databases.push_back("end " + name);
    }

private:
    void count(int users) {
        if (watchful != nullptr) {
            watchful->users += users;
        }
    }

    std::string name;
    WatchfulDatabase* watchful;
};

class FactoryOfNotingLogbooks : public lgb::LogbookFactory {
public:
    std::unique_ptr<lgb::ILogbook> create(lgb::IDatabase& database, bool isService) const override {
        databases.push_back(&database);
        return std::make_unique<NotingLogbook>(database, isService);
    }

    mutable std::vector<lgb::IDatabase*> databases;
};

/// Makes noting logbooks but for the one that it is told to fail for.
class FailingLogbookFactory : public FactoryOfNotingLogbooks {
public:
    explicit FailingLogbookFactory(bool failsForService) : failing(failsForService) {}

    std::unique_ptr<lgb::ILogbook> create(lgb::IDatabase& database, bool isService) const override {
        if (isService == failing) {
            throw recording::Failure();
        }
        return FactoryOfNotingLogbooks::create(database, isService);
    }

private:
    bool failing;
};

tqbase2::nsa::zel::logbook::Entry filterCleaned() {
    tqbase2::nsa::zel::logbook::Entry entry;
    entry.description = "Filter cleaned";
    entry.details = {-1, -1, "", Generation::Heron};
    return entry;
}

tqbase2::nsa::zel::logbook::Entry restarted() {
    tqbase2::nsa::zel::logbook::Entry entry;
    entry.code = 20;
    entry.details = {-1, -1, R"({"service":"watchdog"})", Generation::Heron};
    return entry;
}

Lines descriptions(const Page& page) {
    Lines texts;
    for (const auto& entry : page) {
        texts.push_back(entry.description);
    }
    return texts;
}

class ZelLogbook : public LibraryTest {};

class LogbookFactory : public LibraryTest {
protected:
    recording::MemoryDatabase database;
};

TEST_F(ZelLogbook, OpensTheCustomersDatabaseThenTheServiceOneAndNothingElse) {
    const lgb::ZelLogbook zel;
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "open lgbService 6381 1000"}));
}

TEST_F(ZelLogbook, OpensThroughTheGivenFactory) {
    const lgb::DatabaseFactory databases;
    const lgb::LogbookFactory logbooks;
    const lgb::ZelLogbook zel(databases, logbooks);
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "open lgbService 6381 1000"}));
}

TEST_F(ZelLogbook, OpensNothingWhenItsLogbooksAreUsed) {
    lgb::ZelLogbook zel;
    platform().databases.clear();
    zel.customer().add(restarted());
    zel.service().fetchAll();
    zel.customer().clear();
    EXPECT_EQ(platform().databases, Lines());
}

TEST_F(ZelLogbook, MakesTheCustomersLogbookFirstWhenBothDatabasesAreOpen) {
    const FactoryOfNotingLogbooks logbooks;
    const lgb::ZelLogbook zel(lgb::DatabaseFactory(), logbooks);
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "open lgbService 6381 1000",
                                           "begin customer logbook", "begin service logbook"}));
}

TEST_F(ZelLogbook, MakesEachLogbookOverItsOwnDatabase) {
    const FactoryOfWatchfulDatabases databases;
    const FactoryOfNotingLogbooks logbooks;
    const lgb::ZelLogbook zel(databases, logbooks);
    ASSERT_EQ(databases.made.size(), 2u);
    EXPECT_EQ(logbooks.databases, (std::vector<lgb::IDatabase*>{databases.made[0], databases.made[1]}));
}

TEST_F(ZelLogbook, StoresEachEntryInTheLogbookItIsAddedTo) {
    const FactoryOfWatchfulDatabases databases;
    lgb::ZelLogbook zel(databases, lgb::LogbookFactory());
    zel.service().add(restarted());
    zel.service().add(restarted());
    zel.customer().add(restarted());
    ASSERT_EQ(databases.made.size(), 2u);
    EXPECT_EQ(databases.made[0]->count(), 1u);
    EXPECT_EQ(databases.made[1]->count(), 2u);
    zel.service().clear();
    EXPECT_EQ(databases.made[0]->count(), 1u);
    EXPECT_EQ(databases.made[1]->count(), 0u);
}

TEST_F(ZelLogbook, ShowsAnEntryWithoutCodeToServiceAlone) {
    lgb::ZelLogbook zel;
    zel.customer().add(filterCleaned());
    zel.service().add(filterCleaned());
    EXPECT_EQ(descriptions(zel.customer().fetchAll()), Lines());
    EXPECT_EQ(descriptions(zel.service().fetchAll()), Lines{"Filter cleaned"});
}

TEST_F(ZelLogbook, ShowsTheServiceDetailToServiceAlone) {
    lgb::ZelLogbook zel;
    zel.customer().add(restarted());
    zel.service().add(restarted());
    EXPECT_EQ(descriptions(zel.customer().fetchAll()), Lines{"System restarted."});
    EXPECT_EQ(descriptions(zel.service().fetchAll()), Lines{"System restarted. watchdog"});
}

TEST_F(ZelLogbook, TellsTheListenersOfEachLogbookApart) {
    lgb::ZelLogbook zel;
    Lines told;
    zel.customer().changed.connect([&] { told.emplace_back("customer"); });
    zel.service().changed.connect([&] { told.emplace_back("service"); });
    zel.customer().add(restarted());
    EXPECT_EQ(told, Lines{"customer"});
    zel.service().add(restarted());
    EXPECT_EQ(told, (Lines{"customer", "service"}));
    zel.service().clear();
    EXPECT_EQ(told, (Lines{"customer", "service", "service"}));
}

TEST_F(ZelLogbook, EndsBothLogbooksBeforeEitherDatabase) {
    const FactoryOfNotingLogbooks logbooks;
    {
        const lgb::ZelLogbook zel(lgb::DatabaseFactory(), logbooks);
        platform().databases.clear();
    }
    EXPECT_EQ(platform().databases,
              (Lines{"end service logbook", "end customer logbook", "close lgbService", "close lgbCustomer"}));
}

TEST_F(ZelLogbook, LeavesNoUserToADatabaseThatEnds) {
    const FactoryOfWatchfulDatabases databases;
    const FactoryOfNotingLogbooks logbooks;
    {
        const lgb::ZelLogbook zel(databases, logbooks);
        ASSERT_EQ(databases.made.size(), 2u);
        EXPECT_EQ(databases.made[0]->users, 1);
        EXPECT_EQ(databases.made[1]->users, 1);
        platform().databases.clear();
    }
    EXPECT_EQ(platform().databases, (Lines{"end service logbook", "end customer logbook", "0 users left",
                                           "close lgbService", "0 users left", "close lgbCustomer"}));
}

TEST_F(ZelLogbook, ClosesItsDatabasesAtItsEnd) {
    { const lgb::ZelLogbook zel; }
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "open lgbService 6381 1000", "close lgbService",
                                           "close lgbCustomer"}));
}

TEST_F(ZelLogbook, ClosesItsDatabasesWhenItEndsThroughItsInterface) {
    std::unique_ptr<lgb::IZelLogbook> zel = std::make_unique<lgb::ZelLogbook>();
    platform().databases.clear();
    zel.reset();
    EXPECT_EQ(platform().databases, (Lines{"close lgbService", "close lgbCustomer"}));
}

TEST_F(ZelLogbook, DropsItsListenersAtItsEnd) {
    std::optional<lgb::ZelLogbook> zel;
    zel.emplace();
    const auto connection = zel->service().changed.connect([] {});
    EXPECT_TRUE(connection.connected());
    zel.reset();
    EXPECT_FALSE(connection.connected());
}

TEST_F(ZelLogbook, OpensNothingMoreWhenTheFirstDatabaseFails) {
    platform().databaseThatFails = "lgbCustomer";
    EXPECT_THROW(lgb::ZelLogbook(), recording::Failure);
    EXPECT_EQ(platform().databases, Lines());
}

TEST_F(ZelLogbook, LeavesNoDatabaseOpenWhenTheSecondFails) {
    platform().databaseThatFails = "lgbService";
    EXPECT_THROW(lgb::ZelLogbook(), recording::Failure);
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "close lgbCustomer"}));
}

TEST_F(ZelLogbook, MakesNoLogbookWhenTheSecondDatabaseFails) {
    platform().databaseThatFails = "lgbService";
    const FactoryOfNotingLogbooks logbooks;
    EXPECT_THROW(lgb::ZelLogbook(lgb::DatabaseFactory(), logbooks), recording::Failure);
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "close lgbCustomer"}));
}

TEST_F(ZelLogbook, ClosesBothDatabasesWhenTheCustomersLogbookFails) {
    const FailingLogbookFactory logbooks(false);
    EXPECT_THROW(lgb::ZelLogbook(lgb::DatabaseFactory(), logbooks), recording::Failure);
    EXPECT_EQ(platform().databases, (Lines{"open lgbCustomer 6381 500", "open lgbService 6381 1000", "close lgbService",
                                           "close lgbCustomer"}));
}

TEST_F(ZelLogbook, EndsTheCustomersLogbookAndClosesBothDatabasesWhenTheServiceLogbookFails) {
    const FailingLogbookFactory logbooks(true);
    EXPECT_THROW(lgb::ZelLogbook(lgb::DatabaseFactory(), logbooks), recording::Failure);
    EXPECT_EQ(platform().databases,
              (Lines{"open lgbCustomer 6381 500", "open lgbService 6381 1000", "begin customer logbook",
                     "end customer logbook", "close lgbService", "close lgbCustomer"}));
}

TEST_F(ZelLogbook, LogsNothingOfItsOwn) {
    { const lgb::ZelLogbook zel; }
    platform().databaseThatFails = "lgbService";
    EXPECT_THROW(lgb::ZelLogbook(), recording::Failure);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(ZelLogbook, HandsOutTheSameTwoLogbooksAllItsLife) {
    lgb::ZelLogbook zel;
    lgb::ILogbook& customer = zel.customer();
    lgb::ILogbook& service = zel.service();
    EXPECT_NE(&customer, &service);
    service.add(filterCleaned());
    service.clear();
    service.add(filterCleaned());
    EXPECT_EQ(&zel.customer(), &customer);
    EXPECT_EQ(&zel.service(), &service);
    EXPECT_EQ(descriptions(service.fetchAll()), Lines{"Filter cleaned"});
}

TEST_F(ZelLogbook, OutlivesItsFactories) {
    auto databases = std::make_unique<FactoryOfWatchfulDatabases>();
    auto logbooks = std::make_unique<FactoryOfNotingLogbooks>();
    lgb::ZelLogbook zel(*databases, *logbooks);
    databases.reset();
    logbooks.reset();
    zel.customer().add(restarted());
    EXPECT_EQ(descriptions(zel.customer().fetchAll()), Lines{"System restarted."});
}

TEST_F(LogbookFactory, MakesTheCustomersLogbook) {
    const std::unique_ptr<lgb::ILogbook> logbook = lgb::LogbookFactory().create(database, false);
    ASSERT_NE(dynamic_cast<lgb::Logbook*>(logbook.get()), nullptr);
    logbook->add(restarted());
    logbook->add(filterCleaned());
    EXPECT_EQ(database.records.size(), 2u);
    EXPECT_EQ(descriptions(logbook->fetchAll()), Lines{"System restarted."});
}

TEST_F(LogbookFactory, MakesTheServiceLogbook) {
    const std::unique_ptr<lgb::ILogbook> logbook = lgb::LogbookFactory().create(database, true);
    ASSERT_NE(dynamic_cast<lgb::Logbook*>(logbook.get()), nullptr);
    logbook->add(restarted());
    logbook->add(filterCleaned());
    EXPECT_EQ(database.records.size(), 2u);
    EXPECT_EQ(descriptions(logbook->fetchAll()), (Lines{"Filter cleaned", "System restarted. watchdog"}));
}

TEST_F(LogbookFactory, MakesANewLogbookEachTime) {
    const lgb::LogbookFactory factory;
    const auto first = factory.create(database, true);
    const auto second = factory.create(database, true);
    EXPECT_NE(first.get(), second.get());
}

TEST_F(LogbookFactory, LeavesTheDatabaseAlone) {
    database.fails = true;
    EXPECT_NO_THROW(lgb::LogbookFactory().create(database, true));
    EXPECT_TRUE(platform().log.empty());
}

}  // namespace

}  // namespace librarytest
