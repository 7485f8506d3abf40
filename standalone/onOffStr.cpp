#include <businesslogic/zel/onOffStr.h>

namespace businesslogic::zel {

std::string onOffStr(bool on) {
    return on ? "on" : "off";
}

}  // namespace businesslogic::zel
