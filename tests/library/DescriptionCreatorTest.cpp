#include "DescriptionTest.h"

#include <lgb/DescriptionCreator.h>
#include <nsa/zel/converter/zel/enums/TypeProductConverter.h>

#include <json/value.h>

namespace librarytest {

namespace {

using DescriptionEnd = LibraryTest;
using enums::TypeProduct;
using enums::TypeProductConverter;
using TypeProductReader = LibraryTest;

using DescriptionCreator = DescriptionTest<lgb::DescriptionCreator>;

TEST_F(DescriptionCreator, OfAnInfoWithoutUnitAndDeviceIsMessageAndFullStop) {
    EXPECT_EQ(shown(codedEntry(info(20))), "System restarted.");
}

TEST_F(DescriptionCreator, OfAWarningOnDeviceAndUnitIsPrefixMessageAndExclamationMark) {
    EXPECT_EQ(shown(on(3, 12, codedEntry(warning(250)))), "Device 3, Unit 12: ACB 5V out of range!");
}

TEST_F(DescriptionCreator, OfAnErrorEndsInAnExclamationMark) {
    EXPECT_EQ(shown(codedEntry(error(14), R"({"bus":1,"module":3})")),
              "Setting attenuation failed for amplifier 3 on bus 1!");
}

TEST_F(DescriptionCreator, TakesTheWordsOfTheEntrysType) {
    const std::string params = R"({"bus":1,"module":3})";
    EXPECT_EQ(shown(codedEntry(info(206), params)), "RF was turned off because of opened interlock.");
    EXPECT_EQ(shown(codedEntry(warning(6), params)), "Too low current for amplifier 3 on bus 1 reduced RF Power!");
    EXPECT_EQ(shown(codedEntry(error(6), params)), "Too low current for amplifier 3 on bus 1!");
    EXPECT_EQ(shown(codedEntry(warning(79), params)), "unknown entry!");
    EXPECT_EQ(shown(codedEntry(error(79), params)), "Detected all fans to be defective!");
}

TEST_F(DescriptionCreator, OfAnUnknownInfoIsShown) {
    EXPECT_EQ(shown(on(2, -1, codedEntry(info(21)))), "Device 2: unknown entry.");
    EXPECT_TRUE(logged(4).empty());
}

TEST_F(DescriptionCreator, OfAnUnknownErrorIsShown) {
    EXPECT_EQ(shown(on(-1, 5, codedEntry(error(5), "{}"))), "Unit 5: unknown entry!");
    EXPECT_TRUE(logged(4).empty());
}

TEST_F(DescriptionCreator, OfAnUnknownTypeIsShown) {
    EXPECT_EQ(shown(on(2, 5, codedEntry(Code(20, static_cast<LogbookEntryType>(7)), "nonsense"))),
              "Device 2, Unit 5: unknown entry!");
    EXPECT_TRUE(logged(4).empty());
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(DescriptionCreator, LooksAtTheLow32BitsOfACode) {
    LogbookEntry entry = codedEntry(info(0));
    entry.code = 4294967316;
    EXPECT_EQ(shown(entry), "System restarted.");
}

TEST_F(DescriptionCreator, DropsAnEntryWithoutCode) {
    LogbookEntry entry = on(3, 12, codedEntry(info(0), "P"));
    entry.description = "Filter cleaned";
    EXPECT_EQ(dropped(entry), "Device 3, Unit 12: ");
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: I - code: 0 - description: Filter cleaned - details: "
                     "unit: 12 - device: 3 - params: P - generation: Heron",
                     "4 createZel entry is service only: type: I - code: 0 - description: Device 3, Unit 12:  - "
                     "details: unit: 12 - device: 3 - params: P - generation: Heron"}));
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(DescriptionCreator, DropsAnEntryWhoseCodeHasNoLow32Bits) {
    LogbookEntry entry = codedEntry(error(0));
    entry.code = 4294967296;
    EXPECT_EQ(dropped(entry), "");
    EXPECT_EQ(logged(4), Lines{"createZel entry is service only: type: E - code: 4294967296 - description:  - details: "
                               "unit: -1 - device: -1 - params:  - generation: Heron"});
}

TEST_F(DescriptionCreator, DropsAnEntryWithoutCodeWhateverItsType) {
    EXPECT_EQ(dropped(codedEntry(Code(0, noType))), "");
    EXPECT_EQ(logged(4), Lines{"createZel entry is service only: type:  - code: 0 - description:  - details: unit: -1 "
                               "- device: -1 - params:  - generation: Heron"});
}

TEST_F(DescriptionCreator, DropsAnEntryWhoseParametersAreNotJson) {
    EXPECT_EQ(dropped(on(1, -1, codedEntry(error(3), "nonsense"))), "Device 1: ");
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: E - code: 3 - description:  - details: unit: -1 - "
                     "device: 1 - params: nonsense - generation: Heron",
                     "4 createZel extracted: not JSON"}));
    EXPECT_EQ(platform().jsonTextsParsed, 1);
    EXPECT_EQ(platform().errorMessagesExtracted, 1);
}

