// The library's text type: 16-bit units in a shared buffer that is copied on write, with a cached 8-bit view.
//
// Length: the text is as long as Length() says. Zero units within it are units like any other, in every
// operation that takes a String; only raw pointers without a count end at their first zero unit.
//
// Ownership: a String is a value. Copies share one buffer through an atomic count and cost no allocation.
// Pointers from Text() and Narrow() are valid until the next change of the object.
//
// Failure: operations that allocate throw std::bad_alloc and leave the object as it was. All operations
// accept texts that belong to the object itself, and null where they take a raw pointer.
//
// Threads: copies may live on different threads. One object serves one thread at a time, Narrow() included,
// which writes the cache.
#pragma once

#include "base/text_units.h"
#include "text/string_buffer.h"

#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>

namespace vxut {

template <class T>
class WCValSList;
class String;

// A debugging aid that nothing in the library sets: when true, copies are deep.
extern bool stringSharingOff;

// Owns 8-bit text, zero bytes included, and converts it to a String. A null text or a length below 1 makes an
// empty one.
class clsCHARString {
public:
    clsCHARString() noexcept = default;
    clsCHARString(const char* text, int64_t length);
    clsCHARString(const clsCHARString&) = delete;
    clsCHARString& operator=(const clsCHARString&) = delete;
    virtual ~clsCHARString();

    // Code page 0 widens byte by byte; any other converts with MultiByteToWideChar. Returns an empty text if
    // the system cannot convert.
    String ToString(uint32_t codePage) const;

    const char* Text() const noexcept { return text_ ? text_ : ""; }
    int64_t Length() const noexcept { return length_; }

private:
    char* text_ = nullptr;
    int64_t length_ = 0;
};

class String {
public:
    // As a count: up to the end of the text.
    static constexpr int64_t kWhole = 0x7FFFFFFF;

    String() noexcept;
    String(const wchar_t* text, int64_t start = 0,
           int64_t count = kWhole); // NOLINT(google-explicit-constructor)
    explicit String(const char* text, int64_t start = 0, int64_t count = kWhole);
    String(wchar_t unit, int64_t times);
    // Shares the buffer. The code page is the process default and not that of other: callers rely on it.
    String(const String& other);
    String(String&& other) noexcept;

    // Shares the buffer and takes the code page.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Assign() handles it
    String& operator=(const String& other) {
        Assign(other);
        return *this;
    }
    String& operator=(String&& other) noexcept;
    String& operator=(const wchar_t* text) {
        Assign(text);
        return *this;
    }

    // The virtual operations. Their order is part of the layout that callers of other modules rely on.
    virtual bool IsCaseSensitive() const noexcept { return true; }
    // Return a negative value, 0 or a positive value as this text is less than, equal to or greater than the
    // other. Only the first n units count; all of them if n is -1. IsCaseSensitive() of this object decides
    // about case.
    virtual int CompareTo(const String& other, int64_t n = -1) const;
    virtual int CompareTo(const wchar_t* other, int64_t n = -1) const;

    // What CompareTo() returns for texts of this very type, inlined into searches.
    static int Order(const String& left, const String& right) noexcept;

protected:
    // Called by every operation that changes the text, before it does: the buffer is private by then and the
    // narrow view dropped. An override may read the object, but must not change it.
    virtual void OnChange() noexcept {}

public:
    virtual ~String();

    // Reading.
    const wchar_t* Text() const noexcept { return buffer_ ? buffer_->Text() : L""; } // terminated, never null
    int64_t Length() const noexcept { return length_; }
    bool IsEmpty() const noexcept { return length_ == 0; }
    uint32_t CodePage() const noexcept { return codePage_; }
    // Returns 0 for an index out of bounds.
    wchar_t operator[](int64_t index) const noexcept;
    // For an index out of bounds, returns a guard unit; a value written to it is reported.
    wchar_t& operator[](int64_t index);
    // Returns the text in the object's code page, converted on first use. Never null; empty if the system
    // cannot convert. Texts of more than INT_MAX units are cut there.
    const char* Narrow() const;
    // Parts. A start or count below 0 counts as 0; what lies beyond the end is left out.
    String Left(int64_t count) const;
    String Right(int64_t count) const;
    String Mid(int64_t start, int64_t count = kWhole) const;
    String Upper() const;
    String Lower() const;
    // Returns the pieces between the occurrences of unit. Empty pieces are kept, except after the last unit.
    WCValSList<String> Split(wchar_t unit) const;
    // Stores the text as a BSTR, which the caller owns. A BSTR that is already in target is reallocated.
    // Returns false if that fails.
    bool ToBSTR(BSTR* target) const;

    // Replacing the whole text.
    void Assign(const wchar_t* text);
    // Takes at most count units from start. Reads at most start + count units and stops at a zero unit.
    void Assign(const wchar_t* text, int64_t start, int64_t count);
    // The same from 8-bit text in the object's code page. Empty if the system cannot convert.
    void Assign(const char* text, int64_t start, int64_t count);
    void Assign(const String& other);
    // Moves the text out of other, which is empty afterwards. Code pages stay.
    void Take(String& other) noexcept;
    void Empty() noexcept;
    void SetCodePage(uint32_t codePage) noexcept;

