// Prints for each side of each case, of one run after a first: the requests for memory, and the most bytes in use at
// once beside what was before.

#include "Shortage.h"
#include "cases.h"

#include <algorithm>
#include <exception>
#include <iostream>

namespace {

using support::MemorySupply;

void measure(const bench::Case& measured, const char* side) {
    const bench::Work work = bench::workOf(measured, side);
    work.doPrepare();
    work.run();
    std::uint64_t requests = 0;
    std::int64_t most = 0;
    for (unsigned int i = 0; i < measured.runs; ++i) {
        work.doPrepare();
        const std::int64_t before = support::memorySupply.bytes;
        const support::Shortage none(MemorySupply::never, MemorySupply::never);
        work.run();
        requests += support::memorySupply.asked;
        most = std::max(most, support::memorySupply.mostBytes - before);
    }
    std::cout << measured.name << '\t' << side << '\t' << requests / measured.runs << '\t' << most << '\n';
}

}  // namespace

int main() {
    try {
        for (const bench::Case& each : bench::cases()) {
            measure(each, "product");
            measure(each, "floor");
        }
        return 0;
    } catch (const std::exception& exception) {
        std::cerr << "heap: " << exception.what() << '\n';
        return 1;
    }
}
