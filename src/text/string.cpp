#include "text/string.h"

#include "base/debug.h"
#include "base/default_code_page.h"
#include "base/text_conversion.h"
#include "base/text_units.h"
#include "containers/containers.h"
#include "text/append_or_throw.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <new>

namespace vxut {

bool stringSharingOff = false;

namespace {

// What String::operator[] returns for a write out of bounds. Any value but 0 is a caller's mistake.
wchar_t guardUnit = 0;

int ConversionLength(int64_t length) noexcept { return static_cast<int>(std::min<int64_t>(length, INT_MAX)); }

size_t Size(int64_t length) noexcept { return static_cast<size_t>(length); }

void MoveUnits(wchar_t* to, const wchar_t* from, int64_t count) noexcept {
    MoveBytes(to, from, Size(count) * sizeof *to);
}

// Counts of kWhole and above have no limit.
int64_t Unlimited(int64_t count) noexcept { return count >= String::kWhole ? INT64_MAX : count; }

struct Units {
    const wchar_t* text;
    int64_t length;
};

constexpr bool IsAscii(wchar_t unit) noexcept { return unit < 0x80; }

constexpr int AsciiLower(wchar_t unit) noexcept {
    return unit >= L'A' && unit <= L'Z' ? unit + (L'a' - L'A') : unit;
}

// Names and paths have long equal beginnings, and units that differ are ASCII for the most part: the run-time
// library is asked about the others only.
int CompareFolded(const wchar_t* left, const wchar_t* right, size_t count) noexcept {
    for (size_t position = 0;; ++position) {
        position += FirstDifference(left + position, right + position, count - position);
        if (position == count) return 0;
        const wchar_t one = left[position];
        const wchar_t other = right[position];
        const int order = IsAscii(one) && IsAscii(other) ? AsciiLower(one) - AsciiLower(other)
                                                         : _wcsnicmp(left + position, right + position, 1);
        if (order != 0) return order;
    }
}

int CompareTexts(Units left, Units right, int64_t n, bool caseSensitive) noexcept {
    if (n == 0 || (left.text == right.text && left.length == right.length)) return 0;
    if (n > 0) {
        left.length = std::min(left.length, n);
        right.length = std::min(right.length, n);
    }
    const size_t common = Size(std::min(left.length, right.length));
    if (caseSensitive) {
        const size_t position = FirstDifference(left.text, right.text, common);
        if (position < common) return left.text[position] < right.text[position] ? -1 : 1;
    } else if (const int order = CompareFolded(left.text, right.text, common); order != 0) {
        return order;
    }
    return (left.length > right.length) - (left.length < right.length);
}

StringBuffer* CopyOf(StringBuffer& source, uint64_t needed) {
    const bool grows = needed > source.capacity;
    // A text that has grown once will grow again: the reserve makes many appends take linear time.
    const uint64_t reserve = grows ? std::min<uint64_t>(needed / 2, UINT32_MAX) : 0;
    StringBuffer* copy = StringBuffer::Make(grows ? needed : source.capacity, static_cast<uint32_t>(reserve));
    // The whole capacity: callers may have written beyond the terminator through GetBuffer().
    MoveUnits(copy->Text(), source.Text(), static_cast<int64_t>(source.capacity));
    return copy;
}

// Returns a reference that keeps text alive during a change, if text is in the object's own buffer; otherwise
// null. While it lives the buffer is shared, so that the change goes to another one.
StringBufferOwner HoldOwn(StringBuffer* buffer, const wchar_t* text) noexcept {
    const bool isOwn = buffer && text >= buffer->Text() && text < buffer->Text() + buffer->capacity;
    return StringBufferOwner(isOwn ? buffer->AddReference() : nullptr);
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

// Construction and destruction.

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

// Called by every mutator before it touches the text: makes the buffer private, drops the narrow view, calls
// OnChange() and provides the capacity for length units. All that can fail is done first; when it throws, the
// object is unchanged.
void String::PrepareChange(int64_t length, bool keepContent) {
    const uint64_t needed = StringBuffer::RoundedCapacity(length);
    const bool isShared = buffer_ && buffer_->IsShared();
    StringBuffer* made = nullptr;
    if (buffer_ == nullptr || isShared || !buffer_->GrowInPlace(needed))
        made = buffer_ && keepContent ? CopyOf(*buffer_, needed) : StringBuffer::Make(needed);
    if (isShared) {
        Release();
        if (keepContent)
            buffer_ = std::exchange(made, nullptr);
        else
            length_ = 0;
    }
    DropNarrow();
    OnChange();
    if (made == nullptr) return;
    Release();
    buffer_ = made;
}

void String::Terminate(int64_t length) noexcept {
    buffer_->Text()[length] = L'\0';
    length_ = length;
}

// Replaces removed units at position by units of text, which may be in the object's own buffer.
void String::Splice(int64_t position, int64_t removed, const wchar_t* text, int64_t added) {
    const StringBufferOwner hold = HoldOwn(buffer_, text);
    const int64_t length = length_ - removed + added;
    PrepareChange(std::max(length, length_), true);
    wchar_t* const place = buffer_->Text() + position;
    const int64_t tail = length_ - position - removed;
    if (added != removed) MoveUnits(place + added, place + removed, tail);
    MoveUnits(place, text, added);
    Terminate(length);
}

// Reading.

wchar_t String::operator[](int64_t index) const noexcept {
    return buffer_ && index >= 0 && index <= length_ ? buffer_->Text()[index] : L'\0';
}

wchar_t& String::operator[](int64_t index) {
    if (index < 0 || index >= length_) return guardUnit;
    PrepareChange(length_, true);
    return buffer_->Text()[index];
}

int String::CompareTo(const String& other, int64_t n) const {
    return CompareTexts({Text(), length_}, {other.Text(), other.length_}, n, IsCaseSensitive());
}

int String::CompareTo(const wchar_t* other, int64_t n) const {
    if (other == nullptr) other = L"";
    if (n == 0 || other == Text()) return 0;
    const auto length = static_cast<int64_t>(UnitLength(other, n > 0 ? Size(n) : kUnlimited));
    return CompareTexts({Text(), length_}, {other, length}, n, IsCaseSensitive());
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
    count = Unlimited(count);
    if (start == 0 && count >= length_) return *this;
    if (start >= length_ || count <= 0) return String();
    String part;
    part.AssignUnits(Text() + start, std::min(count, length_ - start));
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
    for (int64_t start = 0; start < length_;) {
        const auto count = static_cast<int64_t>(FindUnitWithin(Text() + start, Size(length_ - start), unit));
        AppendOrThrow(pieces, Mid(start, count));
        start += count + 1;
    }
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
    AssignUnits(text, static_cast<int64_t>(UnitLength(text)));
}

void String::Assign(const wchar_t* text, int64_t start, int64_t count) {
    count = Unlimited(count);
    if (text == nullptr || count < 1 || start < 0) {
        Empty();
        return;
    }
    const int64_t limit = count < INT64_MAX - start ? start + count : INT64_MAX;
    const auto found = static_cast<int64_t>(UnitLength(text, Size(limit)));
    if (found <= start) {
        Empty();
    } else {
        AssignUnits(text + start, std::min(count, found - start));
    }
}

void String::AssignUnits(const wchar_t* text, int64_t count) {
    const StringBufferOwner hold = HoldOwn(buffer_, text);
    PrepareChange(count, false);
    MoveUnits(buffer_->Text(), text, count);
    Terminate(count);
}

void String::Assign(const char* text, int64_t start, int64_t count) {
    count = Unlimited(count);
    if (text == nullptr || *text == 0 || count < 1 || start < 0) {
        Empty();
        return;
    }
    const int64_t limit = count < INT64_MAX - start ? start + count : INT64_MAX;
    const auto found = static_cast<int64_t>(::strnlen(text, Size(limit)));
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
        if (other.IsEmpty())
            Empty();
        else
            AssignUnits(other.Text(), other.length_);
        return;
    }
    StringBuffer* const shared = other.buffer_ ? other.buffer_->AddReference() : nullptr;
    const int64_t length = other.length_;
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

void String::Empty() noexcept {
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

void String::SetCodePage(uint32_t codePage) noexcept {
    if (codePage != codePage_) DropNarrow();
    codePage_ = codePage;
}

// Changing the text.

void String::Append(wchar_t unit) {
    if (unit != 0) Append(&unit, 1);
}

void String::Append(const wchar_t* text) {
    if (text) Append(text, static_cast<int64_t>(UnitLength(text)));
}

void String::Append(const wchar_t* text, int64_t count) {
    if (text == nullptr || count <= 0) return;
    if (count > INT64_MAX - length_) throw std::bad_alloc();
    if (buffer_)
        Splice(length_, 0, text, count);
    else
        AssignUnits(text, count);
}

void String::Append(const String& text) { Append(text.Text(), text.length_); }

void String::AppendDelimited(const String& separator, const String& text) {
    if (IsEmpty()) {
        Append(text);
        return;
    }
    String added(separator);
    added.Append(text);
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
    Delete(end, length_ - end);
}

void String::Insert(int64_t position, const String& text) {
    if (position < 0 || position > length_ || text.IsEmpty()) return;
    Splice(position, 0, text.Text(), text.length_);
}

void String::Delete(int64_t position, int64_t count) {
    if (IsEmpty() || position < 0 || position >= length_ || count <= 0) return;
    Splice(position, std::min(count, length_ - position), L"", 0);
}

void String::ReplaceRange(int64_t position, int64_t count, const String& text) {
    if (IsEmpty() || position < 0 || count < 0 || position > length_) return;
    // At the end only a text longer than the range is added.
    if (position == length_ && text.length_ <= count) return;
    Splice(position, std::min(count, length_ - position), text.Text(), text.length_);
}

int64_t String::ReplaceUnit(wchar_t from, wchar_t to, int64_t maximum) {
    maximum = Unlimited(maximum);
    const size_t first = FindUnitWithin(Text(), Size(length_), from);
    if (maximum <= 0 || first == Size(length_)) return 0;
    PrepareChange(length_, true);
    wchar_t* target = buffer_->Text() + first;
    const wchar_t* const end = buffer_->Text() + length_;
    int64_t replaced = 0;
    for (const wchar_t* source = target; source != end; ++source) {
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
    maximum = Unlimited(maximum);
    if (added.length_ < wanted.length_) return ReplaceByShorter(wanted, added, maximum);
    return ReplaceByLonger(wanted, added, maximum);
}

// Copies the text down over itself in one pass. The pass ends when the maximum is used up, and the text with
// it: callers rely on that.
int64_t String::ReplaceByShorter(const String& wanted, const String& added, int64_t maximum) {
    PrepareChange(length_, true);
    wchar_t* target = buffer_->Text();
    const wchar_t* source = target;
    const wchar_t* const end = source + length_;
    int64_t replaced = 0;
    while (replaced < maximum) {
        const auto left = static_cast<size_t>(end - source);
        const size_t kept = FindUnitsWithin(source, left, wanted.Text(), Size(wanted.length_));
        std::wmemmove(target, source, kept);
        target += kept;
        if (kept == left) break;
        target = std::copy_n(added.Text(), added.length_, target);
        source += kept + Size(wanted.length_);
        ++replaced;
    }
    Terminate(target - buffer_->Text());
    return replaced;
}

// Rebuilds the text in one pass, so that the time does not grow with matches times length.
int64_t String::ReplaceByLonger(const String& wanted, const String& added, int64_t maximum) {
    String result;
    const wchar_t* source = Text();
    const wchar_t* const end = source + length_;
    int64_t replaced = 0;
    for (; replaced < maximum; ++replaced) {
        const auto left = static_cast<size_t>(end - source);
        const size_t kept = FindUnitsWithin(source, left, wanted.Text(), Size(wanted.length_));
        if (kept == left) break;
        result.Append(source, static_cast<int64_t>(kept));
        result.Append(added);
        source += kept + Size(wanted.length_);
    }
    if (replaced == 0) return 0;
    result.Append(source, end - source);
    Take(result);
    return replaced;
}

void String::Join(const String& separator, const WCValSList<String>& list) {
    String joined(*this);
    bool first = true;
    for (const String& piece : list) {
        if (!first) joined.Append(separator);
        joined.Append(piece);
        first = false;
    }
    Take(joined);
}

wchar_t* String::GetBuffer(int64_t n) {
    PrepareChange(std::max(n, length_), true);
    buffer_->Text()[buffer_->capacity - 1] = L'\0';
    return buffer_->Text();
}

void String::SetLengthByScan() {
    if (buffer_) SetLength(static_cast<int64_t>(UnitLength(buffer_->Text(), buffer_->capacity - 1)));
}

void String::SetLength(int64_t length) {
    if (buffer_ == nullptr || length < 0 || static_cast<uint64_t>(length) >= buffer_->capacity) return;
    PrepareChange(length_, true);
    Terminate(length);
}

} // namespace vxut
