// Any bytes as the text of a parameter record, for any message. An input is a code as it is shown, such as E14, and
// behind it the record.

#include "require.h"

#include <lgb/DescriptionCreator.h>
#include <lgb/ErrorTextCreator.h>
#include <lgb/ErrorWarningTexts.h>
#include <lgb/InfoTextCreator.h>
#include <lgb/WarningTextCreator.h>
#include <lgb/commontexts.h>
#include <nsa/zel/logbook/params/ValueConverter.h>
#include <standalone/errors.h>
#include <tqbase2/system/Exception.h>

#include <json/value.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>

namespace {

using lgb::code::Code;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::logbook::params::ValueConverter;

const lgb::InfoTextCreator infoTexts;
const lgb::WarningTextCreator warningTexts;
const lgb::ErrorTextCreator errorTexts;
const lgb::ITextCreator* const textCreators[] = {&infoTexts, &warningTexts, &errorTexts};  // index is the type

struct Input {
    Code code;
    std::string params;
};

Input inputFrom(const std::string& text) {
    const std::string letters = "IWE";  // index is the type; anything else is none
    const std::size_t type = text.empty() ? std::string::npos : letters.find(text.front());
    const char* const end = text.data() + text.size();
    unsigned int id = 0;
    const char* const params = std::from_chars(text.empty() ? end : text.data() + 1, end, id).ptr;
    return {{id, static_cast<LogbookEntryType>(type < letters.size() ? type : letters.size())}, {params, end}};
}

using TextOfRecord = std::string (*)(const std::string& params);

std::string interlockOpened(const std::string& params) {
    return lgb::interlock(1, params, true);
}

std::string busBeforeUnit(const std::string& params) {
    return lgb::systemBusErrorMsg("unit", params);
}

// These read numbers, booleans and strings.
constexpr TextOfRecord plainTexts[] = {
    lgb::commontexts::OnOff,
    lgb::commontexts::GroupNrExtern,
    lgb::commontexts::ModuleOnBus,
    lgb::commontexts::ForPd,
    lgb::commontexts::FailedForPd,
    lgb::commontexts::ForAmp,
    lgb::commontexts::ForPab,
    lgb::commontexts::FailedForPab,
    lgb::commontexts::FailedForAmp,
    lgb::getFanText,
    busBeforeUnit,
    ValueConverter::fromJsonToVal,
};

// These read enumerations as well.
constexpr TextOfRecord textsWithEnums[] = {interlockOpened, lgb::invalidConfig, lgb::outputMode, lgb::operatingClass};

/// Nothing for what can't be made from a text that is not JSON or holds members of other JSON types.
template <typename Make>
std::optional<std::string> plain(Make make) {
    try {
        return make();
    } catch (const standalone::JsonError&) {
        return std::nullopt;
    } catch (const Json::LogicError&) {
        return std::nullopt;
    }
}

/// Nothing also for an unknown spelling.
template <typename Make>
std::optional<std::string> withEnums(Make make) {
    try {
        return plain(make);
    } catch (const tqbase2::system::LogicError&) {
        return std::nullopt;
    }
}

/// What the creator of the code's type says; of a type that is none, nobody knows anything.
std::optional<std::string> textOfType(const Code& code, const std::string& params) {
    const auto type = static_cast<std::size_t>(code.type());
    if (type >= std::size(textCreators)) {
        return "unknown entry";
    }
    const lgb::ITextCreator& creator = *textCreators[type];
    auto text = withEnums([&] { return creator.create(code, params); });
    fuzz::require(!text || creator.containsId(code) == (text != "unknown entry"), "an id is known or unknown");
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Input input = inputFrom(std::string(data, data + size));
    const Code& code = input.code;
    const std::string& params = input.params;
    const auto text = withEnums([&] { return lgb::DescriptionCreator().createText(code, params); });
    fuzz::require(text == textOfType(code, params), "a text is that of its type");
    plain([&] { return lgb::ErrorWarningTexts().getText(code, params); });
    for (const TextOfRecord make : plainTexts) {
        plain([&] { return make(params); });
    }
    for (const TextOfRecord make : textsWithEnums) {
        withEnums([&] { return make(params); });
    }
    return 0;
}
