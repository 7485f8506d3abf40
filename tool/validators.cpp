#include "validators.h"

#include "decimal.h"
#include "words.h"

namespace tool {

CLI::Option* takeOneOf(CLI::Option* option, const std::vector<std::string>& words) {
    const auto fault = [words](const std::string& text) {
        return std::find(words.begin(), words.end(), text) != words.end()
                   ? ""
                   : '"' + text + "\" is not one of " + listed(words) + suggestion(text, words);
    };
    return option->type_name(CLI::detail::join(words, "|"))->check(CLI::Validator(fault, ""));
}

std::vector<std::string> wordsOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    return type.find('|') == std::string::npos ? std::vector<std::string>() : CLI::detail::split(type, '|');
}

CLI::Option* takeNumber(CLI::Option* option, std::int64_t least, std::int64_t most) {
    const auto fault = [least, most](std::string& text) -> std::string {
        std::int64_t number = 0;
        if (!readDecimal(text, number) || number < least || number > most) {
            return '"' + text + "\" is not a number from " + std::to_string(least) + " to " + std::to_string(most);
        }
        text = std::to_string(number);  // "010", which would be read as octal, as "10"
        return "";
    };
    return option->type_name("NUMBER")->transform(CLI::Validator(fault, ""));
}

}  // namespace tool
