// The text that describes the library in join and leave lines: "VXUT21.DLL 21.1.0.0 (64-bit release)".
#pragma once

#include "text/string.h"

namespace vxut {

// Built at the first use, but not while another thread holds the loader's lock: that thread may be waiting
// for the debug channel, and resources cannot be read without the lock. Used by one thread at a time.
class clsVersionText {
public:
    // Empty while the loader is busy. Valid as long as the object.
    const wchar_t* Text();

private:
    String text_;
};

// The text for the version resource of a library, which is taken from the loaded module or else from the
// file. The text begins with fileName in upper case.
String BuildVersionText(const wchar_t* libraryPath, const wchar_t* fileName);

// The text for one version resource; empty if that contains no strings.
String VersionTextOfData(const wchar_t* fileName, const void* data, size_t bytes);

// A string of the version resource of a loaded module, such as "InternalName"; empty if there is none.
String VersionStringOfModule(HMODULE module, const wchar_t* name);

} // namespace vxut
