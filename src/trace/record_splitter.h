// Cuts a line into the records that a viewer takes.
#pragma once

#include "util/trace_viewer.h"

#include <windows.h>

#include <cstddef>

namespace vxut {

// Calls take(record, bytes) for each record of a text: at a line end, of which two bytes in a row are one,
// when UTIL_TRACE_RECORD_BYTES are reached, and for what stands at the end. Behind each record one byte is
// free for the taker. Line ends at the beginning make no records. A bell sounds and is in no record.
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
