// Helpers for paths and file names. They report nothing: one that fails returns its input or an empty text.
// They may be called from any thread, and throw only when memory is exhausted.
#pragma once

#include "text/string.h"

namespace vxut {

// The kinds of things that a path can name.
enum PathKind {
    kPathNothing = 0,
    kPathFile = 1,
    kPathDirectory = 2,
    kPathPrinterPort = 3, // LPT1:
    kPathSerialPort = 4,  // COM1:
    kPathUsbPort = 6
};

// The parts of a path: "C:\dir\" + "name" + ".ext".
String DirectoryPart(const String& path); // drive and directory, with the trailing separator
String FilePart(const String& path);      // name and extension
String BaseName(const String& path);      // name without extension
String Extension(const String& path);     // with the leading dot

// The folder with a trailing backslash.
String WithBackslash(const String& folder);

// The absolute path, without "." and ".." components.
String FullName(const String& path);
// The path with its 8.3 names replaced by the long ones.
String LongName(const String& path);
// The temp directory of the user, with a trailing backslash. Each form is queried once and kept.
String TempDirectory(bool longForm);

// Whether a name without directory is a valid file name: not empty, no device name in upper case, no
// forbidden character, no blank or dot at the end.
bool IsFileNameAllowed(const String& fileName);

// The kind of what a path names. Removes a leading "FILE:" from the path. Ports are recognised by their
// names.
PathKind DeviceTest(String& path);

// Replaces each %NAME% with the environment variable or the shell folder ("%PERSONAL%") of that name. Unknown
// names are left unchanged. Returns false if the system fails.
bool ExpandTokens(const String& text, String& result);

} // namespace vxut
