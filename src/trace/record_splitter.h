// Cuts a line into the records of the viewer protocol.
#pragma once

#include "util/trace_viewer.h"

#include <windows.h>

#include <cstddef>

namespace vxut {

// Calls take(record, bytes) for each record of a text. A record ends at a line end, which is one CR or LF or
// any two of them in a row, after UTIL_TRACE_RECORD_BYTES bytes, and at the end of the text. take() may write
// one byte after the record. Line ends at the beginning make no records. A bell character sounds and is
// removed.
template <class Take>
void SplitRecords(const char* text, Take take) {
    const auto isLineEnd = [](char byte) { return byte == '\r' || byte == '\n'; };
    char record[UTIL_TRACE_RECORD_BYTES + 1];
    size_t bytes = 0;
    const auto finish = [&] {
        take(record, bytes);
        bytes = 0;
    };

    while (isLineEnd(*text)) ++text;
    for (; *text; ++text) {
        if (*text == '\a') {
            MessageBeep(MB_OK);
        } else if (isLineEnd(*text)) {
            finish();
            if (isLineEnd(text[1])) ++text;
        } else {
            record[bytes++] = *text;
            if (bytes == UTIL_TRACE_RECORD_BYTES) finish();
        }
    }
    if (bytes > 0) finish();
}

} // namespace vxut
