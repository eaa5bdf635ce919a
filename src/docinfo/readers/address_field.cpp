#include "docinfo/readers/address_field.h"

#include "docinfo/readers/encoded_word.h"
#include "text/append_or_throw.h"
#include "text/shared_regex.h"

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <utility>

namespace vxut {
namespace {

// The two halves of a mailbox: words or quoted texts, the second one without dots.
constexpr wchar_t kMailbox[] =
    LR"((?:[^\x01-\x1f\x7f()<>@,;:\\\[\] ]+|"[^"]*"))"
    L"@"
    LR"((?:[^\x01-\x1f\x7f()<>@,;:\\\[\] \.]+|"[^"]*"))"
    LR"((?:\.(?:[^\x01-\x1f\x7f()<>@,;:\\\[\] \.]+|"[^"]*"))+)";

clsSharedRegEx mailboxPattern(kMailbox, kRegExCaseless);

// A search goes through the whole text from each position, so it sees no more of a text without blanks.
constexpr int64_t kMostMailboxUnits = 2048;

constexpr wchar_t kExchangeAddress[] = L"<EX:";
constexpr size_t kExchangeAddressUnits = 4;

constexpr wchar_t kDelete = 127;
bool IsControl(wchar_t unit) { return unit < L' ' || unit == kDelete; }
bool IsBlank(wchar_t unit) { return unit == L' ' || unit == L'\t'; }

class Tokeniser {
public:
    explicit Tokeniser(const String& value) : text_(value), words_(value) {}

    WCValDList<clsParseItem> Run() {
        while (!isEnded_ && Unit()) Step();
        Finish();
        return std::move(items_);
    }

private:
    enum class State { kPlain, kQuoted, kComment, kAngle };

    // The unit at the position; 0 at the end of the text.
    wchar_t Unit() const { return text_[position_]; }

    void Step() {
        if (isEscaped_) {
            isEscaped_ = false;
            return Take();
        }
        switch (state_) {
            case State::kPlain:
                return StepPlain();
            case State::kQuoted:
                return TakeUpTo(L'"', clsParseItem::kText);
            case State::kComment:
                return StepComment();
            case State::kAngle:
                return TakeUpTo(L'>', clsParseItem::kAddress);
        }
    }

    void StepPlain() {
        switch (const wchar_t unit = Unit()) {
            case L'"':
                return Begin(State::kQuoted);
            case L'(':
                return Begin(State::kComment);
            case L'<':
                FlushText();
                return Begin(State::kAngle);
            case L'\\':
                isEscaped_ = true;
                ++position_;
                return;
            case L'=':
                return TakeWord();
            case L' ':
            case L'\t':
                return TakeBlanks();
            default:
                if (!IsControl(unit)) return Take();
                items_.clear();
                isEnded_ = true;
        }
    }

    // A word counts only behind another character, which it replaces.
    void StepComment() {
        int64_t end = position_ + 1;
        String word;
        if (Unit() == L')' || !words_.DecodeAt(end, word)) return TakeUpTo(L')', clsParseItem::kComment);
        buffer_ += word;
        position_ = end;
        while (Unit() == L' ') ++position_;
    }

    void Take() {
        buffer_.Append(Unit());
        ++position_;
    }

    void Begin(State state) {
        Take();
        state_ = state;
    }

    // Takes a unit; the closing one makes the buffer a token.
    void TakeUpTo(wchar_t closing, clsParseItem::Kinds kind) {
        const bool isClosed = Unit() == closing;
        if (isClosed && IsExchangeAddress(kind)) {
            ++position_;
            buffer_.Empty();
        } else {
            Take();
            if (isClosed) Flush(kind);
        }
        if (isClosed) state_ = State::kPlain;
    }

    bool IsExchangeAddress(clsParseItem::Kinds kind) const {
        return kind == clsParseItem::kAddress &&
               _wcsnicmp(buffer_.Text(), kExchangeAddress, kExchangeAddressUnits) == 0;
    }

    // The text in hand is not flushed: it follows the word. Callers rely on it.
    void TakeWord() {
        const int64_t start = position_;
        String word;
        if (!words_.DecodeAt(position_, word)) return Take();
        Add(clsParseItem::kText, start, word);
    }

    void TakeBlanks() {
        FlushText();
        Add(clsParseItem::kBlank, position_, L" ");
        while (IsBlank(Unit())) ++position_;
    }

    void Add(clsParseItem::Kinds kind, int64_t position, const String& text) {
        clsParseItem item{kind, position, text};
        if (kind == clsParseItem::kText || kind == clsParseItem::kComment) item.Text.TrimRight();
        AppendOrThrow(items_, std::move(item));
    }

    void Flush(clsParseItem::Kinds kind) {
        Add(kind, position_ - buffer_.Length(), buffer_);
        buffer_.Empty();
    }

    void FlushText() {
        if (!buffer_.IsEmpty()) Flush(clsParseItem::kText);
    }

    void Finish() {
        if (buffer_.IsEmpty()) {
            if (state_ == State::kQuoted || state_ == State::kComment) items_.clear();
        } else if (items_.isEmpty()) {
            TakeMailbox();
        } else {
            Flush(clsParseItem::kText);
        }
    }

    void TakeMailbox() {
        clsRegExMatchList groups;
        if (!mailboxPattern.Match(buffer_.Left(kMostMailboxUnits), &groups)) return;
        const scRegExMatch& mailbox = groups.get(0);
        Add(clsParseItem::kAddress, position_ - buffer_.Length() + mailbox.position, mailbox.text);
    }

    const String text_;
    clsRFC1342Decoder words_;
    int64_t position_ = 0;
    State state_ = State::kPlain;
    bool isEscaped_ = false;
    bool isEnded_ = false;
    String buffer_; // of the token that is being read
    WCValDList<clsParseItem> items_;
};

} // namespace

WCValDList<clsParseItem> TokeniseAddressField(const String& value) { return Tokeniser(value).Run(); }

} // namespace vxut
