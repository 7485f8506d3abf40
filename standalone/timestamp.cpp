#include <lgb/timestamp.h>

#include <array>
#include <ctime>

namespace lgb::timestamp {

Timestamp now() {
    std::timespec time{};
    std::timespec_get(&time, TIME_UTC);
    std::tm local{};
    localtime_r(&time.tv_sec, &local);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %z", &local);
    return {time.tv_sec, time.tv_nsec, std::string(text.data(), length)};
}

}  // namespace lgb::timestamp
