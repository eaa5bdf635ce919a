// Where symbols are looked for.
#pragma once

#include "text/string.h"

namespace vxut {

// What the search path is made of; an empty text is left out.
struct scSymbolPathFacts {
    String currentDirectory;
    String programDirectory;
    String symbolPath;          // _NT_SYMBOL_PATH
    String alternateSymbolPath; // _NT_ALTERNATE_SYMBOL_PATH
    String systemRoot;          // SYSTEMROOT
    bool isDeveloper = false;
};

// The folders with ";" between them.
String BuildSymbolPath(const scSymbolPathFacts& facts);

// The path for this process.
String SymbolPath();

} // namespace vxut
