#include "text/string.h"

#include "base/debug.h"
#include "base/default_code_page.h"
#include "base/text_conversion.h"
#include "base/text_units.h"
#include "containers/containers.h"
#include "text/string_buffer.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>

namespace vxut {

bool stringSharingOff = false;

namespace {

// What String::operator[] hands out for writing beyond the text. Anything but 0 is a host's mistake.
wchar_t guardUnit = 0;

int ConversionLength(int64_t length) noexcept { return static_cast<int>(std::min<int64_t>(length, INT_MAX)); }

int CompareTexts(const wchar_t* left, const wchar_t* right, int64_t n, bool caseSensitive) noexcept {
    if (n == 0 || left == right) return 0;
    const bool rightEmpty = right == nullptr || *right == 0;
    if (*left == 0) return rightEmpty ? 0 : -1;
    if (rightEmpty) return 1;
    if (n < 0) return caseSensitive ? CompareUnits(left, right) : _wcsicmp(left, right);
    const auto count = static_cast<size_t>(n);
    return caseSensitive ? std::wcsncmp(left, right, count) : _wcsnicmp(left, right, count);
}

} // namespace

const String& EmptyString() noexcept {
    static const String empty;
    return empty;
}

int64_t Find(const wchar_t* text, const wchar_t* wanted) {
    if (text == nullptr || wanted == nullptr || *wanted == 0) return -1;
    const wchar_t* found = std::wcsstr(text, wanted);
    return found ? found - text : -1;
}

// Life.

String::String() noexcept : codePage_(DefaultCodePage()) {}

String::String(const wchar_t* text, int64_t start, int64_t count) : String() {
    if (start == 0 && count == kWhole) {
        Assign(text);
    } else {
        Assign(text, start, count);
    }
}

String::String(const char* text, int64_t start, int64_t count) : String() { Assign(text, start, count); }

String::String(wchar_t unit, int64_t times) : String() {
    if (unit == 0 || times <= 0) return;
    PrepareChange(times, false);
    std::fill_n(buffer_->Text(), times, unit);
    Terminate(times);
}

String::String(const String& other) : String() { AssignShared(other); }

String::String(String&& other) noexcept : String() { Take(other); }

String& String::operator=(String&& other) noexcept {
    if (this == &other) return *this;
    Take(other);
    codePage_ = other.codePage_;
    return *this;
}

String::~String() {
    if (guardUnit != 0) [[unlikely]] {
        DebugWrite(L"WRN: detected write to String::operator[] with index out of bounds");
    }
    DropNarrow();
    Release();
}

// The buffer.

void String::Release() noexcept {
    if (buffer_) StringBuffer::Release(std::exchange(buffer_, nullptr));
}

void String::DropNarrow() noexcept {
    if (narrow_) delete[] std::exchange(narrow_, nullptr);
}

// What every mutator does before it touches the text: makes the buffer private, drops the narrow view, calls
// OnChange() and sees to the room for length units.
void String::PrepareChange(int64_t length, bool keepContent) {
    const uint64_t needed = StringBuffer::RoundedCapacity(length);
    if (buffer_ && buffer_->IsShared()) {
        StringBuffer* own = nullptr;
        if (keepContent) {
            own = StringBuffer::Make(std::max(needed, buffer_->capacity));
            std::wmemcpy(own->Text(), buffer_->Text(), static_cast<size_t>(length_) + 1);
        }
        Release();
        buffer_ = own;
    }
    DropNarrow();
    OnChange();
    if (buffer_ && needed <= buffer_->capacity) return;
    StringBuffer* grown = StringBuffer::Make(needed);
    if (buffer_ && keepContent)
        std::wmemcpy(grown->Text(), buffer_->Text(), static_cast<size_t>(length_) + 1);
    Release();
    buffer_ = grown;
}

void String::Terminate(int64_t length) noexcept {
    buffer_->Text()[length] = L'\0';
    length_ = length;
}

bool String::IsInBuffer(const wchar_t* text) const noexcept {
    return buffer_ && text >= buffer_->Text() && text < buffer_->Text() + buffer_->capacity;
}

// Reading.

const wchar_t* String::Text() const noexcept { return buffer_ ? buffer_->Text() : L""; }

wchar_t String::operator[](int64_t index) const noexcept {
    return buffer_ && index >= 0 && index <= length_ ? buffer_->Text()[index] : L'\0';
}

wchar_t& String::operator[](int64_t index) {
    if (index < 0 || index >= length_) return guardUnit;
    PrepareChange(length_, true);
    return buffer_->Text()[index];
}

int String::CompareTo(const String& other, int64_t n) const {
    return CompareTexts(Text(), other.Text(), n, IsCaseSensitive());
}

int String::CompareTo(const wchar_t* other, int64_t n) const {
    return CompareTexts(Text(), other, n, IsCaseSensitive());
}

const char* String::Narrow() const {
    if (length_ == 0) return "";
    if (narrow_ == nullptr) {
        const int length = ConversionLength(length_);
        const int bytes = NarrowText(codePage_, Text(), length, nullptr, 0);
        std::unique_ptr<char[]> view(new char[static_cast<size_t>(bytes) + 1]);
        const int written = bytes > 0 ? NarrowText(codePage_, Text(), length, view.get(), bytes) : 0;
        view[static_cast<size_t>(written)] = '\0';
        narrow_ = view.release();
    }
    return narrow_;
}

String String::Left(int64_t count) const { return Mid(0, count); }

String String::Right(int64_t count) const {
    return count >= length_ ? *this : Mid(length_ - std::max<int64_t>(count, 0), count);
}

String String::Mid(int64_t start, int64_t count) const {
    start = std::max<int64_t>(start, 0);
    if (start == 0 && count >= length_) return *this;
    if (start >= length_ || count <= 0) return String();
    String part;
    part.Append(Text() + start, std::min(count, length_ - start));
    return part;
}

String String::Upper() const {
    String copy(*this);
    copy.MakeUpper();
    return copy;
}

String String::Lower() const {
    String copy(*this);
    copy.MakeLower();
    return copy;
}

WCValSList<String> String::Split(wchar_t unit) const {
    WCValSList<String> pieces;
    int64_t start = 0;
    for (int64_t end = 0; end < length_; ++end) {
        if (Text()[end] != unit) continue;
        pieces.append(String(Text(), start, end - start));
        start = end + 1;
    }
    if (start < length_) pieces.append(String(Text(), start));
    return pieces;
}

bool String::ToBSTR(BSTR* target) const {
    if (target == nullptr || length_ > static_cast<int64_t>(INT_MAX)) return false;
    const auto length = static_cast<UINT>(length_);
    if (*target) return SysReAllocStringLen(target, Text(), length) != FALSE;
    *target = SysAllocStringLen(Text(), length);
    return *target != nullptr;
}

// Replacing the whole text.

void String::Assign(const wchar_t* text) {
    if (text == nullptr || *text == 0) {
        Empty();
        return;
    }
    AssignUnits(text, static_cast<int64_t>(std::wcslen(text)));
}

void String::Assign(const wchar_t* text, int64_t start, int64_t count) {
    if (text == nullptr || count < 1 || start < 0) {
        Empty();
        return;
    }
    const int64_t limit = count >= kWhole ? INT64_MAX / 2 : start + count;
    const auto found = static_cast<int64_t>(::wcsnlen(text, static_cast<size_t>(limit)));
    if (found <= start) {
        Empty();
    } else {
        AssignUnits(text + start, std::min(count >= kWhole ? found : count, found - start));
    }
}

void String::AssignUnits(const wchar_t* text, int64_t count) {
    if (IsInBuffer(text)) {
        const String hold(*this); // keeps the source alive while this object gets a buffer of its own
        PrepareChange(count, false);
        std::wmemcpy(buffer_->Text(), text, static_cast<size_t>(count));
        Terminate(count);
        return;
    }
    PrepareChange(count, false);
    std::wmemcpy(buffer_->Text(), text, static_cast<size_t>(count));
    Terminate(count);
}

void String::Assign(const char* text, int64_t start, int64_t count) {
    if (text == nullptr || *text == 0 || count < 1 || start < 0) {
        Empty();
        return;
    }
    const int64_t limit = count >= kWhole ? INT64_MAX / 2 : start + count;
    const auto found = static_cast<int64_t>(::strnlen(text, static_cast<size_t>(limit)));
    const int length = found > start ? ConversionLength(found - start) : 0;
    const int units = length > 0 ? WidenText(codePage_, text + start, length, nullptr, 0) : 0;
    if (units <= 0) {
        Empty();
        return;
    }
    // The text may be this object's own narrow view, which PrepareChange() drops.
    const std::unique_ptr<char[]> hold(std::exchange(narrow_, nullptr));
    PrepareChange(units, false);
    Terminate(WidenText(codePage_, text + start, length, buffer_->Text(), units));
}

void String::Assign(const String& other) {
    const bool sameText = buffer_ == other.buffer_ && (narrow_ == nullptr || codePage_ == other.codePage_);
    if (!sameText) AssignShared(other);
    codePage_ = other.codePage_;
}

void String::AssignShared(const String& other) {
    if (stringSharingOff) {
        Assign(other.Text());
        return;
    }
    StringBuffer* shared = other.buffer_;
    const int64_t length = other.length_;
    if (shared) shared->AddReference();
    DropNarrow();
    OnChange();
    Release();
    buffer_ = shared;
    length_ = length;
}

void String::Take(String& other) noexcept {
    if (this == &other) return;
    DropNarrow();
    OnChange();
    Release();
    other.DropNarrow();
    buffer_ = std::exchange(other.buffer_, nullptr);
    length_ = std::exchange(other.length_, 0);
}

void String::Empty() {
    DropNarrow();
    if (buffer_ == nullptr) return;
    if (buffer_->IsShared()) {
        Release();
        length_ = 0;
        OnChange();
        return;
    }
    OnChange();
    Terminate(0);
}

void String::SetCodePage(uint32_t codePage) {
    if (codePage != codePage_) DropNarrow();
    codePage_ = codePage;
}

// Changing the text.

void String::Append(wchar_t unit) {
    if (unit != 0) Append(&unit, 1);
}

void String::Append(const wchar_t* text) {
    if (text) Append(text, static_cast<int64_t>(std::wcslen(text)));
}

void String::Append(const wchar_t* text, int64_t count) {
    if (text == nullptr || count <= 0) return;
    if (IsInBuffer(text)) {
        const String hold(*this);
        AppendUnits(text, count);
    } else {
        AppendUnits(text, count);
    }
}

void String::AppendUnits(const wchar_t* text, int64_t count) {
    PrepareChange(length_ + count, true);
    std::wmemcpy(buffer_->Text() + length_, text, static_cast<size_t>(count));
    Terminate(length_ + count);
}

void String::Append(const String& text) { Append(text.Text(), text.length_); }

void String::AppendDelimited(const String& separator, const String& text) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be this object
    const String added(text);
    if (!IsEmpty()) Append(separator);
    Append(added);
}

