#include "messages.h"

#include "commands.h"
#include "entries.h"
#include "filter.h"
#include "pattern.h"
#include "table.h"
#include "terminal.h"
#include "validators.h"

#include <lgb/DescriptionCreator.h>
#include <lgb/catalogue.h>
#include <tqbase2/system/JsonUtility.h>

#include <fmt/format.h>
#include <json/value.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace tool {

using lgb::catalogue::Message;
using lgb::catalogue::Place;

std::string wordingOf(const Message& message) {
    return message.words + lgb::descriptionEnd(message.type);
}

std::vector<Place> membersOf(const Message& message) {
    std::vector<Place> members;
    for (const Place& place : message.places) {
        const auto isSame = [&](const Place& member) { return member.key == place.key; };
        if (std::none_of(members.begin(), members.end(), isSame)) {
            members.push_back(place);
        }
    }
    return members;
}

Message messageOf(const lgb::code::Code& code, const std::string& argument, const std::string& name) {
    for (const Message& message : lgb::catalogue::messages()) {
        if (message.type == code.type() && message.id == code.id()) {
            return message;
        }
    }
    throw CLI::ValidationError(
        argument, "this version knows no message " + name + "; tqzel-logbook messages lists those it knows");
}

namespace {

std::string membersText(const Message& message) {
    std::string text;
    for (const Place& member : membersOf(message)) {
        text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", member.key, member.holds);
    }
    return text;
}

void printTable(const std::vector<Message>& messages) {
    const std::size_t width = terminalWidth();
    const Pager pager(true);
    for (const Message& message : messages) {
        const std::string members = membersText(message);
        std::cout << hanging(fmt::format("{:<6}", codeOf(message.type, message.id)),
                             wordingOf(message) + (members.empty() ? "" : "  [" + members + ']'), width);
    }
}

void printMarkdown(const std::vector<Message>& messages) {
    std::cout
        << "# Messages\n\nMade by `tqzel-logbook messages --format markdown`. A name in braces is a place that the "
           "parameter\nrecord fills in.\n\n| code | type | wording | parameters |\n|---|---|---|---|\n";
    for (const Message& message : messages) {
        std::cout << fmt::format("| {} | {} | {} | {} |\n", codeOf(message.type, message.id), nameOf(message.type),
                                 wordingOf(message), membersText(message));
    }
}

void printJson(const std::vector<Message>& messages) {
    Json::Value list(Json::arrayValue);
    for (const Message& message : messages) {
        Json::Value json;
        json["code"] = codeOf(message.type, message.id);
        json["type"] = nameOf(message.type);
        json["id"] = message.id;
        json["wording"] = wordingOf(message);
        json["parameters"] = Json::Value(Json::objectValue);
        for (const Place& member : membersOf(message)) {
            json["parameters"][std::string(member.key)] = member.holds;
        }
        list.append(json);
    }
    std::cout << tqbase2::system::JsonUtility::toJsonString(list) << '\n';
}

struct ListFormat {
    const char* name;
    void (*print)(const std::vector<Message>& messages);
};

constexpr ListFormat listFormats[] = {{"table", printTable}, {"markdown", printMarkdown}, {"json", printJson}};

/// Which messages are to be listed, and how.
struct ListRequest {
    std::string type;
    Pattern pattern;
    std::string format = "table";
};

void listMessages(const ListRequest& request) {
    std::vector<Message> messages;
    for (const Message& message : lgb::catalogue::messages()) {
        if ((request.type.empty() || message.type == typeNamed(request.type)) &&
            request.pattern.isIn(wordingOf(message))) {
            messages.push_back(message);
        }
    }
    rowNamed(listFormats, request.format).print(messages);
}

void explain(const std::string& name) {
    const lgb::code::Code code = codeNamed("code", name);
    if (code.id() == 0) {
        std::cout << codeOf(code.type(), code.id()) << "  a free text, which only the service logbook shows\n";
        return;
    }
    const Message message = messageOf(code, "code", name);
    std::cout << codeOf(message.type, message.id) << "  " << wordingOf(message) << '\n';
    for (const Place& place : message.places) {
        std::cout << fmt::format("  {{{}}} is made from parameter \"{}\": {}\n", place.name, place.key, place.holds);
    }
}

}  // namespace

void declareMessages(CLI::App& app) {
    CLI::App& command = *app.add_subcommand("messages", "List all messages with their parameters");
    const auto request = std::make_shared<ListRequest>();
    takeOneOf(command.add_option("--type", request->type, "Only of this type"), typeNames);
    declarePattern(command, request->pattern,
                   "Only with this regular expression in the wording, in upper or lower case");
    takeOneOf(command.add_option("--format", request->format, "How to show them, table unless given"),
              namesIn(listFormats));
    command.callback([request] { listMessages(*request); });
}

void declareExplain(CLI::App& app) {
    CLI::App& command = *app.add_subcommand("explain", "Tell what a code stands for");
    const auto code = std::make_shared<std::string>();
    command.add_option("code", *code, "Such as E14")->required()->type_name("CODE");
    command.callback([code] { explain(*code); });
}

}  // namespace tool
