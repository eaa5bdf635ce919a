// The tokens of an address field of a mail header.
//
// Threads: no shared state.
#pragma once

#include "containers/list.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

struct clsParseItem {
    enum Kinds : int32_t {
        kText = 1,
        kComment = 3, // in parentheses
        kAddress = 4,
        kBlank = 5, // any number of blanks and tabs, as one blank
    };

    int32_t Kind = kText;
    int64_t Position = 0; // of its first character in the field
    String Text;          // with its delimiters
};

// Splits a field into its tokens in order of appearance, with encoded words decoded. Addresses of the form
// "<EX:...>" are left out. A field that is one mailbox without brackets makes one address; any other single
// word makes no token. A control character drops the tokens before it. Callers rely on all of these.
// Throws std::bad_alloc, and clsException as clsRFC1342Decoder does.
WCValDList<clsParseItem> TokeniseAddressField(const String& value);

} // namespace vxut