    // Changing the text. A position out of bounds changes nothing. Many appends to one text take time
    // proportional to its length.
    void Append(wchar_t unit); // except 0
    void Append(const wchar_t* text);
    void Append(const wchar_t* text, int64_t count);
    void Append(const String& text);
    void AppendDelimited(const String& separator, const String& text);
    String& operator+=(const String& text) {
        Append(text);
        return *this;
    }
    String& operator+=(const wchar_t* text) {
        Append(text);
        return *this;
    }
    String& operator+=(wchar_t unit) {
        Append(unit);
        return *this;
    }
    void TrimLeft(); // blanks (U+0020) only
    void TrimRight(wchar_t unit = L' ');
    void Insert(int64_t position, const String& text);
    void Delete(int64_t position, int64_t count);
    void ReplaceRange(int64_t position, int64_t count, const String& text);
    // Replaces the first occurrences, at most maximum. A to of 0 deletes them. Returns the number replaced.
    int64_t ReplaceUnit(wchar_t from, wchar_t to, int64_t maximum = kWhole);
    // The same for texts. If replacement is shorter than find, using up the maximum drops the text after the
    // last replacement, so pass a maximum of at least the number of matches.
    int64_t ReplaceText(const String& find, const String& replacement, int64_t maximum = kWhole);
    // Appends the strings of the list with the separator between them.
    void Join(const String& separator, const WCValSList<String>& list);
    // Provides capacity for n units, keeps the content and returns the text for direct writing. Call
    // SetLength() or SetLengthByScan() when done. Units written beyond Length() survive further calls of
    // GetBuffer().
    wchar_t* GetBuffer(int64_t n);
    // Ignores a length beyond the capacity.
    void SetLength(int64_t length);
    void SetLengthByScan();
    void MakeUpper();
    void MakeLower();
    // Maps the text as LCMapStringW does; the invariant locale (127) uses the linguistic mapping of newer
    // systems. If the system cannot map the text, it stays as it is and the failure is reported.
    void LCMapString(DWORD flags, LCID locale);

    // Formatting with Microsoft's formats: %s is wide, %hs narrow, %I64d a 64-bit number. Pointers among the
    // arguments are probed and padding is bounded first; a bad argument or excessive padding makes the text
    // "<printf format error>" and the result 0. Otherwise returns the new length.
    int64_t Format(const wchar_t* format, ...);
    int64_t FormatV(const wchar_t* format, va_list arguments);

    // Returns a message template ("%1") from the module's string resources in the user's language, formatted.
    static String Message(HMODULE module, uint32_t id, ...);
    // Returns a formatted message template; the system's error text if that fails.
    static String VMessage(const wchar_t* format, va_list* arguments);
    // Returns a string resource in the first language that has it: the one asked for, the user's, the
    // thread's, English, German. Empty if there is none.
    static String FromResource(HMODULE module, uint32_t id, LANGID language);
    // Returns the system's text for an error code, followed by the code: "Access denied. (00000005)".
    static String FromError(DWORD code, DWORD language = LOCALE_USER_DEFAULT);
    // Returns a field of the user's locale; empty if there is none.
    static String FromLocaleInfo(LCTYPE type);

private:
    void Release() noexcept;
    void DropNarrow() noexcept;
    void PrepareChange(int64_t length, bool keepContent);
    void Terminate(int64_t length) noexcept;
    void Splice(int64_t position, int64_t removed, const wchar_t* text, int64_t added);
    void AssignUnits(const wchar_t* text, int64_t count);
    void AssignShared(const String& other);
    int64_t ReplaceByShorter(const String& wanted, const String& added, int64_t maximum);
    int64_t ReplaceByLonger(const String& wanted, const String& added, int64_t maximum);

    int64_t length_ = 0;
    StringBuffer* buffer_ = nullptr; // null: the empty text
    mutable char* narrow_ = nullptr;
    [[maybe_unused]] int32_t reserved_ = -1;
    uint32_t codePage_;
};

// The same text, compared without case: a dictionary key.
class IString : public String {
public:
    using String::String;
    IString() noexcept = default;
    IString(const String& other) : String(other) {} // NOLINT(google-explicit-constructor)
    IString(const IString& other) = default;
    IString(IString&& other) noexcept = default;
    IString& operator=(const IString& other) = default;
    IString& operator=(IString&& other) noexcept = default;
    using String::operator=;

    bool IsCaseSensitive() const noexcept override { return false; }

    static int Order(const IString& left, const IString& right) noexcept { return left.CompareTo(right); }
};

// Compares whole blocks without a test for the end of the text: a buffer's capacity is a multiple of a block.
inline int String::Order(const String& left, const String& right) noexcept {
    const int64_t common = std::min(left.length_, right.length_);
    for (int64_t start = 0; start < common; start += kBlockUnits) {
        const wchar_t* const leftText = left.buffer_->Text();
        const wchar_t* const rightText = right.buffer_->Text();
        const int64_t position = start + FirstDifferenceOfBlock(leftText + start, rightText + start);
        if (position >= common) break;
        if (position < start + kBlockUnits) return leftText[position] < rightText[position] ? -1 : 1;
    }
    return (left.length_ > right.length_) - (left.length_ < right.length_);
}

inline bool operator==(const String& left, const String& right) { return left.CompareTo(right) == 0; }
inline bool operator==(const String& left, const wchar_t* right) { return left.CompareTo(right) == 0; }
inline bool operator<(const String& left, const String& right) { return left.CompareTo(right) < 0; }

inline String operator+(String left, const String& right) {
    left.Append(right);
    return left;
}
inline String operator+(String left, const wchar_t* right) {
    left.Append(right);
    return left;
}

// Returns the position of the first occurrence of wanted in text; -1 if it is absent, empty or null.
int64_t Find(const wchar_t* text, const wchar_t* wanted);

// A shared empty text, for functions that must return a reference.
const String& EmptyString() noexcept;

} // namespace vxut
