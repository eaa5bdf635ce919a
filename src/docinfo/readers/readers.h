// The readers of document properties, one for each format or source.
//
// A reader writes what it finds into the document and returns a negative value if it failed, else 0. What it
// read before a fault stays. Times are UTC. A reader runs on the thread that loads the document; it shares
// nothing with other calls, throws only std::bad_alloc, and bounds its time and memory whatever the bytes.
#pragma once

#include "docinfo/document.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

// Readers of an open file. The position is anywhere before and after.
int ReadMail(clsDocu& document, clsDocFile& file);
int ReadPdf(clsDocu& document, clsDocFile& file);
int ReadZipPackage(clsDocu& document, clsDocFile& file);
int ReadXmlProperties(clsDocu& document, clsDocFile& file);
int ReadRtf(clsDocu& document, clsDocFile& file);
int ReadHtml(clsDocu& document, clsDocFile& file);
int ReadJpeg(clsDocu& document, clsDocFile& file);
int ReadWinWord2(clsDocu& document, clsDocFile& file);
int ReadWordPerfect(clsDocu& document, clsDocFile& file);
// The header is at base, from which all offsets of the image count.
int ReadTiff(clsDocu& document, clsDocFile& file, uint32_t base);

// Readers that open the file themselves.
int ReadShellIndex(clsDocu& document, const String& path);
int ReadPropertyStore(clsDocu& document, const String& path);
int ReadMessageStorage(clsDocu& document, const String& path);
int ReadCompoundProperties(clsDocu& document, const String& path);

// Reads the elements inside <o:DocumentProperties>, as office programs write them into web pages.
int ReadOfficeBlock(clsDocu& document, const String& block);

// Returns the target of a shortcut, empty if it cannot be resolved.
String ResolveShortcut(const String& path);

} // namespace vxut
