#include "LibraryTest.h"

#include <lgb/Entry.h>
#include <lgb/ErrorTextCreator.h>
#include <lgb/ErrorWarningTexts.h>
#include <lgb/InfoTextCreator.h>
#include <lgb/Logbook.h>
#include <lgb/ServiceDescriptionCreator.h>
#include <lgb/UnitDeviceDescriptionCreator.h>
#include <lgb/WarningTextCreator.h>
#include <lgb/ZelLogbook.h>
#include <nsa/zel/enums/InterlockMode.h>
#include <nsa/zel/enums/OperatingClass.h>
#include <nsa/zel/enums/OutputMode.h>
#include <nsa/zel/enums/SystemConfigRole.h>
#include <nsa/zel/enums/TypeProduct.h>

#include <boost/signals2/signal.hpp>

#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>

// Device software is built apart from the library: where a virtual operation stands in its table and where a member
// stands in its object must not move.
namespace librarytest {

namespace {

namespace logbook = tqbase2::nsa::zel::logbook;
using tqbase2::nsa::zel::structs::LogbookEntryDetails;

constexpr std::size_t notVirtual = static_cast<std::size_t>(-1);

/// The slot of a virtual method, as the Itanium C++ ABI encodes it in a pointer to member: the offset in the virtual
/// table, plus 1 to tell it from an address; on ARM, where addresses may be odd, the 1 stands in the second word.
template <typename Method>
std::size_t slotOf(Method method) {
    std::array<std::size_t, 2> words{};
    static_assert(sizeof(method) == sizeof(words), "a pointer to member is two words");
    std::memcpy(words.data(), &method, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    return words[1] % 2 == 1 ? words[0] / sizeof(void*) : notVirtual;
#else
    return words[0] % 2 == 1 ? words[0] / sizeof(void*) : notVirtual;
#endif
}

template <typename Word>
Word wordAt(const void* object, std::size_t offset) {
    Word word{};
    std::memcpy(&word, static_cast<const std::byte*>(object) + offset, sizeof(word));
    return word;
}

/// The n-th pointer of an object; the first is that to the virtual table.
const void* pointerAt(const void* object, std::size_t index) {
    return wordAt<const void*>(object, index * sizeof(void*));
}

std::size_t offsetIn(const void* object, const void* member) {
    return static_cast<std::size_t>(static_cast<const std::byte*>(member) - static_cast<const std::byte*>(object));
}

int ended = 0;
int freed = 0;

/// Notes the end of its objects and how they end: only the deleting destructor frees.
template <typename Base>
struct Noted final : Base {
    template <typename... Arguments>
    explicit Noted(Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...) {}

    Noted(const Noted&) = delete;
    Noted& operator=(const Noted&) = delete;

    ~Noted() override { ++ended; }

    static void operator delete(void*) { ++freed; }
};

/// Calls what stands in a slot as a destructor.
void callDestructor(void* object, std::size_t slot) {
    using Destructor = void (*)(void*);
    const void* const table = pointerAt(object, 0);
    wordAt<Destructor>(table, slot * sizeof(void*))(object);
}

/// That a slot holds the destructor that leaves the memory alone, and the next one that which frees it.
template <typename Base, typename... Arguments>
void expectDestructorsFrom(std::size_t slot, Arguments&&... arguments) {
    SCOPED_TRACE(typeid(Base).name());
    ended = 0;
    freed = 0;
    alignas(Noted<Base>) std::array<std::byte, sizeof(Noted<Base>)> memory;
    callDestructor(::new (memory.data()) Noted<Base>(arguments...), slot);
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(freed, 0);
    callDestructor(::new (memory.data()) Noted<Base>(arguments...), slot + 1);
    EXPECT_EQ(ended, 2);
    EXPECT_EQ(freed, 1);
}

struct SomeLogbook : lgb::ILogbook {
    void add(const logbook::Entry&) override {}

    void clear() override {}

    std::vector<logbook::Entry> fetch(unsigned int, unsigned int) override { return {}; }

    std::vector<logbook::Entry> fetchAll() override { return {}; }
};

struct SomeZelLogbook : lgb::IZelLogbook {
    lgb::ILogbook& customer() override { return logbook; }

    lgb::ILogbook& service() override { return logbook; }

    SomeLogbook logbook;
};

struct SomeDatabase : lgb::IDatabase {
    std::vector<lgb::DatabaseRecord> fetch(unsigned int, unsigned int) override { return {}; }

    void add(const std::string&, const lgb::timestamp::Timestamp&) override {}

    void clear() override {}

    unsigned int count() override { return 0; }
};

struct SomeTextCreator : lgb::ITextCreator {
    std::string create(const Code&, const std::string&) const override { return ""; }

    bool containsId(const Code&) const override { return false; }
};

struct SomeBaseTextCreator : lgb::BaseTextCreator {
    std::string create(const Code&, const std::string&) const override { return ""; }
};

/// Makes the recording platform's databases and keeps track of them.
struct TrackingDatabaseFactory : lgb::DatabaseFactory {
    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t first, std::uint32_t second) const override {
        auto database = DatabaseFactory::create(name, first, second);
        made[name] = database.get();
        return database;
    }

    mutable std::map<std::string, const lgb::IDatabase*> made;
};

using Abi = LibraryTest;

TEST_F(Abi, DestructorsComeFirstInCodes) {
    expectDestructorsFrom<Code>(0, error(17));
    expectDestructorsFrom<lgb::code::ServiceCode>(0, LogbookEntryType::Warning);
}

TEST_F(Abi, DestructorsComeFirstInLogbooks) {
    recording::MemoryDatabase database;
    expectDestructorsFrom<SomeLogbook>(0);
    expectDestructorsFrom<lgb::Logbook>(0, database, true);
}

TEST_F(Abi, DestructorsComeFirstInTheTwoLogbooks) {
    expectDestructorsFrom<SomeZelLogbook>(0);
    expectDestructorsFrom<lgb::ZelLogbook>(0);
}

TEST_F(Abi, DestructorsComeFirstInFactories) {
    expectDestructorsFrom<lgb::LogbookFactory>(0);
    expectDestructorsFrom<lgb::DatabaseFactory>(0);
}

TEST_F(Abi, DestructorsComeFirstInDatabases) {
    expectDestructorsFrom<SomeDatabase>(0);
}

TEST_F(Abi, DestructorsComeFirstInDescriptionCreators) {
    expectDestructorsFrom<lgb::DescriptionCreator>(0);
    expectDestructorsFrom<lgb::ServiceDescriptionCreator>(0);
}

TEST_F(Abi, DestructorsComeLastInTextCreators) {
    expectDestructorsFrom<SomeTextCreator>(2);
    expectDestructorsFrom<SomeBaseTextCreator>(2);
    expectDestructorsFrom<lgb::InfoTextCreator>(2);
    expectDestructorsFrom<lgb::WarningTextCreator>(2);
    expectDestructorsFrom<lgb::ErrorTextCreator>(2);
}

TEST_F(Abi, OperationsOfALogbookKeepTheirSlots) {
    EXPECT_EQ(slotOf(&lgb::ILogbook::add), 2u);
    EXPECT_EQ(slotOf(&lgb::ILogbook::clear), 3u);
    EXPECT_EQ(slotOf(&lgb::ILogbook::fetch), 4u);
    EXPECT_EQ(slotOf(&lgb::ILogbook::fetchAll), 5u);
    EXPECT_EQ(slotOf(&lgb::Logbook::add), 2u);
    EXPECT_EQ(slotOf(&lgb::Logbook::clear), 3u);
    EXPECT_EQ(slotOf(&lgb::Logbook::fetch), 4u);
    EXPECT_EQ(slotOf(&lgb::Logbook::fetchAll), 5u);
}

TEST_F(Abi, OperationsOfADatabaseKeepTheirSlots) {
    EXPECT_EQ(slotOf(&lgb::IDatabase::fetch), 2u);
    EXPECT_EQ(slotOf(&lgb::IDatabase::add), 3u);
    EXPECT_EQ(slotOf(&lgb::IDatabase::clear), 4u);
    EXPECT_EQ(slotOf(&lgb::IDatabase::count), 5u);
}

TEST_F(Abi, OperationsOfTheTwoLogbooksKeepTheirSlots) {
    EXPECT_EQ(slotOf(&lgb::IZelLogbook::customer), 2u);
    EXPECT_EQ(slotOf(&lgb::IZelLogbook::service), 3u);
    EXPECT_EQ(slotOf(&lgb::ZelLogbook::customer), 2u);
    EXPECT_EQ(slotOf(&lgb::ZelLogbook::service), 3u);
}

TEST_F(Abi, FactoriesCreateInTheThirdSlot) {
    EXPECT_EQ(slotOf(&lgb::LogbookFactory::create), 2u);
    EXPECT_EQ(slotOf(&lgb::DatabaseFactory::create), 2u);
}

TEST_F(Abi, OperationsOfTextCreatorsKeepTheirSlots) {
    EXPECT_EQ(slotOf(&lgb::ITextCreator::create), 0u);
    EXPECT_EQ(slotOf(&lgb::ITextCreator::containsId), 1u);
    EXPECT_EQ(slotOf(&lgb::BaseTextCreator::create), 0u);
    EXPECT_EQ(slotOf(&lgb::BaseTextCreator::containsId), 1u);
    EXPECT_EQ(slotOf(&lgb::InfoTextCreator::create), 0u);
    EXPECT_EQ(slotOf(&lgb::InfoTextCreator::containsId), 1u);
    EXPECT_EQ(slotOf(&lgb::WarningTextCreator::create), 0u);
    EXPECT_EQ(slotOf(&lgb::WarningTextCreator::containsId), 1u);
    EXPECT_EQ(slotOf(&lgb::ErrorTextCreator::create), 0u);
    EXPECT_EQ(slotOf(&lgb::ErrorTextCreator::containsId), 1u);
}

TEST_F(Abi, DescriptionCreatorsCreateInTheThirdSlot) {
    EXPECT_EQ(slotOf(&lgb::DescriptionCreator::create), 2u);
    EXPECT_EQ(slotOf(&lgb::ServiceDescriptionCreator::create), 2u);
}

TEST_F(Abi, OtherOperationsAreNotVirtual) {
    EXPECT_EQ(slotOf(&lgb::DescriptionCreator::createText), notVirtual);
    EXPECT_EQ(slotOf(&lgb::ErrorWarningTexts::getText), notVirtual);
    EXPECT_EQ(slotOf(&Code::id), notVirtual);
    EXPECT_EQ(slotOf(&Code::type), notVirtual);
    EXPECT_EQ(slotOf(&Code::isEntry), notVirtual);
}

TEST_F(Abi, InterfacesAreAbstract) {
    EXPECT_TRUE(std::is_abstract_v<lgb::ILogbook>);
    EXPECT_TRUE(std::is_abstract_v<lgb::IZelLogbook>);
    EXPECT_TRUE(std::is_abstract_v<lgb::IDatabase>);
    EXPECT_TRUE(std::is_abstract_v<lgb::ITextCreator>);
    EXPECT_TRUE(std::is_abstract_v<lgb::BaseTextCreator>);
}

TEST_F(Abi, ClassesDerivePubliclyFromTheirInterfaces) {
    EXPECT_TRUE((std::is_convertible_v<lgb::Logbook*, lgb::ILogbook*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::ZelLogbook*, lgb::IZelLogbook*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::code::ServiceCode*, Code*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::ServiceDescriptionCreator*, lgb::DescriptionCreator*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::BaseTextCreator*, lgb::ITextCreator*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::InfoTextCreator*, lgb::BaseTextCreator*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::WarningTextCreator*, lgb::BaseTextCreator*>));
    EXPECT_TRUE((std::is_convertible_v<lgb::ErrorTextCreator*, lgb::BaseTextCreator*>));
}

TEST_F(Abi, EnumsAre32BitsWide) {
    EXPECT_EQ(sizeof(enums::LogbookEntryType), 4u);
    EXPECT_EQ(sizeof(enums::Generation), 4u);
    EXPECT_EQ(sizeof(enums::TypeProduct), 4u);
    EXPECT_EQ(sizeof(enums::OperatingClass), 4u);
    EXPECT_EQ(sizeof(enums::OutputMode), 4u);
    EXPECT_EQ(sizeof(enums::InterlockMode), 4u);
    EXPECT_EQ(sizeof(enums::SystemConfigRole), 4u);
}

TEST_F(Abi, ARecordIsTypeCodeDescriptionAndDetails) {
    const LogbookEntry entry;
    EXPECT_EQ(offsetIn(&entry, &entry.type), 0u);
    EXPECT_EQ(offsetIn(&entry, &entry.code), 8u);
    EXPECT_EQ(offsetIn(&entry, &entry.description), 16u);
    EXPECT_GE(offsetIn(&entry, &entry.details), 16u + sizeof(std::string));
    EXPECT_EQ(offsetIn(&entry, &entry.details) + sizeof(LogbookEntryDetails), sizeof(LogbookEntry));
}

TEST_F(Abi, DetailsAreUnitDeviceParametersAndGeneration) {
    const LogbookEntryDetails details;
    EXPECT_EQ(offsetIn(&details, &details.unit), 0u);
    EXPECT_EQ(offsetIn(&details, &details.device), 8u);
    EXPECT_EQ(offsetIn(&details, &details.params), 16u);
    EXPECT_EQ(offsetIn(&details, &details.generation), 16u + sizeof(std::string));
    EXPECT_EQ(sizeof(details.unit), 8u);
    EXPECT_EQ(sizeof(details.device), 8u);
}

TEST_F(Abi, AnEntryOfALogbookIsTheRecordThenTheTimestamp) {
    const logbook::Entry entry;
    const LogbookEntry& record = entry;
    EXPECT_EQ(offsetIn(&entry, &record), 0u);
    EXPECT_EQ(offsetIn(&entry, &entry.timestamp), sizeof(LogbookEntry));
    EXPECT_EQ(sizeof(logbook::Entry), sizeof(LogbookEntry) + sizeof(lgb::timestamp::Timestamp));
}

TEST_F(Abi, ATimestampIsTwo64BitNumbersThenAText) {
    const lgb::timestamp::Timestamp time;
    EXPECT_EQ(offsetIn(&time, &time.seconds), 0u);
    EXPECT_EQ(offsetIn(&time, &time.nanoseconds), 8u);
    EXPECT_EQ(offsetIn(&time, &time.text), 16u);
}

TEST_F(Abi, ADatabaseRecordIsTheTimestampThenTheText) {
    const lgb::DatabaseRecord record;
    EXPECT_EQ(offsetIn(&record, &record.timestamp), 0u);
    EXPECT_EQ(offsetIn(&record, &record.json), sizeof(lgb::timestamp::Timestamp));
}

TEST_F(Abi, AnEntryBuiltFromACodeIsARecordAndNothingMore) {
    EXPECT_EQ(sizeof(lgb::Entry), sizeof(LogbookEntry));
    EXPECT_TRUE((std::is_convertible_v<lgb::Entry*, LogbookEntry*>));
    EXPECT_FALSE(std::is_default_constructible_v<lgb::Entry>);
    EXPECT_FALSE(std::is_polymorphic_v<lgb::Entry>);
}

TEST_F(Abi, ACodeIsItsIdThenItsType) {
    const Code code = error(4294967295u);
    EXPECT_EQ(sizeof(Code), sizeof(void*) + 8u);
    EXPECT_EQ(wordAt<std::uint32_t>(&code, sizeof(void*)), 4294967295u);
    EXPECT_EQ(wordAt<std::int32_t>(&code, sizeof(void*) + 4), 2);
}

TEST_F(Abi, AServiceCodeIsACodeAndNothingMore) {
    EXPECT_EQ(sizeof(lgb::code::ServiceCode), sizeof(Code));
}

TEST_F(Abi, CreatorsAndFactoriesHoldNothing) {
    EXPECT_EQ(sizeof(lgb::InfoTextCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::WarningTextCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::ErrorTextCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::BaseTextCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::ITextCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::DescriptionCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::ServiceDescriptionCreator), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::LogbookFactory), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::DatabaseFactory), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::IZelLogbook), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::IDatabase), sizeof(void*));
}

