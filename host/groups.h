// The commands and groups below the root, each in its own source file. A new one is declared here and listed
// in main.cpp.
#pragma once

#include "host/command.h"

namespace vlm {

Command CharsetCommands();
Command DateCommands();
Command DebugCommand();
Command DecodeCommand();
Command DocinfoCommand();
Command EncodeCommand();
Command EnvCommand();
Command HeapDemoCommand();
Command HtmlCommands();
Command PathCommands();
Command ProfileCommands();
Command TempCommand();
Command TraceCommand();
Command VersionCommand();
Command ZipCommands();

} // namespace vlm
