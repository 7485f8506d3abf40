#include "commands.h"
#include "parameters.h"
#include "validators.h"

#include <lgb/DescriptionCreator.h>
#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <nsa/zel/converter/zel/enums/GenerationConverter.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;
using enums::Generation;
using enums::LogbookEntryType;
using tqbase2::nsa::zel::logbook::Entry;
using tqbase2::nsa::zel::structs::LogbookEntry;

namespace {

/// What the command line says of an entry.
struct Event {
    std::string type;
    std::uint32_t id = 0;
    Parameters parameters;
    std::int64_t unit = -1;
    std::int64_t device = -1;
    std::string generation = "Heron";
    std::string text;
};

/// Refuses an entry that would never be shown, or only as "unknown entry": once stored, it stays.
void requireWords(const Event& event, const LogbookEntry& entry) {
    const std::string message = event.type + ' ' + std::to_string(event.id);
    std::string words;
    try {
        words = lgb::DescriptionCreator().createText({event.id, entry.type}, entry.details.params);
    } catch (const std::exception&) {
        throw CLI::ValidationError("parameters", entry.details.params + " is not what " + message + " needs");
    }
    if (words == "unknown entry") {
        throw CLI::ValidationError("id", "there is no message " + message);
    }
}

/// Refuses an entry of the first generation whose parameters do not hold its message.
void requireMessage(LogbookEntry entry) {
    if (!lgb::DescriptionCreator().create(entry)) {
        throw CLI::ValidationError("--params", R"(an entry of generation Kestrel needs "typeProduct" and "text")");
    }
}

Entry codedEntry(const Event& event) {
    lgb::Entry entry(lgb::code::Code(event.id, typeNamed(event.type)), recordText(event.parameters));
    entry.details.generation = enums::GenerationConverter::fromJsonToVal(event.generation);
    if (entry.details.generation == Generation::Kestrel) {
        requireMessage(entry);
    } else {
        requireWords(event, entry);
    }
    return lgb::LogbookEntryCreator::create(entry);
}

Entry freeText(const Selection& selection, const Event& event) {
    if (selection.logbook != "service") {
        throw CLI::ValidationError("--text", "only the service logbook shows a free text");
    }
    if (!recordText(event.parameters).empty()) {
        throw CLI::ValidationError("--text", "a free text has no parameters");
    }
    return lgb::LogbookEntryCreator::createServiceOnly(event.text, lgb::code::ServiceCode(typeNamed(event.type)));
}

void add(const Selection& selection, const Event& event) {
    if (event.text.empty() == (event.id == 0)) {
        throw CLI::RequiredError("Either an id or --text");
    }
    Entry entry = event.id == 0 ? freeText(selection, event) : codedEntry(event);
    entry.details.unit = event.unit;
    entry.details.device = event.device;
    selected(*open(selection), selection).add(entry);
}

}  // namespace

void declareAdd(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("add", "Record an event");
    const auto event = std::make_shared<Event>();
    declareLogbook(command, selection);
    command.add_option("type", event->type, "What kind of event")
        ->required()
        ->type_name("error|warning|info")
        ->check(oneOf(typeNames));
    command.add_option("id", event->id, "Which message")
        ->type_name("NUMBER")
        ->check(between<std::uint32_t>(1, std::numeric_limits<std::uint32_t>::max()));
    // As far as numbers are shown; reading a longer one would silently end at the largest.
    const auto isNumber = between<std::int64_t>(0, std::numeric_limits<std::int32_t>::max());
    command.add_option("--unit", event->unit, "Unit concerned")->type_name("NUMBER")->check(isNumber);
    command.add_option("--device", event->device, "Device concerned")->type_name("NUMBER")->check(isNumber);
    CLI::Option* const generation =
        command.add_option("--generation", event->generation, "Product generation, Heron unless given")
            ->type_name("Kestrel|Heron|Unknown")
            ->check(oneOf(enums::generationSpellings));
    command.add_option("--text", event->text, "Instead of an id: a free text for the service logbook")
        ->type_name("TEXT")
        ->excludes(generation);
    declareParameters(command, event->parameters);
    command.callback([&selection, event] { add(selection, *event); });
}

}  // namespace tool
