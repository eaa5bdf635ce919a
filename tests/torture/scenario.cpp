#include "scenario.h"

#include <cstdarg>
#include <cstdio>

namespace torture {

bool Verdict::Expect(bool holds, const char* format, ...) {
    if (holds) return true;
    char text[400];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    complaints_.emplace_back(text);
    return false;
}

std::map<std::string, ScenarioEntry>& Scenarios() {
    static std::map<std::string, ScenarioEntry> scenarios;
    return scenarios;
}

} // namespace torture
