// The commands of vlm profile for embedded files and for the clipboard.
#pragma once

#include "host/command.h"

namespace vlm {

Command CopyCommand();
Command EmbedCommand();
Command ExtractCommand();
Command PasteCommand();

} // namespace vlm
