#pragma once

#include <boost/signals2/signal.hpp>

#pragma GCC visibility push(default)

/// Notifications.
namespace tqbase2::system::signals {

/// What signals of all signatures have in common.
class SignalBase {};

/// The platform's signal: Boost's, with its default combiner and mutex.
template <typename Result, typename... Arguments>
class signal : public boost::signals2::signal<Result(Arguments...)>, public SignalBase {};

}  // namespace tqbase2::system::signals

#pragma GCC visibility pop
