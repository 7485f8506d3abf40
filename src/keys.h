#pragma once

/// The keys of parameter records, a persistent format.
namespace lgb::keys {

inline constexpr const char* on = "on";
inline constexpr const char* watt = "watt";
inline constexpr const char* group = "group";
inline constexpr const char* ok = "ok";
inline constexpr const char* bus = "bus";
inline constexpr const char* module = "module";
inline constexpr const char* version = "version";
inline constexpr const char* type = "type";
inline constexpr const char* value = "value";
inline constexpr const char* service = "service";
inline constexpr const char* operatingClass = "operatingClass";
inline constexpr const char* path = "path";
inline constexpr const char* outputMode = "outputMode";
inline constexpr const char* interlockMode = "interlockMode";
inline constexpr const char* role = "role";
inline constexpr const char* nr = "nr";

// Entries of the first generation.
inline constexpr const char* typeProduct = "typeProduct";
inline constexpr const char* text = "text";

}  // namespace lgb::keys
