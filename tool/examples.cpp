#include "examples.h"

#include <algorithm>
#include <iterator>

namespace tool {

namespace {

// clang-format off
constexpr Example examples[] = {
    {"", "add customer error 14 --bus 1 --module 3", "Record an event."},
    {"", "show customer",                            "Show it in words."},
    {"", "show --help",                              "Tell how a command is used."},

    {"show", "show customer",                                            "The newest twenty entries."},
    {"show", "show service --all --reverse",                             "Everything, as it happened."},
    {"show", "show service --type error --since yesterday --grep fan",   "What went wrong with the fans since yesterday."},
    {"show", "show customer --follow",                                   "Watch a device while you work on it."},

    {"stats", "stats customer",                                          "What happens most often."},
    {"stats", "stats service --unit 1 --since \"30 days ago\"",          "The last month of one unit."},

    {"report", "report --output report.html",                            "For a colleague, who needs nothing but a browser."},
    {"report", "report --folder copied --title \"Device 7\" >7.html",       "Of copied files, with the device's name."},

    {"check", "check",                                                   "Both logbooks."},
    {"check", "check service --folder copied",                           "One of them, copied from a device."},

    {"add", "add customer error 14 --bus 1 --module 3",                  "tqzel-logbook explain E14 tells what error 14 needs."},
    {"add", "add service error 15 --bus 2 --module 7 --service \"(Id 82 A)\"", "With a detail for service people."},
    {"add", "add customer error 14 --params '{\"bus\":1,\"module\":3}'",     "With its parameters as JSON."},
    {"add", "add service info --unit 2 --text \"Fan 1 replaced\"",       "A note of your own."},

    {"clear", "clear customer",                                          "Asks before it removes anything."},
    {"clear", "clear service --yes",                                     "For scripts."},

    {"resize", "resize customer 5000",                                   "Asks before it removes anything."},
    {"resize", "resize service 500 --yes",                               "For scripts."},

    {"export", "export customer --output customer.jsonl",                "Into a file."},
    {"export", "export service | gzip >service.jsonl.gz",                "Through a pipe."},

    {"import", "import customer customer.jsonl",                         "Add the entries of a file."},
    {"import", "import service - <service.jsonl",                        "Add those of standard input."},

    {"salvage", "salvage lgbCustomer.damaged-1.db --output found.jsonl",  "What is left in files that were set aside."},
    {"salvage", "salvage copied/lgbService.db --all --output all.jsonl", "With what had been removed, if it lies there still."},

    {"messages", "messages",                                             "All of them."},
    {"messages", "messages --grep attenuation",                          "Those that speak of attenuation."},
    {"messages", "messages --type warning --format json",                "The warnings, for a program."},

    {"explain", "explain E14",                                           "The wording and the parameters of error 14."},
    {"explain", "explain I201",                                          "Those of information 201."},

    {"completion", "completion bash >tqzel-logbook.bash",                "For bash, which reads it with source."},
    {"completion", "completion zsh >_tqzel-logbook",                     "For zsh, which looks for it in $fpath."},

    {"man", "man >tqzel-logbook.1",                                      "Into a file, which man -l shows."},

    {"help", "help show",                                                "The same as show --help."},
};
// clang-format on

}  // namespace

std::vector<Example> examplesOf(const std::string& command) {
    std::vector<Example> found;
    std::copy_if(std::begin(examples), std::end(examples), std::back_inserter(found),
                 [&](const Example& example) { return example.command == command; });
    return found;
}

}  // namespace tool
