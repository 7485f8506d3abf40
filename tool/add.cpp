#include "commands.h"
#include "parameters.h"
#include "refusals.h"
#include "validators.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <nsa/zel/converter/zel/enums/GenerationConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;
using enums::Generation;
using tqbase2::nsa::zel::logbook::Entry;

namespace {

/// What the command line says of an entry.
struct Event {
    std::string type;
    std::uint32_t id = 0;
    Parameters parameters;
    std::int64_t unit = -1;
    std::int64_t device = -1;
    std::string generation = "Heron";
    std::optional<std::string> text;
};

std::string recordText(const Parameters& parameters) {
    const Json::Value record = recordOf(parameters);
    return record.empty() ? "" : tqbase2::system::JsonUtility::toJsonString(record);
}

Entry codedEntry(const Event& event) {
    lgb::Entry entry(lgb::code::Code(event.id, typeNamed(event.type)), recordText(event.parameters));
    entry.details.generation = enums::GenerationConverter::fromJsonToVal(event.generation);
    if (entry.details.generation == Generation::Kestrel) {
        requireFirstGeneration(event.parameters);
    } else {
        requireMessage({event.id, entry.type}, event.parameters);
    }
    return lgb::LogbookEntryCreator::create(entry);
}

Entry freeText(const Selection& selection, const Event& event) {
    if (selection.logbook != "service") {
        throw CLI::ValidationError("--text", "only the service logbook shows a free text");
    }
    if (event.text->empty()) {
        throw CLI::ValidationError("--text", "is empty, expected some words");
    }
    if (!recordText(event.parameters).empty()) {
        throw CLI::ValidationError("--text", "a free text has no parameters");
    }
    return lgb::LogbookEntryCreator::createServiceOnly(*event.text, lgb::code::ServiceCode(typeNamed(event.type)));
}

void add(const Selection& selection, const Event& event) {
    if (!event.text && event.id == 0) {
        throw CLI::RequiredError("id or --text is missing; tqzel-logbook messages lists the ids",
                                 CLI::ExitCodes::RequiredError);
    }
    Entry entry = event.text ? freeText(selection, event) : codedEntry(event);
    entry.details.unit = event.unit;
    entry.details.device = event.device;
    selected(*open(selection), selection).add(entry);
}

}  // namespace

void declareAdd(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("add", "Record an event");
    const auto event = std::make_shared<Event>();
    declareLogbook(command, selection);
    takeOneOf(command.add_option("type", event->type, "What kind of event")->required(), typeNames);
    CLI::Option* const id =
        takeNumber(command.add_option("id", event->id, "Which message; `tqzel-logbook messages` lists them"), 1,
                   std::numeric_limits<std::uint32_t>::max());
    // As far as numbers are shown; reading a longer one would silently end at the largest.
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    takeNumber(command.add_option("--unit", event->unit, "Unit concerned"), highest);
    takeNumber(command.add_option("--device", event->device, "Device concerned"), highest);
    CLI::Option* const generation =
        takeOneOf(command.add_option("--generation", event->generation, "Product generation, Heron unless given"),
                  {enums::generationSpellings.begin(), enums::generationSpellings.end()});
    command.add_option("--text", event->text, "Instead of an id: a free text for the service logbook")
        ->type_name("TEXT")
        ->excludes(generation)
        ->excludes(id);
    declareParameters(command, event->parameters);
    command.callback([&selection, event] { add(selection, *event); });
}

}  // namespace tool
