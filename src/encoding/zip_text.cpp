#include "encoding/zip_text.h"

#include "text/regex.h"

#include <climits>

namespace vxut {
namespace {

constexpr UINT kOemCodePage = 437;

// Each has the part to remove as its first group and the rest as its second.
constexpr const wchar_t* kPrefixes[] = {
    LR"((?i)^([A-Z]:)(.*)$)",    // a drive
    LR"((?i)^(\\\\.*?)(\\.*)$)", // a server
};

// The units as the system counts them. What is longer is no name or comment of an archive.
int UnitsOf(const String& text) { return text.Length() > INT_MAX ? 0 : static_cast<int>(text.Length()); }

} // namespace

String ZipName(const String& name, const String& sourcePath) {
    String result = name.IsEmpty() ? sourcePath : name;
    for (const wchar_t* prefix : kPrefixes) {
        clsRegExMatchList groups;
        if (!clsRegEx(prefix).Match(result, &groups)) continue;
        result = groups.get(2).text;
        break;
    }
    result.ReplaceUnit(L'\\', L'/');
    return result;
}

// Characters that merely look like one of the code page would come back as that one, so they do not count.
bool IsZipOemText(const String& text) {
    if (text.IsEmpty()) return true;
    BOOL hasOthers = FALSE;
    const int bytes = WideCharToMultiByte(kOemCodePage, WC_NO_BEST_FIT_CHARS, text.Text(), UnitsOf(text),
                                          nullptr, 0, nullptr, &hasOthers);
    return bytes > 0 && !hasOthers;
}

std::string ZipBytes(const String& text, bool isUtf8) {
    const UINT codePage = isUtf8 ? CP_UTF8 : kOemCodePage;
    const int units = UnitsOf(text);
    const int size = WideCharToMultiByte(codePage, 0, text.Text(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    const int written =
        WideCharToMultiByte(codePage, 0, text.Text(), units, bytes.data(), size, nullptr, nullptr);
    bytes.resize(static_cast<size_t>(written));
    return bytes;
}

} // namespace vxut
