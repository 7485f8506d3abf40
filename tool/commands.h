#pragma once

#include "logbooks.h"

#include <CLI/CLI.hpp>

/// The commands of the tool: each declares its arguments in a subcommand of its own, which works when it was chosen.
/// Wrong use throws a CLI::ParseError, a failure any other exception.
namespace tool {

void declareAdd(CLI::App& app, Selection& selection);
void declareCheck(CLI::App& app, Selection& selection);
void declareClear(CLI::App& app, Selection& selection);
void declareCompletion(CLI::App& app);
void declareExplain(CLI::App& app);
void declareExport(CLI::App& app, Selection& selection);
void declareHelp(CLI::App& app);  ///< of itself and the commands that were declared before
void declareImport(CLI::App& app, Selection& selection);
void declareManual(CLI::App& app);
void declareMessages(CLI::App& app);
void declareReport(CLI::App& app, Selection& selection);
void declareResize(CLI::App& app, Selection& selection);
void declareSalvage(CLI::App& app, Selection& selection);
void declareShow(CLI::App& app, Selection& selection);
void declareStats(CLI::App& app, Selection& selection);

}  // namespace tool