TEST_F(Abi, ClassesOfPlainFunctionsAreEmpty) {
    EXPECT_TRUE(std::is_empty_v<lgb::ErrorWarningTexts>);
    EXPECT_TRUE(std::is_empty_v<lgb::UnitDeviceDescriptionCreator>);
}

TEST_F(Abi, ChangedComesRightBehindTheVirtualTable) {
    const SomeLogbook logbook;
    const lgb::ILogbook& interface = logbook;
    EXPECT_EQ(offsetIn(&interface, &interface.changed), sizeof(void*));
    EXPECT_EQ(sizeof(lgb::ILogbook), sizeof(void*) + sizeof(interface.changed));
}

TEST_F(Abi, ChangedIsASignalOfBoost) {
    using Signal = decltype(lgb::ILogbook::changed);
    EXPECT_TRUE((std::is_same_v<Signal, tqbase2::system::signals::signal<void>>));
    EXPECT_TRUE((std::is_convertible_v<Signal*, boost::signals2::signal<void()>*>));
    EXPECT_TRUE((std::is_convertible_v<Signal*, tqbase2::system::signals::SignalBase*>));
    EXPECT_TRUE(std::is_empty_v<tqbase2::system::signals::SignalBase>);
    EXPECT_EQ(sizeof(Signal), sizeof(boost::signals2::signal<void()>));
}

