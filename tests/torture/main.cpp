// Makes calls of the library to the system fail, one after the other, and looks at what becomes of its
// promises.
//
//   vxut_torture [SCENARIO...] [--only PLAN [--cold]] [--short] [--list]
//
// PLAN is "alloc:17" for the 17th allocation alone, "alloc:17+" for all from the 17th on; the other domains
// are "file", "system" and "stream". Each scenario runs in a process of its own, so that a crash or a hang is
// a result like others.
#include "engine.h"
#include "watch.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace torture {
namespace {

constexpr unsigned kMostPlansOfShortRun = 6;

struct CommandLine {
    std::vector<std::string> scenarios;
    Plan only;
    unsigned most = 0;
    bool isCold = false;
    bool isList = false;
};

bool Parse(int count, char** arguments, CommandLine& line) {
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        if (word == "--short") {
            line.most = kMostPlansOfShortRun;
        } else if (word == "--list") {
            line.isList = true;
        } else if (word == "--cold") {
            line.isCold = true;
        } else if (word == "--only") {
            if (++i == count || !line.only.Parse(arguments[i])) return false;
        } else if (Scenarios().contains(word)) {
            line.scenarios.push_back(word);
        } else {
            return false;
        }
    }
    if (line.isCold && line.only.call == 0) return false;
    if (line.scenarios.empty()) {
        for (const auto& [name, entry] : Scenarios()) line.scenarios.push_back(name);
    }
    return true;
}

int Main(int count, char** arguments) {
    if (count > 1 && std::strcmp(arguments[1], kChildOption) == 0) return RunChild(count, arguments);
    CommandLine line;
    if (!Parse(count, arguments, line)) {
        std::fprintf(stderr, "Usage: vxut_torture [SCENARIO...] [--only PLAN [--cold]] [--short] [--list]\n");
        return 2;
    }
    if (line.isList) {
        for (const std::string& name : line.scenarios) std::printf("%s\n", name.c_str());
        return 0;
    }
    LONG faults = 0;
    for (const std::string& name : line.scenarios)
        faults += WatchScenario({name, line.only, line.most, 0, line.isCold});
    std::printf("%ld faults in %zu scenarios\n", faults, line.scenarios.size());
    return faults > 0 ? 1 : 0;
}

} // namespace
} // namespace torture

int main(int count, char** arguments) { return torture::Main(count, arguments); }
