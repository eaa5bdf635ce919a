// Conversion between byte strings and wide text, code pages of Internet charset names, and the likely charset
// of a text.
#pragma once

#include "base/owners.h"
#include "base/utf8.h"
#include "text/string.h"

#include <cstdint>
#include <span>

namespace vxut {

// As a code page: each byte is the character of the same value, and nothing is looked up.
constexpr uint32_t kCodePageBytes = 0xFFFFFFFF;

// One text in two forms, wide and narrow, each made at the first request. Texts of less than 64 units are
// kept in the object; longer ones are allocated, and std::bad_alloc is thrown if there is no memory. Pointers
// stay valid until the next Set() or Reset() and the end of the object. An object belongs to one thread.
class clsCharsetConversionString {
public:
    clsCharsetConversionString() noexcept = default; // the library's default code page
    explicit clsCharsetConversionString(const char* bytes) { Set(bytes); }
    explicit clsCharsetConversionString(const wchar_t* text) { Set(text); }
    clsCharsetConversionString(const clsCharsetConversionString&) = delete;
    clsCharsetConversionString& operator=(const clsCharsetConversionString&) = delete;
    virtual ~clsCharsetConversionString(); // as Reset()

    // Replaces both forms with a copy of a text, which must not be that of this object. Null is the empty
    // text; a length of -1 means up to the terminator. The object is empty if the copy throws.
    void Set(const char* bytes, int64_t length = -1);
    void Set(const wchar_t* text, int64_t length = -1);

    // Never null. The empty text if the code page cannot convert it.
    const wchar_t* GetWide();
    const char* GetNarrow();

    // Sets the buffer to which the next Reset() copies the text, truncated to size units with the terminator.
    // Each form has a target of its own; the caller keeps it until then.
    void SetTarget(char* target, uint32_t size) noexcept;
    void SetTarget(wchar_t* target, uint32_t size) noexcept;
    // Copies the text to the targets, then drops text and targets.
    void Reset();

protected:
    explicit clsCharsetConversionString(uint32_t codePage) noexcept : codePage_(codePage) {}

private:
    // One form of the text with its terminator: in the object, or allocated if it is long.
    template <class Unit>
    class Form {
    public:
        bool IsSet() const noexcept { return text_ != nullptr; }
        const Unit* Text() const noexcept { return text_; }
        int64_t Length() const noexcept { return length_; }
        // Drops the old text. The new one is terminated and otherwise not initialised.
        Unit* Allocate(int64_t length);
        // Shortens the form to what a conversion wrote.
        void Cut(int64_t length) noexcept;
        void Copy(const Unit* text, int64_t length);
        void Free() noexcept;

    private:
        static constexpr int64_t kSmallUnits = 64;

        Unit* text_ = nullptr; // null until asked for
        int64_t length_ = 0;
        clsAutoDeleteBytes<Unit> large_;
        Unit small_[kSmallUnits];
    };

    void MakeWide();
    void MakeNarrow();

    Form<wchar_t> wide_;
    Form<char> narrow_;
    std::span<wchar_t> wideTarget_;
    std::span<char> narrowTarget_;
    uint32_t codePage_ = 0;
};

// The same with a given code page: 0 is the default of the library; kCodePageBytes is possible.
class clsCharsetConversionStringCP : public clsCharsetConversionString {
public:
    explicit clsCharsetConversionStringCP(uint32_t codePage) noexcept
        : clsCharsetConversionString(codePage) {}
    clsCharsetConversionStringCP(const char* bytes, uint32_t codePage)
        : clsCharsetConversionString(codePage) {
        Set(bytes);
    }
    clsCharsetConversionStringCP(const wchar_t* text, uint32_t codePage)
        : clsCharsetConversionString(codePage) {
        Set(text);
    }
};

// The code page of an Internet charset name, compared without regard to case; fallback if the name is not in
// the table.
uint32_t CodePageOfCharset(const String& name, uint32_t fallback);

// Decodes a text whose units each hold one byte of UTF-8 in their low 8 bits. If it cannot be decoded,
// returns a message instead, which callers display.
String DecodeUtf8String(const String& bytes);

// The GDI charset (SHIFTJIS_CHARSET and so on) of a font for the scripts of a text, or 0. text may be null.
uint32_t LikelyCharset(const wchar_t* text);

} // namespace vxut
