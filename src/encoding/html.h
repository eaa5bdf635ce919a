// Conversions between plain text and HTML. They are made of passes over the text, each in time proportional
// to its length. All functions may be called from any thread and throw std::bad_alloc only.
#pragma once

#include "text/string.h"

namespace vxut {

// How tags are written: "<p>", or "[_[p]_]" for channels that would harm angle brackets.
enum class HtmlTags { kAngleBrackets, kPlaceholders };

// Replaces characters by entities. Each character without one of its own becomes "&#x04x;" and adds a blank
// to the end of the result, whose length callers rely on.
String MaskHtml(const String& text);

// Replaces entities by characters.
String DemaskHtml(const String& text);

String TextToHtml(const String& text, HtmlTags tags);

// The result has CR as its line end.
String HtmlToText(const String& html, HtmlTags tags);

} // namespace vxut
