#include "profile/forms/xfdf_form.h"

#include "profile/forms/xml_text.h"
#include "profile/load_exception.h"

namespace vxut {
namespace {

// What all names of a file may have together: each item has the whole path, so that a small file could take
// any amount of memory. Honest files have a few thousand.
constexpr int64_t kMostNameUnits = int64_t{16} * 1024 * 1024;

class XfdfReader {
public:
    XfdfReader(clsProfileInput& input, int level, clsItemList& list)
        : input_(input), isFileLevel_(level < 0), list_(list) {}

    void Run() {
        for (std::wstring_view line; input_.NextLine(line) && ReadLine(XmlSkip(line, L" "));) continue;
    }

private:
    [[noreturn]] void Raise(const wchar_t* message) const {
        throw clsLoadException(input_.Line(), message, path_);
    }
    void RequireLevel(const wchar_t* message) const {
        if (isFileLevel_) Raise(message);
    }

    // Returns false at the end of what the reader has to read.
    bool ReadLine(std::wstring_view line) {
        constexpr std::wstring_view kValue = L"<value>";
        constexpr std::wstring_view kField = L"<field>";
        constexpr std::wstring_view kFieldEnd = L"</field>";
        if (line.empty()) return true;
        if (line.front() != L'<') Raise(L"prof::xml::xfdf: bad format ('<' expected)");
        if (XmlStartsWith(line, kValue)) {
            ReadValue(line.substr(kValue.size()));
        } else if (XmlStartsWith(line, kField)) {
            ReadField(line.substr(kField.size()));
        } else if (XmlStartsWith(line, kFieldEnd)) {
            RequireLevel(L"prof::xml::field: bad format (negative level)");
            return false;
        }
        return true;
    }

    void ReadField(std::wstring_view text) {
        RequireLevel(L"prof::xml::field: bad format (negative level)");
        constexpr scXmlNameMessages kMessages = {L"prof::xml::field: no name found",
                                                 L"prof::xml::field: name unfinished"};
        std::wstring_view name;
        if (const wchar_t* const message = XmlTakeName(text, kMessages, name)) Raise(message);
        name = unescaper_.Read(name);
        if (hasField_) path_.Append(L'.');
        path_.Append(name.data(), static_cast<int64_t>(name.size()));
        hasField_ = true;
    }

    // A value may span lines. Its item is as long as the text before unescaping, with a terminator where the
    // unescaped text ends: callers rely on the length.
    void ReadValue(std::wstring_view line) {
        constexpr std::wstring_view kValueEnd = L"</value>";
        RequireLevel(L"prof::xml::value: bad format (negative level)");
        String text;
        std::wstring_view last;
        while (!XmlTakeUntil(line, kValueEnd, last)) {
            text.Append(line.data(), static_cast<int64_t>(line.size()));
            text.Append(L"\r\n", 2);
            if (!input_.NextLine(line)) Raise(L"prof::xml::value: bad format (missing next line)");
        }
        text.Append(last.data(), static_cast<int64_t>(last.size()));
        AddItem(text);
    }

    void AddItem(String& text) {
        nameUnits_ += path_.Length();
        if (nameUnits_ > kMostNameUnits) Raise(L"prof::xml::value: the names are too long");
        const auto length = static_cast<size_t>(text.Length());
        wchar_t* const units = text.GetBuffer(text.Length());
        const size_t unescaped = XmlUnescape(units, length);
        if (unescaped < length) units[unescaped] = 0;
        list_.AppendItem({path_.Text(), static_cast<size_t>(path_.Length())}, {units, length});
    }

    clsProfileInput& input_;
    const bool isFileLevel_;
    clsItemList& list_;
    String path_; // the names of the fields, joined by "."
    bool hasField_ = false;
    int64_t nameUnits_ = 0; // of all items so far
    clsXmlUnescaper unescaper_;
};

} // namespace

void ProfReadXfdf(clsProfileInput& input, int level, clsItemList& list) {
    XfdfReader(input, level, list).Run();
}

} // namespace vxut
