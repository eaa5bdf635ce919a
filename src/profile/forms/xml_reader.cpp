#include "profile/forms/xml_form.h"

#include "profile/forms/xfdf_form.h"
#include "profile/forms/xml_text.h"
#include "profile/list_builder.h"
#include "profile/load_exception.h"

namespace vxut {
namespace {

constexpr int kFileLevel = -1; // before "<profile>"
constexpr int kRootLevel = 0;

class XmlReader {
public:
    XmlReader(clsProfileInput& input, int level, clsItemList& list)
        : input_(input), level_(level), list_(list), builder_(list) {}

    void Run() {
        for (std::wstring_view line; input_.NextLine(line) && ReadLine(line);) continue;
        builder_.CloseAll();
    }

private:
    // Reads the text of a tag behind its name. Returns false at the end of what the reader has to read.
    using ReadTag = bool (XmlReader::*)(std::wstring_view text);
    struct Tag {
        std::wstring_view start;
        ReadTag read;
    };
    static const Tag kTags[];

    [[noreturn]] void Raise(const wchar_t* message) const {
        throw clsLoadException(input_.Line(), message, String());
    }

    bool ReadLine(std::wstring_view line) {
        line = XmlSkip(line);
        return !SkipComment(line) || ReadTagAt(line);
    }

    bool ReadTagAt(std::wstring_view text);

    // Takes the "<" of a tag.
    void TakeBracket(std::wstring_view& text) const {
        if (!text.starts_with(L'<')) Raise(L"prof::xml: bad format");
        text.remove_prefix(1);
    }

    // Moves to the tag of a line, behind its "<". Returns false if nothing is left to read on it. Every line
    // of a comment must begin with "<" or "-->".
    bool SkipComment(std::wstring_view& text) {
        if (isInComment_ && text.starts_with(L"-->")) {
            isInComment_ = false;
            text = XmlSkip(text.substr(3));
        }
        if (text.empty()) return false;
        TakeBracket(text);
        if (!isInComment_ && text.starts_with(L"!--")) {
            isInComment_ = true;
            text = XmlSkip(text.substr(3));
        }
        return !isInComment_ || LeaveComment(text);
    }

    // A comment ends at "-->" behind a blank or a TAB only.
    bool LeaveComment(std::wstring_view& text) {
        std::wstring_view comment;
        if (!XmlTakeUntil(text, L" -->", comment) && !XmlTakeUntil(text, L"\t-->", comment)) return false;
        isInComment_ = false;
        text = XmlSkip(text);
        if (text.empty()) return false;
        TakeBracket(text);
        return true;
    }

    bool ReadItem(std::wstring_view text) {
        if (level_ == kFileLevel) Raise(L"prof::xml::item bad nesting level (becomes negative)");
        constexpr scXmlNameMessages kMessages = {L"prof::xml::item empty name",
                                                 L"prof::xml::item no end tag"};
        const std::wstring_view name = TakeName(text, kMessages);
        std::wstring_view value;
        if (!XmlTakeUntil(text, L">", value)) Raise(L"prof::xml::item no end tag (2)");
        if (!XmlTakeUntil(text, L"</item>", value)) Raise(L"prof::xml::item no '</item>' tag found");
        builder_.AddItem(nameUnescaper_.Read(name), valueUnescaper_.Read(value));
        return true;
    }

    bool OpenList(std::wstring_view text) {
        if (level_ == kFileLevel) Raise(L"prof::xml::list: bad nesting level");
        constexpr scXmlNameMessages kMessages = {L"prof::xml::list: name is empty",
                                                 L"prof::xml::list: name is unfinished"};
        builder_.OpenList(nameUnescaper_.Read(TakeName(text, kMessages)));
        ++level_;
        return true;
    }

    bool CloseList(std::wstring_view) {
        if (level_ == kFileLevel) Raise(L"prof::xml::profile: bad nesting level (becomes negative)");
        --level_;
        return builder_.CloseList();
    }

    bool OpenProfile(std::wstring_view) {
        if (level_ != kFileLevel) Raise(L"prof::xml::profile: bad nesting level (should be -1)");
        level_ = kRootLevel;
        return true;
    }

    bool CloseProfile(std::wstring_view) {
        if (level_ != kRootLevel) Raise(L"prof::xml::profile: bad nesting level (should be 0)");
        return false;
    }

    bool ReadFields(std::wstring_view) {
        if (level_ != kFileLevel) Raise(L"prof::xml::xfdf: bad nesting level (should be -1)");
        ProfReadXfdf(input_, kRootLevel, list_);
        return false;
    }

    bool CloseFields(std::wstring_view) {
        if (level_ != kRootLevel) Raise(L"prof::xml::xfdf: bad nesting level (should be 0)");
        return false;
    }

    std::wstring_view TakeName(std::wstring_view& text, const scXmlNameMessages& messages) const {
        std::wstring_view name;
        if (const wchar_t* const message = XmlTakeName(text, messages, name)) Raise(message);
        return name;
    }

    clsProfileInput& input_;
    int level_; // of the innermost open list
    clsItemList& list_;
    clsListBuilder builder_;
    bool isInComment_ = false;
    clsXmlUnescaper nameUnescaper_;
    clsXmlUnescaper valueUnescaper_;
};

constexpr XmlReader::Tag XmlReader::kTags[] = {
    {L"item ", &XmlReader::ReadItem},         {L"list ", &XmlReader::OpenList},
    {L"/list>", &XmlReader::CloseList},       {L"profile>", &XmlReader::OpenProfile},
    {L"/profile>", &XmlReader::CloseProfile}, {L"xfdf ", &XmlReader::ReadFields},
    {L"/xfdf>", &XmlReader::CloseFields},
};

bool XmlReader::ReadTagAt(std::wstring_view text) {
    for (const Tag& tag : kTags)
        if (XmlStartsWith(text, tag.start)) return (this->*tag.read)(text.substr(tag.start.size()));
    return true;
}

} // namespace

void ProfReadXml(clsProfileInput& input, int level, clsItemList& list) {
    XmlReader(input, level, list).Run();
}

} // namespace vxut