TEST_F(DescriptionCreator, DropsAnUnknownErrorWhoseParametersAreNotJson) {
    EXPECT_EQ(dropped(codedEntry(error(5), "nonsense")), "");
    EXPECT_EQ(logged(4), Lines{"createZel extracted: not JSON"});
}

TEST_F(DescriptionCreator, DropsAnEntryWhoseParametersAreSpelledWrong) {
    EXPECT_EQ(dropped(on(1, 2, codedEntry(info(127), R"({"interlockMode":"manual"})"))), "Device 1, Unit 2: ");
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: I - code: 127 - description:  - details: unit: 2 - "
                     "device: 1 - params: {\"interlockMode\":\"manual\"} - generation: Heron",
                     "4 No valid conversion to enum for value manual", "4 createZel extracted: std::exception"}));
}

TEST_F(DescriptionCreator, DescribesAFixedMessageWhateverItsParameters) {
    EXPECT_EQ(shown(codedEntry(error(17), "nonsense")), "RF can not be activated with invalid system cfg!");
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(DescriptionCreator, ParsesParametersOnce) {
    shown(codedEntry(warning(6), R"({"bus":1,"module":3})"));
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(DescriptionCreator, PassesOnExceptionsOfTheJsonLibrary) {
    for (const char* params : {"[1]", R"({"bus":"x"})"}) {
        platform().log.clear();
        LogbookEntry entry = on(2, -1, codedEntry(error(3), params));
        EXPECT_THROW(creator.create(entry), Json::LogicError) << params;
        EXPECT_EQ(entry.description, "Device 2: ") << params;
        EXPECT_TRUE(logged(4).empty()) << params;
    }
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(DescriptionCreator, TracesAnEntryBeforeAndAfter) {
    LogbookEntry entry = on(3, 12, codedEntry(info(20), "P"));
    entry.description = "as stored";
    shown(entry);
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: I - code: 20 - description: as stored - details: unit: "
                     "12 - device: 3 - params: P - generation: Heron",
                     "1 src/DescriptionCreator.cpp:createZel type: I - code: 20 - description: Device 3, Unit 12: "
                     "System restarted. - details: unit: 12 - device: 3 - params: P - generation: Heron"}));
}

TEST_F(DescriptionCreator, TracesAnEntryOfTheFirstGenerationBeforeAndAfter) {
    LogbookEntry entry = on(1, -1, kestrelEntry(R"({"typeProduct":"Wren","text":"too hot"})"));
    entry.description = "as stored";
    shown(entry);
    EXPECT_EQ(
        everythingLogged(),
        (Lines{"1 src/DescriptionCreator.cpp:create type: E - code: 282 - description: as stored - details: unit: "
               "-1 - device: 1 - params: {\"typeProduct\":\"Wren\",\"text\":\"too hot\"} - generation: Kestrel",
               "1 src/DescriptionCreator.cpp:createKestrel type: E - code: 282 - description: Device 1: Wren too "
               "hot - details: unit: -1 - device: 1 - params: {\"typeProduct\":\"Wren\",\"text\":\"too hot\"} - "
               "generation: Kestrel"}));
}

TEST_F(DescriptionCreator, ReplacesTheStoredDescription) {
    LogbookEntry entry = codedEntry(info(20));
    entry.description = "as stored";
    EXPECT_EQ(shown(entry), "System restarted.");
    LogbookEntry first = kestrelEntry(R"({"typeProduct":"Wren","text":"too hot"})");
    first.description = "as stored";
    EXPECT_EQ(shown(first), "Wren too hot");
}

TEST_F(DescriptionCreator, DescribesTheSameEntryAgain) {
    LogbookEntry entry = on(1, -1, codedEntry(info(20)));
    EXPECT_TRUE(creator.create(entry));
    EXPECT_TRUE(creator.create(entry));
    EXPECT_EQ(entry.description, "Device 1: System restarted.");
}

TEST_F(DescriptionCreator, LeavesTheRestOfTheEntryAlone) {
    LogbookEntry entry = on(3, 12, codedEntry(error(14), R"({"bus":1,"module":3})"));
    entry.code = 4294967310;
    EXPECT_TRUE(creator.create(entry));
    EXPECT_EQ(entry.type, LogbookEntryType::Error);
    EXPECT_EQ(entry.code, 4294967310u);
    EXPECT_EQ(entry.details.device, 3);
    EXPECT_EQ(entry.details.unit, 12);
    EXPECT_EQ(entry.details.params, R"({"bus":1,"module":3})");
    EXPECT_EQ(entry.details.generation, Generation::Heron);
}

