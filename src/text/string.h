// The library's text: wide, with a shared buffer that is copied on write, and a cached 8-bit view.
//
// A String is a value. Copies share one buffer through an atomic count and may live on different threads;
// one object belongs to one thread at a time, Narrow() included, which writes the cache. Pointers from Text()
// and Narrow() are good until the next change.
#pragma once

#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <cstdarg>
#include <cstdint>

namespace vxut {

template <class T>
class WCValSList;
class String;
struct StringBuffer; // the shared buffer

// A debugging aid that nothing in the library sets: copies become deep ones.
extern bool stringSharingOff;

// Owns 8-bit text and turns it into a String.
class clsCHARString {
public:
    clsCHARString() noexcept = default;
    clsCHARString(const char* text, int64_t length);
    clsCHARString(const clsCHARString&) = delete;
    clsCHARString& operator=(const clsCHARString&) = delete;
    virtual ~clsCHARString();

    // Code page 0 widens byte by byte; any other converts with MultiByteToWideChar.
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
    // Shares the buffer. The code page is the process default and not the other's: callers rely on it.
    String(const String& other);
    String(String&& other) noexcept;

    // Shares the buffer and takes the code page.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Assign() sees to it
    String& operator=(const String& other) {
        Assign(other);
        return *this;
    }
    String& operator=(String&& other) noexcept;
    String& operator=(const wchar_t* text) {
        Assign(text);
        return *this;
    }

    // The virtual operations, in this order.
    virtual bool IsCaseSensitive() const noexcept { return true; }
    // Gives -1, 0 or 1, or the sign of the run-time library's comparison when n is given. n is how many units
    // count; -1 means all. Case matters as the left object says.
    virtual int CompareTo(const String& other, int64_t n = -1) const;
    virtual int CompareTo(const wchar_t* other, int64_t n = -1) const;
    virtual ~String();

protected:
    // Called by every mutator when the buffer is private and before the text changes.
    virtual void OnChange() {}

public:
    // Reading.
    const wchar_t* Text() const noexcept; // never null
    int64_t Length() const noexcept { return length_; }
    bool IsEmpty() const noexcept { return length_ == 0; }
    uint32_t CodePage() const noexcept { return codePage_; }
    // 0 beyond the end.
    wchar_t operator[](int64_t index) const noexcept;
    // The unit to write to; a guard unit, which is reported when written, for an index out of bounds.
    wchar_t& operator[](int64_t index);
    // The text in the object's code page, made on first use. Never null.
    const char* Narrow() const;
    String Left(int64_t count) const;
    String Right(int64_t count) const;
    String Mid(int64_t start, int64_t count = kWhole) const;
    String Upper() const;
    String Lower() const;
    // Pieces between the units. An empty piece behind the last unit is left out.
    WCValSList<String> Split(wchar_t unit) const;
    // Makes target a BSTR of the text, or reallocates the one that is there.
    bool ToBSTR(BSTR* target) const;

    // Replacing the whole text.
    void Assign(const wchar_t* text);
    // At most count units from start of a text that may end earlier.
    void Assign(const wchar_t* text, int64_t start, int64_t count);
    // From 8-bit text in the object's code page.
    void Assign(const char* text, int64_t start, int64_t count);
    void Assign(const String& other);
    // Steals the other's text and leaves it empty. Code pages stay.
    void Take(String& other) noexcept;
    void Empty();
    void SetCodePage(uint32_t codePage);

    // Changing the text.
    void Append(wchar_t unit);
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
    // Replaces the first occurrences, at most maximum; to 0 deletes them. Gives the number replaced.
    int64_t ReplaceUnit(wchar_t from, wchar_t to, int64_t maximum = kWhole);
    // The same for texts. A replacement shorter than find drops the text behind the last replacement when the
    // maximum is used up; callers pass a maximum of at least the number of matches.
    int64_t ReplaceText(const String& find, const String& replacement, int64_t maximum = kWhole);
    void Join(const String& separator, const WCValSList<String>& list);
    // Makes room for n units, keeps the content and gives the text for direct writing. Call SetLength() or
    // SetLengthByScan() when done.
    wchar_t* GetBuffer(int64_t n);
    void SetLengthByScan();
    void SetLength(int64_t length);
    void MakeUpper();
    void MakeLower();
    // Maps in place as LCMapStringW does; the linguistic mapping of the invariant locale (127) where the
    // system has it. The text stays as it is when the mapping fails.
    void LCMapString(DWORD flags, LCID locale);

    // Formatting. The arguments of %s and %n are tested first: a bad one makes the text
    // "<printf format error>" and the result 0. Gives the new length. Formats are Microsoft's.
    int64_t Format(const wchar_t* format, ...);
    int64_t FormatV(const wchar_t* format, va_list arguments);

    // A message template ("%1") from the module's string resources in the user's language.
    static String Message(HMODULE module, uint32_t id, ...);
    // A message template formatted; the system's error text if that fails.
    static String VMessage(const wchar_t* format, va_list* arguments);
    // A string resource by language, with fallbacks to the user's language, English and German.
    static String FromResource(HMODULE module, uint32_t id, LANGID language);
    // The system's text for an error code, with the code behind it: "Access denied. (00000005)".
    static String FromError(DWORD code, DWORD language = LOCALE_USER_DEFAULT);
    // A field of the user's locale.
    static String FromLocaleInfo(LCTYPE type);

private:
    void Release() noexcept;
    void DropNarrow() noexcept;
    void PrepareChange(int64_t length, bool keepContent);
    void Terminate(int64_t length) noexcept;
    bool IsInBuffer(const wchar_t* text) const noexcept;
    void AssignUnits(const wchar_t* text, int64_t count);
    void AssignShared(const String& other);
    void AppendUnits(const wchar_t* text, int64_t count);
    int64_t ReplaceByShorter(const String& wanted, const String& added, int64_t maximum);
    int64_t ReplaceByLonger(const String& wanted, const String& added, int64_t maximum);

    int64_t length_ = 0;
    StringBuffer* buffer_ = nullptr; // null is the empty text
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
};

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

// Position of the first occurrence of wanted in text; -1 if it is absent or empty.
int64_t Find(const wchar_t* text, const wchar_t* wanted);

// The shared empty text, for those who must hand out a reference.
const String& EmptyString() noexcept;

} // namespace vxut