void String::TrimLeft() {
    int64_t blanks = 0;
    while (blanks < length_ && Text()[blanks] == L' ') ++blanks;
    Delete(0, blanks);
}

void String::TrimRight(wchar_t unit) {
    int64_t end = length_;
    while (end > 0 && Text()[end - 1] == unit) --end;
    if (end == length_) return;
    PrepareChange(length_, true);
    Terminate(end);
}

void String::Insert(int64_t position, const String& text) {
    if (position < 0 || position > length_ || text.IsEmpty()) return;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be this object
    const String added(text);
    PrepareChange(length_ + added.length_, true);
    wchar_t* place = buffer_->Text() + position;
    std::wmemmove(place + added.length_, place, static_cast<size_t>(length_ - position));
    std::wmemcpy(place, added.Text(), static_cast<size_t>(added.length_));
    Terminate(length_ + added.length_);
}

void String::Delete(int64_t position, int64_t count) {
    if (IsEmpty() || position < 0 || position >= length_ || count <= 0) return;
    count = std::min(count, length_ - position);
    PrepareChange(length_, true);
    wchar_t* place = buffer_->Text() + position;
    std::wmemmove(place, place + count, static_cast<size_t>(length_ - position - count));
    Terminate(length_ - count);
}

void String::ReplaceRange(int64_t position, int64_t count, const String& text) {
    if (IsEmpty() || position < 0 || count < 0) return;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be this object
    const String added(text);
    const int64_t replaced = std::clamp<int64_t>(length_ - position, 0, count);
    if (added.length_ > count || (position < length_ && added.length_ > replaced)) {
        Delete(position, count);
        Insert(position, added);
    } else if (position < length_) {
        PrepareChange(length_, true);
        std::wmemcpy(buffer_->Text() + position, added.Text(), static_cast<size_t>(added.length_));
        Delete(position + added.length_, replaced - added.length_);
    }
}

