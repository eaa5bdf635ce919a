// The commands and groups below the root, each in its own source file. A new one is declared here and listed
// in main.cpp.
#pragma once

#include "host/command.h"

namespace vlm {

Command CharsetCommands();
Command CrashCommands();
Command DebugCommand();
Command DecodeCommand();
Command EncodeCommand();
Command EnvCommand();
Command HeapDemoCommand();
Command HtmlCommands();
Command PathCommands();
Command ProfileCommands();
Command TraceCommand();
Command VersionCommand();
Command WatchCommand();
Command ZipCommands();

} // namespace vlm
