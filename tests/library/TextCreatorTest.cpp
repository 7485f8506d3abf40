#include "LibraryTest.h"

#include <lgb/ErrorTextCreator.h>
#include <lgb/InfoTextCreator.h>
#include <lgb/WarningTextCreator.h>

#include <functional>
#include <set>
#include <stdexcept>
#include <utility>

namespace librarytest {

namespace {

using BaseTextCreator = LibraryTest;

/// Creates whatever the test says.
class TextCreator : public lgb::BaseTextCreator {
public:
    using Create = std::function<std::string(const Code& code, const std::string& params)>;

    explicit TextCreator(Create create) : answer(std::move(create)) {}

    explicit TextCreator(const std::string& text) : answer([text](const Code&, const std::string&) { return text; }) {}

    std::string create(const Code& code, const std::string& params) const override { return answer(code, params); }

private:
    Create answer;
};

// clang-format off
const std::set<unsigned int> infoIds{20, 101, 125, 126, 127, 128, 129, 130, 200, 201, 206, 229, 230, 236, 239, 277, 280};

const std::set<unsigned int> sharedIds{1, 6, 7, 12, 14, 44, 63, 202, 204, 210, 214, 215, 216, 217, 225, 226, 227, 228,
                                       235, 285, 286, 287, 288, 289, 293, 294, 295, 296, 302};

const std::set<unsigned int> errorIds{3, 4, 9, 10, 13, 15, 17, 28, 62, 67, 68, 73, 77, 79, 80, 82, 83, 100, 131, 203,
                                      205, 207, 208, 209, 211, 212, 213, 237, 238, 258, 259, 260, 261, 262, 263, 264,
                                      265, 266, 267, 268, 269, 270, 271, 272, 273, 274, 275, 276, 278, 279, 282, 286,
                                      292, 297, 301, 305, 306, 307, 308, 309, 310, 311, 312};

const std::set<unsigned int> warningIds{19, 23, 70, 78, 97, 102, 103, 104, 218, 219, 220, 221, 222, 223, 224, 231, 232,
                                        233, 234, 240, 241, 242, 243, 250, 251, 252, 253, 254, 255, 256, 257, 284, 290,
                                        291, 298, 300, 303, 304};

// clang-format on

bool isIn(const std::set<unsigned int>& ids, unsigned int id) {
    return ids.count(id) != 0;
}

TEST_F(BaseTextCreator, DoesNotContainACodeOfExactlyTheUnknownText) {
    EXPECT_FALSE(TextCreator("unknown entry").containsId(error(1)));
}

TEST_F(BaseTextCreator, ContainsACodeOfAnyOtherText) {
    EXPECT_TRUE(TextCreator("System restarted").containsId(info(1)));
    EXPECT_TRUE(TextCreator("unknown entry.").containsId(info(1)));
    EXPECT_TRUE(TextCreator("Unknown entry").containsId(info(1)));
    EXPECT_TRUE(TextCreator(" unknown entry").containsId(info(1)));
    EXPECT_TRUE(TextCreator("unknown").containsId(info(1)));
    EXPECT_TRUE(TextCreator(std::string("unknown entry\0", 14)).containsId(info(1)));
}

TEST_F(BaseTextCreator, ContainsACodeOfAnEmptyText) {
    EXPECT_TRUE(TextCreator("").containsId(info(1)));
}

TEST_F(BaseTextCreator, ContainsACodeWhoseTextCannotBeMadeWithoutParameters) {
    const TextCreator creator([](const Code&, const std::string&) -> std::string { throw std::runtime_error("no"); });
    EXPECT_TRUE(creator.containsId(error(1)));
    const TextCreator ofPlatform([](const Code&, const std::string&) -> std::string { throw recording::JsonError(); });
    EXPECT_TRUE(ofPlatform.containsId(error(1)));
}

TEST_F(BaseTextCreator, PassesOnWhatIsNoStandardException) {
    const TextCreator creator([](const Code&, const std::string&) -> std::string { throw 7; });
    EXPECT_THROW(creator.containsId(error(1)), int);
}

TEST_F(BaseTextCreator, AsksForTheCodeOnceWithEmptyParameters) {
    std::vector<std::string> asked;
    const TextCreator creator([&asked](const Code& code, const std::string& params) {
        EXPECT_EQ(code.type(), LogbookEntryType::Warning);
        asked.push_back(std::to_string(code.id()) + " \"" + params + '"');
        return std::string();
    });
    creator.containsId(warning(4294967295));
    EXPECT_EQ(asked, Lines{"4294967295 \"\""});
}

TEST_F(BaseTextCreator, DecidesByIdAndTypeAsItsTextsDo) {
    const TextCreator creator([](const Code& code, const std::string&) {
        return std::string(code.type() == LogbookEntryType::Error ? "RF failed" : "unknown entry");
    });
    EXPECT_TRUE(creator.containsId(error(1)));
    EXPECT_FALSE(creator.containsId(warning(1)));
}

TEST_F(BaseTextCreator, OfInfoContainsRestartButNotZero) {
    EXPECT_TRUE(lgb::InfoTextCreator().containsId(info(20)));
    EXPECT_FALSE(lgb::InfoTextCreator().containsId(info(0)));
}

TEST_F(BaseTextCreator, OfInfoDecidesByTheIdOfAnErrorCode) {
    EXPECT_TRUE(lgb::InfoTextCreator().containsId(error(20)));
    EXPECT_FALSE(lgb::InfoTextCreator().containsId(error(17)));
}

TEST_F(BaseTextCreator, OfInfoContainsExactlyItsIdsOnEitherPlatform) {
    for (const bool emptyTextIsNull : {true, false}) {
        platform().emptyTextIsNull = emptyTextIsNull;
        for (unsigned int id = 0; id <= 330; ++id) {
            EXPECT_EQ(lgb::InfoTextCreator().containsId(info(id)), isIn(infoIds, id)) << id;
        }
    }
}

TEST_F(BaseTextCreator, ContainsExactlyItsIdsWhereEmptyParametersCanBeRead) {
    platform().emptyTextIsNull = true;
    for (unsigned int id = 0; id <= 330; ++id) {
        const bool isShared = isIn(sharedIds, id);
        EXPECT_EQ(lgb::ErrorTextCreator().containsId(error(id)), isShared || isIn(errorIds, id)) << id;
        EXPECT_EQ(lgb::WarningTextCreator().containsId(warning(id)), isShared || isIn(warningIds, id)) << id;
    }
}

// The texts that errors and warnings share read their parameters before they look for the id.
TEST_F(BaseTextCreator, OfErrorsAndWarningsContainsEveryIdWhereEmptyParametersCannotBeRead) {
    for (unsigned int id = 0; id <= 330; ++id) {
        EXPECT_TRUE(lgb::ErrorTextCreator().containsId(error(id))) << id;
        EXPECT_TRUE(lgb::WarningTextCreator().containsId(warning(id))) << id;
    }
}

TEST_F(BaseTextCreator, LogsNothingAboutParametersItCannotRead) {
    lgb::ErrorTextCreator().containsId(error(282));
    lgb::InfoTextCreator().containsId(info(127));
    EXPECT_TRUE(platform().log.empty());
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(BaseTextCreator, AnswersThroughTheInterface) {
    const lgb::InfoTextCreator creator;
    const lgb::ITextCreator& texts = creator;
    EXPECT_EQ(texts.create(info(20), ""), "System restarted");
    EXPECT_TRUE(texts.containsId(info(20)));
}

}  // namespace

}  // namespace librarytest
