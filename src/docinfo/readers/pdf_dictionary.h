// Dictionaries of PDF.
#pragma once

#include "containers/containers.h"
#include "docinfo/readers/pdf_scanner.h"
#include "text/string.h"
#include "variant/variant.h"

#include <string_view>

namespace vxut {

// Text is VT_BSTR, a number VT_UI4, a boolean VT_BOOL. An array in brackets is its text. A key with several
// values, such as the two numbers of a reference, has an array of them (VT_ARRAY | VT_VARIANT). The contents
// of a dictionary within the dictionary are dropped.
using clsPdfDictionary = WCValSkipListDict<String, clsVariant>;

// Reads a dictionary behind the keyword, if there is one, into the given one. Of two equal keys the last one
// counts. Throws std::bad_alloc; at a fault clsException, and what was read before stays in the dictionary.
// Dictionaries may be nested to any depth.
void PdfReadDictionary(std::string_view keyword, clsPdfPosition& position, clsPdfDictionary& dictionary);

// The text of a value; empty if the key is missing or the value is an array. Throws std::bad_alloc.
String PdfTextOf(const clsPdfDictionary& dictionary, const wchar_t* key);

// The number of a value, or of its first element. Returns false if the key is missing or the value is no
// number.
bool PdfNumberOf(const clsPdfDictionary& dictionary, const wchar_t* key, int32_t& number);

} // namespace vxut
