#pragma once

#include <boost/signals2/signal.hpp>

#pragma GCC visibility push(default)

namespace tqbase2::system::signals {

class SignalBase {};

/// The platform's signal: Boost's, with its default combiner and mutex.
template <typename Result, typename... Arguments>
class signal : public boost::signals2::signal<Result(Arguments...)>, public SignalBase {};

}  // namespace tqbase2::system::signals

#pragma GCC visibility pop
