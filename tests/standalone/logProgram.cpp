// Logs one message a level, so that a test can see what reaches standard error.

#include <tqbase2/system/log/detail.h>

#include <string>

int main() {
    const std::string messages[] = {"first", "second", "third\nline\x7f", "fourth"};
    unsigned int level = 0;
    for (const std::string& message : messages) {
        if (tqbase2::system::log::detail::isEnabled(++level, "channel")) {
            tqbase2::system::log::detail::log(level, "channel", message);
        }
    }
}