int64_t String::ReplaceUnit(wchar_t from, wchar_t to, int64_t maximum) {
    if (from == 0 || maximum <= 0 || std::wcschr(Text(), from) == nullptr) return 0;
    PrepareChange(length_, true);
    wchar_t* target = buffer_->Text();
    int64_t replaced = 0;
    for (const wchar_t* source = target; *source; ++source) {
        if (*source != from || replaced == maximum) {
            *target++ = *source;
            continue;
        }
        ++replaced;
        if (to != 0) *target++ = to;
    }
    Terminate(target - buffer_->Text());
    return replaced;
}

int64_t String::ReplaceText(const String& find, const String& replacement, int64_t maximum) {
    if (IsEmpty() || find.IsEmpty()) return 0;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be this object
    const String wanted(find);
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be this object
    const String added(replacement);
    if (added.length_ < wanted.length_) return ReplaceByShorter(wanted, added, maximum);
    return ReplaceByLonger(wanted, added, maximum);
}

// One pass that copies the text down over itself. It ends when the maximum is used up, and the text with it:
// callers rely on that.
int64_t String::ReplaceByShorter(const String& wanted, const String& added, int64_t maximum) {
    PrepareChange(length_, true);
    wchar_t* target = buffer_->Text();
    const wchar_t* source = target;
    int64_t replaced = 0;
    while (replaced < maximum) {
        const wchar_t* match = std::wcsstr(source, wanted.Text());
        const size_t kept = match ? static_cast<size_t>(match - source) : std::wcslen(source);
        std::wmemmove(target, source, kept); // NOLINT(bugprone-not-null-terminated-result): ended below
        target += kept;
        if (match == nullptr) break;
        std::wmemcpy(target, added.Text(), static_cast<size_t>(added.length_));
        target += added.length_;
        source = match + wanted.length_;
        ++replaced;
    }
    Terminate(target - buffer_->Text());
    return replaced;
}

