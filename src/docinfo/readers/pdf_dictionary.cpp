#include "docinfo/readers/pdf_dictionary.h"

#include "docinfo/readers/properties.h"
#include "docinfo/readers/reader_exception.h"
#include "text/append_or_throw.h"

#include <new>
#include <utility>

namespace vxut {
namespace {

constexpr std::string_view kOpen = "<<";
constexpr std::string_view kClose = ">>";

using Values = WCValSList<clsVariant>;

void AppendText(Values& values, const String& text) {
    clsVariant value;
    SetText(value, text);
    AppendOrThrow(values, std::move(value));
}

void AppendNumber(Values& values, int32_t number) {
    clsVariant value;
    value.vt = VT_UI4;
    value.ulVal = static_cast<ULONG>(number);
    AppendOrThrow(values, std::move(value));
}

// Reads the word of a boolean, whose first letter is next.
void AppendBoolean(Values& values, clsPdfPosition& position, std::string_view word, VARIANT_BOOL boolean) {
    if (!position.StartsWith(word)) throw clsException(L"unexpected token");
    position.SkipAtMost(word.size());
    clsVariant value;
    value.vt = VT_BOOL;
    value.boolVal = boolean;
    AppendOrThrow(values, std::move(value));
}

clsVariant ArrayOf(Values&& values) {
    SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(values.entries()));
    if (!array) throw std::bad_alloc();
    clsVariant result;
    result.vt = VT_ARRAY | VT_VARIANT;
    result.parray = array;
    auto* element = static_cast<clsVariant*>(array->pvData);
    for (clsVariant& value : values) (element++)->Swap(value);
    return result;
}

void Store(clsPdfDictionary& dictionary, const String& key, Values&& values) {
    dictionary[key] = values.entries() == 1 ? std::move(*values.find(0)) : ArrayOf(std::move(values));
}

// Reads a dictionary and those inside it. Only the outermost one is kept; of the others it matters which
// tokens they take.
class DictionaryReader {
public:
    DictionaryReader(clsPdfPosition& position, clsPdfDictionary& dictionary)
        : position_(position), dictionary_(dictionary) {}

    void Run() {
        Open();
        while (!levels_.isEmpty()) {
            Level& level = *levels_.top();
            if (!level.hasKey && !ReadKey(level)) {
                Close();
                continue;
            }
            switch (ReadValues(level.values)) {
                case End::kValues:
                    if (levels_.entries() == 1) Store(dictionary_, level.key, std::move(level.values));
                    level = Level();
                    break;
                case End::kNoValues:
                    Close();
                    break;
                case End::kDictionary:
                    Open();
                    break;
            }
        }
    }

private:
    struct Level {
        bool hasKey = false;
        String key;
        Values values;
    };
    enum class End { kValues, kNoValues, kDictionary };

    void Open() {
        if (!PdfSkipTo(position_, kOpen)) throw clsException(L"object is not a dictionary");
        if (!levels_.push(Level())) throw std::bad_alloc();
    }

    // A closed dictionary is a value of the one around it.
    void Close() {
        if (!PdfSkipTo(position_, kClose)) throw clsException(L"expected end of dictionary");
        levels_.remove(0);
        if (levels_.isEmpty()) return;
        AppendText(levels_.top()->values, L"<dummy:Dict>");
        EndValue();
    }

    bool ReadKey(Level& level) {
        level.key = PdfKey(position_);
        level.hasKey = !level.key.IsEmpty();
        return level.hasKey;
    }

    void EndValue() {
        position_.SkipWhiteSpace();
        if (position_.IsAtEnd()) throw clsException(L"premature end of dictionary");
    }

    static End EndOf(const Values& values) { return values.isEmpty() ? End::kNoValues : End::kValues; }

    // Reads the values up to the next key or to a dictionary. A name can only be the first value.
    End ReadValues(Values& values) {
        position_.SkipWhiteSpace();
        for (;;) {
            const uint8_t byte = position_.Byte();
            if (byte == 0 || byte == '>') return EndOf(values);
            if (byte == '%') {
                position_.SkipComment();
            } else if (byte == '/') {
                if (!values.isEmpty()) return End::kValues;
                AppendText(values, PdfKey(position_));
                return End::kValues;
            } else if (position_.StartsWith(kOpen)) {
                return End::kDictionary;
            } else if (ReadValue(byte, values)) {
                EndValue();
            } else {
                position_.SkipAtMost(1);
            }
        }
    }

    // Returns false, without moving, if no value begins with the byte.
    bool ReadValue(uint8_t byte, Values& values) {
        if (byte == '(')
            AppendText(values, PdfLiteralString(position_));
        else if (byte == '<')
            AppendText(values, PdfHexString(position_));
        else if (byte == '[')
            AppendText(values, PdfArrayText(position_));
        else if (byte == 'f')
            AppendBoolean(values, position_, "false", VARIANT_FALSE);
        else if (byte == 't')
            AppendBoolean(values, position_, "true", VARIANT_TRUE);
        else if (byte == '+' || byte == '-' || byte == '.' || (byte >= '0' && byte <= '9'))
            AppendNumber(values, PdfNumber(position_));
        else
            return false;
        return true;
    }

    clsPdfPosition& position_;
    clsPdfDictionary& dictionary_;
    WCStack<Level> levels_;
};

} // namespace

void PdfReadDictionary(std::string_view keyword, clsPdfPosition& position, clsPdfDictionary& dictionary) {
    if (!keyword.empty() && !PdfSkipTo(position, keyword)) throw clsException(L"no object");
    DictionaryReader(position, dictionary).Run();
}

String PdfTextOf(const clsPdfDictionary& dictionary, const wchar_t* key) {
    String text;
    const clsVariant* const value = dictionary.find(key);
    // What is no array can always be written as text.
    if (value && !(value->vt & VT_ARRAY) && !value->ToString(text)) throw std::bad_alloc();
    return text;
}

bool PdfNumberOf(const clsPdfDictionary& dictionary, const wchar_t* key, int32_t& number) {
    const clsVariant* const value = dictionary.find(key);
    if (!value) return false;
    constexpr int32_t kFirst = 0;
    clsVariant first;
    if (value->vt & VT_ARRAY)
        value->GetArrayElement(first, &kFirst, 1);
    else
        first = *value;
    if (!first.ChangeType(VT_I4)) return false;
    number = first.lVal;
    return true;
}

} // namespace vxut
