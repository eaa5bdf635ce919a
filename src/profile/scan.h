// Scans numbers and tuples as `swscanf` does. Own code, because C run-time libraries differ in the result for
// a text that ends early, and stored data depends on it.
#pragma once

#include <cstdint>

namespace vxut {

// All return the number of fields read, or kScanEnd if the text ended before the first one. Fields that were
// not read are left unchanged. Numbers may have a sign and white space before them, and wrap.
constexpr int kScanEnd = -1;

int ScanDecimal(const wchar_t* text, int32_t& value);   // "%d"
int ScanDecimal64(const wchar_t* text, int64_t& value); // "%I64u"
int ScanHex(const wchar_t* text, uint32_t& value);      // "x%X"
int ScanHex64(const wchar_t* text, uint64_t& value);    // "x%I64X"
// "(%d,%d,...)" for count fields.
int ScanTuple(const wchar_t* text, int32_t* fields, int count);

} // namespace vxut
