// File names taken apart, made whole and judged. Nothing here reports: a helper that cannot do its work hands
// back its input or an empty text.
#pragma once

#include "text/string.h"

namespace vxut {

// What a path names.
enum PathKind {
    kPathNothing = 0,
    kPathFile = 1,
    kPathDirectory = 2,
    kPathPrinterPort = 3, // LPT1:
    kPathSerialPort = 4,  // COM1:
    kPathUsbPort = 6
};

// The parts of a path: "C:\dir\" + "name" + ".ext".
String DirectoryPart(const String& path); // drive and directory, with the separator at its end
String FilePart(const String& path);      // name and extension
String BaseName(const String& path);      // name without extension
String Extension(const String& path);     // with its dot

// The folder text with a backslash at its end.
String WithBackslash(const String& folder);

// The absolute path without "." and ".." steps.
String FullName(const String& path);
// The path with its short 8.3 names spelled out.
String LongName(const String& path);
// The user's temp directory, with a backslash at its end. Asked once and kept.
String TempDirectory(bool longForm);

// Whether the system lets a file have this name, which is given without directory: no device name in upper
// case, no forbidden character, no blank or dot at the end, not empty.
bool IsFileNameAllowed(const String& fileName);

// Tells what is there. Drops a leading "FILE:" from the path.
PathKind DeviceTest(String& path);

// Replaces %NAME% by the environment variable or the shell folder ("%PERSONAL%") of that name. Unknown names
// stay as they are. False if the system fails.
bool ExpandTokens(const String& text, String& result);

} // namespace vxut
