// Text between byte strings and wide text: a conversion buffer, the charset names of the Internet, UTF-8 in
// disguise, and a guess at the charset of a font.
#pragma once

#include "base/owners.h"
#include "base/utf8.h"
#include "text/string.h"

#include <cstdint>
#include <span>

namespace vxut {

// As a code page: each byte is the character of the same value.
constexpr uint32_t kCodePageBytes = 0xFFFFFFFF;

// One text in two forms, each made when it is first asked for. Texts below 64 units take no memory of their
// own. Pointers are good until the next Set(), Reset() or the end.
class clsCharsetConversionString {
public:
    clsCharsetConversionString() noexcept = default; // the library's default code page
    explicit clsCharsetConversionString(const char* bytes) { Set(bytes); }
    explicit clsCharsetConversionString(const wchar_t* text) { Set(text); }
    clsCharsetConversionString(const clsCharsetConversionString&) = delete;
    clsCharsetConversionString& operator=(const clsCharsetConversionString&) = delete;
    virtual ~clsCharsetConversionString(); // a Reset()

    // Replaces both forms by a copy of a text that is not this object's own. Null is the empty text; -1 as
    // length means up to the terminator.
    void Set(const char* bytes, int64_t length = -1);
    void Set(const wchar_t* text, int64_t length = -1);

    // Never null; the empty text if the code page cannot convert.
    const wchar_t* GetWide();
    const char* GetNarrow();

    // Where the next Reset() copies the text, cut to size units with its terminator. Each form has its own.
    void SetTarget(char* target, uint32_t size) noexcept;
    void SetTarget(wchar_t* target, uint32_t size) noexcept;
    // Copies back, then forgets text and targets.
    void Reset();

protected:
    explicit clsCharsetConversionString(uint32_t codePage) noexcept : codePage_(codePage) {}

private:
    // Room for one form and its terminator: within the object, or allocated for long texts.
    template <class Unit>
    class Form {
    public:
        bool IsSet() const noexcept { return text_ != nullptr; }
        const Unit* Text() const noexcept { return text_; }
        int64_t Length() const noexcept { return length_; }
        // Terminated, and otherwise not initialised.
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

// The same with a code page of its own: 0 is the library's default, kCodePageBytes none at all.
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

// The code page of a charset name, compared without case; fallback for names that are not in the table.
uint32_t CodePageOfCharset(const String& name, uint32_t fallback);

// Decodes text whose units each hold one byte of UTF-8. A text that cannot be decoded gives a message in
// place of the result: callers show it.
String DecodeUtf8String(const String& bytes);

// The GDI charset that a text asks for by its scripts: SHIFTJIS_CHARSET and so on, or 0.
uint32_t LikelyCharset(const wchar_t* text);

} // namespace vxut
