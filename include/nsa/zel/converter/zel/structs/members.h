#pragma once

#include <json/value.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace tqbase2::nsa::zel::structs {

/// Sets a member that the object doesn't have yet. Cheaper than to assign it.
/// @param object an object, or null, which becomes one
/// @param key must last as long as the object
/// @param value holds null afterwards
inline void setMember(Json::Value& object, const char* key, Json::Value&& value) {
    object[Json::StaticString(key)].swapPayload(value);
}

/// The members of some keys, null for one that is missing, found in one walk: a look-up for each costs several times
/// that.
/// @param json an object, or null, which has none
/// @param keys in ascending order, as jsoncpp keeps the members
/// @throws Json::LogicError for what has no members
template <std::size_t Count>
std::array<const Json::Value*, Count> members(const Json::Value& json,
                                              const std::array<std::string_view, Count>& keys) {
    const Json::Value& missing = json[""];
    std::array<const Json::Value*, Count> found;
    found.fill(&missing);
    std::size_t next = 0;
    const auto last = json.end();
    for (auto member = json.begin(); member != last; ++member) {
        const char* end = nullptr;
        const char* const name = member.memberName(&end);
        const auto size = static_cast<std::size_t>(end - name);
        for (std::size_t i = next; i < Count; ++i) {
            if (size == keys[i].size() && std::memcmp(name, keys[i].data(), size) == 0) {
                found[i] = &*member;
                next = i + 1;
                break;
            }
        }
    }
    return found;
}

}  // namespace tqbase2::nsa::zel::structs