// Rebuilds the text in one pass, so that many matches in a long text cost no more than its length.
int64_t String::ReplaceByLonger(const String& wanted, const String& added, int64_t maximum) {
    int64_t matches = 0;
    for (const wchar_t* match = Text(); matches < maximum; ++matches) {
        match = std::wcsstr(match, wanted.Text());
        if (match == nullptr) break;
        match += wanted.length_;
    }
    if (matches == 0) return 0;
    String result;
    wchar_t* target = result.GetBuffer(length_ + matches * (added.length_ - wanted.length_));
    const wchar_t* source = Text();
    for (int64_t i = 0; i < matches; ++i) {
        const wchar_t* match = std::wcsstr(source, wanted.Text());
        target = std::copy(source, match, target);
        target = std::copy_n(added.Text(), added.length_, target);
        source = match + wanted.length_;
    }
    target = std::copy(source, Text() + length_, target);
    result.SetLength(target - result.Text());
    Take(result);
    return matches;
}

void String::Join(const String& separator, const WCValSList<String>& list) {
    bool first = true;
    for (const String& piece : list) {
        if (!first) Append(separator);
        Append(piece);
        first = false;
    }
}

wchar_t* String::GetBuffer(int64_t n) {
    PrepareChange(std::max(n, length_), true);
    buffer_->Text()[buffer_->capacity - 1] = L'\0';
    return buffer_->Text();
}

void String::SetLengthByScan() {
    if (buffer_) length_ = static_cast<int64_t>(std::wcslen(buffer_->Text()));
}

void String::SetLength(int64_t length) {
    if (buffer_ && length >= 0 && static_cast<uint64_t>(length) < buffer_->capacity) Terminate(length);
}

} // namespace vxut
