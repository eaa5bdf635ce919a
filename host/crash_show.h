// The command "vlm crash show".
#pragma once

#include "host/command.h"

namespace vlm {

inline constexpr wchar_t kCrashJson[] = L"json";

ExitCode RunCrashShow(const Arguments& arguments, Output& out);

} // namespace vlm