TEST_F(DescriptionCreator, OfTheFirstGenerationIsProductBlankAndText) {
    EXPECT_EQ(shown(on(1, -1, kestrelEntry(R"({"typeProduct":"Wren","text":"too hot"})"))), "Device 1: Wren too hot");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(DescriptionCreator, OfTheFirstGenerationNamesEachProduct) {
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"Osprey","text":"T"})")), "Osprey T");
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"Plover","text":"T"})")), "Plover T");
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"Wren","text":"T"})")), "Wren T");
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"Kestrel","text":"T"})")), "Kestrel T");
}

TEST_F(DescriptionCreator, OfTheFirstGenerationReadsNoProductAsOsprey) {
    EXPECT_EQ(shown(kestrelEntry(R"({"text":"too hot"})")), "Osprey too hot");
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"","text":"too hot"})")), "Osprey too hot");
    EXPECT_TRUE(logged(4).empty());
}

TEST_F(DescriptionCreator, OfTheFirstGenerationWithoutTextEndsInTheBlank) {
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"Plover"})")), "Plover ");
    EXPECT_EQ(shown(kestrelEntry("{}")), "Osprey ");
}

TEST_F(DescriptionCreator, OfTheFirstGenerationIgnoresOtherMembers) {
    EXPECT_EQ(shown(kestrelEntry(R"({"typeProduct":"Wren","bus":[1],"text":"T","service":"S"})")), "Wren T");
}

TEST_F(DescriptionCreator, OfTheFirstGenerationNeverLooksAtCodeAndType) {
    LogbookEntry entry = kestrelEntry(R"({"typeProduct":"Wren","text":"too hot"})");
    entry.code = 0;
    entry.type = LogbookEntryType::Info;
    EXPECT_EQ(shown(entry), "Wren too hot");
    entry.type = noType;
    EXPECT_EQ(shown(entry), "Wren too hot");
}

TEST_F(DescriptionCreator, DropsAnEntryOfTheFirstGenerationWhoseParametersAreNotJson) {
    EXPECT_EQ(dropped(on(1, -1, kestrelEntry("nonsense"))), "Device 1: ");
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: E - code: 282 - description:  - details: unit: -1 - "
                     "device: 1 - params: nonsense - generation: Kestrel",
                     "4 createKestrel extracted: not JSON"}));
}

TEST_F(DescriptionCreator, DropsAnEntryOfTheFirstGenerationWhoseProductIsSpelledInAnotherCase) {
    EXPECT_EQ(dropped(on(1, -1, kestrelEntry(R"({"typeProduct":"wren","text":"T"})"))), "Device 1: ");
    EXPECT_EQ(logged(4),
              (Lines{"No valid conversion to enum for value wren", "createKestrel extracted: std::exception"}));
    EXPECT_EQ(logged(1).size(), 1u);
}

TEST_F(DescriptionCreator, OfTheFirstGenerationReadsTheProductBeforeTheText) {
    EXPECT_EQ(dropped(kestrelEntry(R"({"typeProduct":"wren","text":["T"]})")), "");
}

