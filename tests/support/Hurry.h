#pragma once

namespace support {

/// While it lasts, time runs a hundred times as fast for those who wait, SQLite among them. For programs that link
/// Hurry.cpp.
class Hurry {
public:
    Hurry();
    Hurry(const Hurry&) = delete;
    Hurry& operator=(const Hurry&) = delete;
    ~Hurry();
};

}  // namespace support
