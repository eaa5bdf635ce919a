// Mail messages: From, To, Subject and Date of the header.
//
// Source: RFC 822 and RFC 2822. More lenient than these: lines may end with CR or LF alone.
#include "docinfo/readers/mail.h"

#include "base/debug.h"
#include "docinfo/readers/address_field.h"
#include "docinfo/readers/encoded_word.h"
#include "docinfo/readers/head_text.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/reader_exception.h"
#include "docinfo/readers/readers.h"
#include "locale/date_forms.h"
#include "text/regex.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <iterator>

namespace vxut {
namespace {

constexpr const wchar_t* kAddressFields[] = {L"From", L"To", L"Reply-To", L"Return-Path", L"CC", L"BCC"};

struct FieldTarget {
    const wchar_t* name;
    clsVariant clsDocu::* property;
};
constexpr FieldTarget kTargets[] = {
    {L"From", &clsDocu::Author}, {L"To", &clsDocu::LastAuthor}, {L"Subject", &clsDocu::Title}};

bool IsAddressField(const String& name) {
    return std::any_of(std::begin(kAddressFields), std::end(kAddressFields),
                       [&](const wchar_t* field) { return _wcsicmp(field, name.Text()) == 0; });
}

// The text before the first empty line.
bool FindHeader(const String& text, String& header) {
    clsRegExMatchList groups;
    if (!clsRegEx(LR"(\r\n\r\n|\r{2}|\n{2})").Match(text, &groups)) return false;
    header = text.Left(groups.get(0).position);
    return true;
}

bool IsPossible(const SYSTEMTIME& time) {
    return time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 && time.wDay <= 31 && time.wHour <= 24 &&
           time.wMinute <= 59 && time.wSecond <= 59;
}

void TakeDate(clsDocu& document, const String& value) {
    SYSTEMTIME time = EmptyTime();
    if (ParseInternetDate(time, value) && IsPossible(time)) document.Created = time;
}

void TakeField(clsDocu& document, const String& name, const String& value) {
    if (_wcsicmp(name.Text(), L"Date") == 0) TakeDate(document, value);
    for (const FieldTarget& target : kTargets)
        if (_wcsicmp(name.Text(), target.name) == 0)
            SetText(document.*target.property, UtilDecodeMailField(value, name));
}

// Names with a hyphen do not match: no field of such a name counts.
void TakeFields(clsDocu& document, const String& header) {
    const String unfolded = clsRegEx(LR"([\r\n]+[\t ])").GSub(header, L" ");
    clsRegEx field(LR"(^([A-Za-z_]+):[\t ]*(.*)$)");
    clsRegExMatchList groups;
    for (const String& line : clsRegEx(LR"([\r\n]+)").Split(unfolded))
        if (field.Match(line, &groups)) TakeField(document, groups.get(1).text, groups.get(2).text);
}

} // namespace

String UtilDecodeMailField(const String& value, const String& fieldName) {
    if (!IsAddressField(fieldName)) return clsRFC1342Decoder(value).DecodeAll();
    String result;
    for (const clsParseItem& item : TokeniseAddressField(value)) result += item.Text;
    return result;
}

// Only the low 32 bits of the size count.
int ReadMail(clsDocu& document, clsDocFile& file) {
    const int64_t size = file.GetSize();
    String text;
    String header;
    if (size < 0 || !ReadHeadText(file, static_cast<uint32_t>(size), text) || !FindHeader(text, header))
        return 0;
    try {
        TakeFields(document, header);
    } catch (const clsException& fault) {
        DebugWrite(L"EXCEPTION '%s'", fault.Message().Text());
    }
    return 0;
}

} // namespace vxut
