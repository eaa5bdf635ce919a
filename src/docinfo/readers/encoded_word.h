// Encoded words of mail headers, such as "=?iso-8859-1?Q?Andr=E9?=".
//
// Source: RFC 2047 (formerly RFC 1342), and the language tags of RFC 2231. More lenient than these: white
// space between words is kept, digits are not checked, and the length does not matter.
//
// Threads: an object belongs to one thread.
#pragma once

#include "text/regex.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

// Decodes the words of one header field. Functions throw std::bad_alloc, and clsException for an encoding
// that is neither Q nor B.
class clsRFC1342Decoder : public IclsRegExGSubCB {
public:
    explicit clsRFC1342Decoder(const String& field);

    // Returns the field with all words decoded. What is between two words is kept.
    String DecodeAll();

    // Decodes the word that begins at a position and moves the position behind it. Returns false if none
    // begins there.
    bool DecodeAt(int64_t& position, String& decoded);

    // Decodes one word: the groups are charset, encoding and encoded text. An unknown charset counts as the
    // system's ANSI code page. A zero byte ends the text.
    String Replace(const String& match, const clsRegExMatchList& matches) override;

private:
    int64_t EndOfWordAt(int64_t position) const;

    const String field_;
    const int64_t lastEnd_; // of the last word that there may be; 0 if there is none
    clsRegEx word_;
};

} // namespace vxut
