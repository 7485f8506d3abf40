#pragma once

namespace standalone {

template <typename Signature>
class FunctionRef;

/// What is called before the call that takes it returns: on small machines the further abilities of std::function weigh
/// too much.
template <typename... Arguments>
class FunctionRef<void(Arguments...)> {
public:
    template <typename Function>
    FunctionRef(const Function& function)  // NOLINT(google-explicit-constructor): in the place of a function
        : object(&function), caller([](const void* called, Arguments... arguments) {
              (*static_cast<const Function*>(called))(arguments...);
          }) {}

    void operator()(Arguments... arguments) const { caller(object, arguments...); }

private:
    const void* object;
    void (*caller)(const void* called, Arguments... arguments);
};

}  // namespace standalone