TEST_F(DescriptionCreator, OfTheFirstGenerationPassesOnExceptionsOfTheJsonLibrary) {
    for (const char* params : {"[1]", R"({"typeProduct":["Wren"]})", R"({"typeProduct":"Wren","text":["T"]})"}) {
        LogbookEntry entry = on(2, -1, kestrelEntry(params));
        EXPECT_THROW(creator.create(entry), Json::LogicError) << params;
        EXPECT_EQ(entry.description, "Device 2: ") << params;
    }
    EXPECT_TRUE(logged(4).empty());
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(DescriptionCreator, GoesByTheCodeForEveryGenerationButTheFirst) {
    for (const Generation generation :
         {Generation::Unknown, Generation::Heron, noGeneration, static_cast<Generation>(-1)}) {
        LogbookEntry entry = codedEntry(info(20), R"({"typeProduct":"Wren","text":"too hot"})");
        entry.details.generation = generation;
        EXPECT_EQ(shown(entry), "System restarted.");
    }
}

TEST_F(DescriptionCreator, DropsAnEntryWithoutCodeForEveryGenerationButTheFirst) {
    for (const Generation generation : {Generation::Unknown, Generation::Heron, noGeneration}) {
        LogbookEntry entry = codedEntry(info(0));
        entry.details.generation = generation;
        EXPECT_EQ(dropped(entry), "");
    }
}

TEST_F(DescriptionCreator, ComposesNothingWhenNoLevelIsOn) {
    platform().lowestLevel = 5;
    EXPECT_EQ(shown(codedEntry(info(20))), "System restarted.");
    EXPECT_EQ(shown(kestrelEntry("{}")), "Osprey ");
    EXPECT_EQ(dropped(codedEntry(info(0))), "");
    EXPECT_EQ(dropped(codedEntry(error(3), "nonsense")), "");
    EXPECT_EQ(dropped(codedEntry(info(127), R"({"interlockMode":"manual"})")), "");
    EXPECT_EQ(dropped(kestrelEntry("nonsense")), "");
    EXPECT_EQ(dropped(kestrelEntry(R"({"typeProduct":"wren"})")), "");
    EXPECT_TRUE(platform().log.empty());
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(DescriptionCreator, LogsFailuresWithoutTracesWhenOnlyErrorsAreOn) {
    platform().lowestLevel = 4;
    shown(codedEntry(info(20)));
    shown(kestrelEntry("{}"));
    dropped(codedEntry(error(3), "nonsense"));
    dropped(kestrelEntry("nonsense"));
    EXPECT_EQ(everythingLogged(), (Lines{"4 createZel extracted: not JSON", "4 createKestrel extracted: not JSON"}));
}

TEST_F(DescriptionCreator, CreatesTheMessageOfACodeAlone) {
    const std::string params = R"({"bus":1,"module":3})";
    EXPECT_EQ(creator.createText(info(20), ""), "System restarted");
    EXPECT_EQ(creator.createText(warning(6), params), "Too low current for amplifier 3 on bus 1 reduced RF Power");
    EXPECT_EQ(creator.createText(warning(70), params), "High input level for amplifier 3 on bus 1");
    EXPECT_EQ(creator.createText(error(6), params), "Too low current for amplifier 3 on bus 1");
    EXPECT_EQ(creator.createText(error(3), params), "Temperature below average for amplifier 3 on bus 1");
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(DescriptionCreator, CreatesNoMessageOfAnUnknownType) {
    EXPECT_EQ(creator.createText(Code(20, noType), "nonsense"), "unknown entry");
    EXPECT_EQ(creator.createText(Code(20, static_cast<LogbookEntryType>(-1)), "nonsense"), "unknown entry");
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(DescriptionCreator, CreatesNoMessageOfCodeZero) {
    EXPECT_EQ(creator.createText(info(0), ""), "unknown entry");
    EXPECT_EQ(creator.createText(error(0), "{}"), "unknown entry");
}

TEST_F(DescriptionCreator, PassesOnWhatAMessageAloneThrows) {
    EXPECT_THROW(creator.createText(error(3), "nonsense"), recording::JsonError);
    EXPECT_THROW(creator.createText(error(3), "[1]"), Json::LogicError);
    EXPECT_THROW(creator.createText(info(127), R"({"interlockMode":"manual"})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value manual"});
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(DescriptionEnd, IsAFullStopForInformationAlone) {
    EXPECT_EQ(lgb::descriptionEnd(LogbookEntryType::Info), ".");
    EXPECT_EQ(lgb::descriptionEnd(LogbookEntryType::Warning), "!");
    EXPECT_EQ(lgb::descriptionEnd(LogbookEntryType::Error), "!");
    EXPECT_EQ(lgb::descriptionEnd(noType), "!");
    EXPECT_EQ(lgb::descriptionEnd(static_cast<LogbookEntryType>(-1)), "!");
}

TEST_F(TypeProductReader, ReadsEachSpelling) {
    EXPECT_EQ(TypeProductConverter::fromJsonToVal("Osprey"), TypeProduct::Osprey);
    EXPECT_EQ(TypeProductConverter::fromJsonToVal("Plover"), TypeProduct::Plover);
    EXPECT_EQ(TypeProductConverter::fromJsonToVal("Wren"), TypeProduct::Wren);
    EXPECT_EQ(TypeProductConverter::fromJsonToVal("Kestrel"), TypeProduct::Kestrel);
}

TEST_F(TypeProductReader, ReadsNothingAsOsprey) {
    EXPECT_EQ(TypeProductConverter::fromJsonToVal(""), TypeProduct::Osprey);
    EXPECT_EQ(TypeProductConverter::fromJsonToVal(Json::Value()), TypeProduct::Osprey);
}

TEST_F(TypeProductReader, LogsAndThrowsForAnyOtherText) {
    EXPECT_THROW(TypeProductConverter::fromJsonToVal("osprey"), tqbase2::system::LogicError);
    EXPECT_THROW(TypeProductConverter::fromJsonToVal(0), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4),
              (Lines{"No valid conversion to enum for value osprey", "No valid conversion to enum for value 0"}));
}

TEST_F(TypeProductReader, ThrowsWithoutLoggingForWhatHasNoText) {
    EXPECT_THROW(TypeProductConverter::fromJsonToVal(Json::Value(Json::arrayValue)), Json::LogicError);
    EXPECT_TRUE(platform().log.empty());
}

}  // namespace

}  // namespace librarytest
