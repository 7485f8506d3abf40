#include "pattern.h"

#include <re2/re2.h>

#include <stdexcept>

namespace tool {

Pattern::Pattern(const std::string& text) {
    re2::RE2::Options settings;
    settings.set_case_sensitive(false);
    settings.set_log_errors(false);
    compiled = std::make_shared<const re2::RE2>(text, settings);
    if (!compiled->ok()) {
        throw std::invalid_argument('"' + text + "\" is no regular expression: " + compiled->error());
    }
}

bool Pattern::isIn(const std::string& text) const {
    return isNone() || re2::RE2::PartialMatch(text, *compiled);
}

CLI::Option* declarePattern(CLI::App& command, Pattern& pattern, const std::string& help) {
    const auto take = [&pattern](const std::string& text) {
        try {
            pattern = Pattern(text);
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError("--grep", error.what());
        }
    };
    return command.add_option_function<std::string>("--grep", take, help)->type_name("PATTERN");
}

}  // namespace tool
