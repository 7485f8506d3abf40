#include "Message.h"

#include <lgb/BaseTextCreator.h>

#include <exception>

namespace lgb {

ITextCreator::~ITextCreator() = default;

BaseTextCreator::~BaseTextCreator() = default;

bool BaseTextCreator::containsId(const code::Code& code) const {
    try {
        return create(code, "") != unknownEntry;
    } catch (const std::exception&) {
        return true;  // the message is there, only its parameters are not
    }
}

}  // namespace lgb
