#pragma once

#include "parameters.h"

#include <lgb/Code.h>

/// What would be recorded wrongly, or shown as "unknown entry", is refused: once stored, it stays.
namespace tool {

/// Requires that there is a message of the code, and that the record holds each member it reads and none that it
/// doesn't; "service", which any entry may carry, aside.
/// @throws CLI::ValidationError
void requireMessage(const lgb::code::Code& code, const Parameters& parameters);

/// Requires the record of an entry of the first generation: a product, a text, and nothing else.
/// @throws CLI::ValidationError
void requireFirstGeneration(const Parameters& parameters);

}  // namespace tool
