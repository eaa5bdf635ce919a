// The commands and groups below the root, each in its own source file. A new one is declared here and listed
// in main.cpp.
#pragma once

#include "host/command.h"

namespace vlm {

Command CharsetCommands();
Command CountryCommand();
Command CrashCommands();
Command DateCommands();
Command DebugCommand();
Command DecodeCommand();
Command DocinfoCommand();
Command DownloadCommand();
Command EncodeCommand();
Command EnvCommand();
Command HeapDemoCommand();
Command HelpDemoCommand();
Command HtmlCommands();
Command LanguageCommand();
Command PathCommands();
Command ProfileCommands();
Command SortCommand();
Command TempCommand();
Command TraceCommand();
Command VersionCommand();
Command WatchCommand();
Command ZipCommands();

} // namespace vlm