/// What a logbook holds behind its interface.
const void* memberOf(const lgb::Logbook& logbook, std::size_t index) {
    return pointerAt(&logbook, sizeof(lgb::ILogbook) / sizeof(void*) + index);
}

TEST_F(Abi, ALogbookHoldsItsDatabaseThenItsDescriptionCreator) {
    recording::MemoryDatabase database;
    const lgb::Logbook customer(database, false);
    const lgb::Logbook service(database, true);
    const lgb::IDatabase* const storage = &database;
    EXPECT_EQ(sizeof(lgb::Logbook), sizeof(lgb::ILogbook) + 2 * sizeof(void*));
    EXPECT_EQ(memberOf(customer, 0), storage);
    EXPECT_EQ(memberOf(service, 0), storage);
    const auto& customersCreator = *static_cast<const lgb::DescriptionCreator*>(memberOf(customer, 1));
    const auto& servicesCreator = *static_cast<const lgb::DescriptionCreator*>(memberOf(service, 1));
    EXPECT_EQ(typeid(customersCreator), typeid(lgb::DescriptionCreator));
    EXPECT_EQ(typeid(servicesCreator), typeid(lgb::ServiceDescriptionCreator));
}

TEST_F(Abi, AServiceLogbookOfTheFactoryHoldsAServiceDescriptionCreator) {
    recording::MemoryDatabase database;
    const std::unique_ptr<lgb::ILogbook> logbook = lgb::LogbookFactory().create(database, true);
    const auto& service = dynamic_cast<lgb::Logbook&>(*logbook);
    const auto& creator = *static_cast<const lgb::DescriptionCreator*>(memberOf(service, 1));
    EXPECT_EQ(typeid(creator), typeid(lgb::ServiceDescriptionCreator));
}

TEST_F(Abi, TheTwoLogbooksStandBehindTheirDatabasesCustomerFirst) {
    const TrackingDatabaseFactory databases;
    lgb::ZelLogbook zel(databases, lgb::LogbookFactory());
    EXPECT_EQ(sizeof(lgb::ZelLogbook), 5 * sizeof(void*));
    EXPECT_EQ(pointerAt(&zel, 1), databases.made["lgbCustomer"]);
    EXPECT_EQ(pointerAt(&zel, 2), databases.made["lgbService"]);
    EXPECT_EQ(pointerAt(&zel, 3), &zel.customer());
    EXPECT_EQ(pointerAt(&zel, 4), &zel.service());
}

}  // namespace

}  // namespace librarytest
