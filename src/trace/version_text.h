// What the library says of itself to a viewer: "VXUT21.DLL 21.1.0.0 (64-bit release)".
#pragma once

#include "text/string.h"

namespace vxut {

// Built once, when it is first wanted, but not while another thread holds the loader's lock: that thread may
// be waiting for the debug channel, and resources cannot be read without the lock.
class clsVersionText {
public:
    // Empty as long as the loader is busy.
    const wchar_t* Text();

private:
    String text_;
};

// The text for the resources of a library: of the loaded one, else of the file. The file name is the one that
// the text begins with.
String BuildVersionText(const wchar_t* libraryPath, const wchar_t* fileName);

// The text for one copy of version data; empty if that holds no strings.
String VersionTextOfData(const wchar_t* fileName, const void* data, size_t bytes);

} // namespace vxut
