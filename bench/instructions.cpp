// Runs one side of one case for an instruction counter, which counts between the marks alone: after a run that finds
// all functions and makes what is made once. Without arguments: the cases, each with the entries of a run and its runs.

#include "cases.h"
#include "section.h"

#include <exception>
#include <iostream>

namespace {

void list() {
    for (const bench::Case& each : bench::cases()) {
        std::cout << each.name << '\t' << each.entries << '\t' << each.runs << '\n';
    }
}

void measure(const bench::Work& work, unsigned int runs) {
    work.doPrepare();
    work.run();
    bench::section::warmedUp();
    for (unsigned int i = 0; i < runs; ++i) {
        work.doPrepare();
        bench::section::begin();
        work.run();
        bench::section::end();
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 1) {
            list();
            return 0;
        }
        if (argc == 3) {
            const bench::Case& measured = bench::caseOf(argv[1]);
            measure(bench::workOf(measured, argv[2]), measured.runs);
            return 0;
        }
        std::cerr << "usage: instructions [CASE product|floor]\n";
    } catch (const std::exception& exception) {
        std::cerr << "instructions: " << exception.what() << '\n';
    }
    return 1;
}
