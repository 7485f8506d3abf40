#include "Message.h"

namespace lgb {

std::string compose(const Message& message, const ParameterRecord& params) {
    std::string text(message.words);
    if (message.fragment != nullptr) {
        text += message.fragment(params);
    }
    text += message.ending;
    return text;
}

}  // namespace lgb
