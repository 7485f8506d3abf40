#pragma once

#include <string>

#pragma GCC visibility push(default)

namespace businesslogic::zel {

/// The display word of an on/off state.
std::string onOffStr(bool on);

}  // namespace businesslogic::zel

#pragma GCC visibility pop
