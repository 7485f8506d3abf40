#include "refusals.h"

#include "messages.h"
#include "validators.h"
#include "words.h"

#include <nsa/zel/enums/TypeProduct.h>
#include <tqbase2/system/JsonUtility.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace tool {

using lgb::catalogue::Place;

namespace {

constexpr const char* serviceKey = "service";

std::string quoted(const std::string& word) {
    return '"' + word + '"';
}

/// Refuses a member whose key nobody reads, in the words of how it was given.
void requireKnown(const std::string& key, const Parameters& parameters, const std::vector<std::string>& known,
                  const std::string& reader) {
    if (std::find(known.begin(), known.end(), key) != known.end()) {
        return;
    }
    const bool isOption = parameters.members.isMember(key);
    std::vector<std::string> names;
    std::transform(known.begin(), known.end(), std::back_inserter(names), quoted);
    throw CLI::ValidationError(
        isOption ? optionFor(key) : "--params",
        reader + " does not read " + quoted(key) + ", only " + listed(names, "and") + suggestion(key, known));
}

void requireKnown(const Json::Value& record, const Parameters& parameters, const std::vector<std::string>& known,
                  const std::string& reader) {
    for (const std::string& key : record.getMemberNames()) {
        requireKnown(key, parameters, known, reader);
    }
}

[[noreturn]] void refuseMember(const std::string& key, const Json::Value& value, const std::string& expected) {
    const std::string found = value.isNull() ? "missing" : tqbase2::system::JsonUtility::toJsonString(value);
    throw CLI::ValidationError("--params", quoted(key) + " is " + found + ", expected " + expected);
}

/// Refuses members that can't be read; those of options can.
void requireReadable(const Json::Value& record) {
    for (const std::string& key : record.getMemberNames()) {
        const std::string expected = expectedInstead(key, record[key]);
        if (!expected.empty()) {
            refuseMember(key, record[key], expected);
        }
    }
}

void requireComplete(const lgb::catalogue::Message& message, const Json::Value& record, const std::string& name) {
    std::vector<std::string> missing;
    for (const Place& member : membersOf(message)) {
        const std::string key(member.key);
        if (!record.isMember(key)) {
            missing.push_back(optionFor(key) + " (" + member.holds + ')');
        }
    }
    if (!missing.empty()) {
        std::sort(missing.begin(), missing.end());
        throw CLI::RequiredError(name + " needs " + listed(missing, "and") + ": " + wordingOf(message),
                                 CLI::ExitCodes::RequiredError);
    }
}

}  // namespace

void requireMessage(const lgb::code::Code& code, const Parameters& parameters) {
    const std::string name = nameOf(code.type()) + ' ' + std::to_string(code.id());
    const lgb::catalogue::Message message = messageOf(code, "id", name);
    std::vector<std::string> known;
    for (const Place& member : membersOf(message)) {
        known.emplace_back(member.key);
    }
    known.emplace_back(serviceKey);
    const Json::Value record = recordOf(parameters);
    requireKnown(record, parameters, known, name);
    requireReadable(record);
    requireComplete(message, record, name);
}

void requireFirstGeneration(const Parameters& parameters) {
    const std::vector<std::string> products(tqbase2::nsa::zel::enums::typeProductSpellings.begin(),
                                            tqbase2::nsa::zel::enums::typeProductSpellings.end());
    const Json::Value record = recordOf(parameters);
    requireKnown(record, parameters, {"typeProduct", "text"}, "an entry of generation Kestrel");
    const Json::Value& product = record["typeProduct"];
    if (!product.isString() || std::find(products.begin(), products.end(), product.asString()) == products.end()) {
        refuseMember(
            "typeProduct", product,
            "one of " + listed(products) + (product.isString() ? suggestion(product.asString(), products) : ""));
    }
    const Json::Value& text = record["text"];
    if (!text.isString() || text.asString().empty()) {
        refuseMember("text", text, "a text that is not empty");
    }
}

}  // namespace tool
