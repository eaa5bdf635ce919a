// Mail messages: From, To, Subject and Date of the header.
//
// Source: RFC 822 and RFC 2822. More lenient than these: lines may end with CR or LF alone.
#include "docinfo/readers/mail.h"

#include "base/debug.h"
#include "docinfo/readers/address_field.h"
#include "docinfo/readers/encoded_word.h"
#include "docinfo/readers/head_text.h"
#include "docinfo/readers/named_property.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/reader_exception.h"
#include "docinfo/readers/readers.h"
#include "locale/date_forms.h"
#include "text/shared_regex.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <iterator>

namespace vxut {
namespace {

constexpr const wchar_t* kAddressFields[] = {L"From", L"To", L"Reply-To", L"Return-Path", L"CC", L"BCC"};

constexpr scNamedProperty kProperties[] = {{L"From", &clsDocu::Author},
                                           {L"To", &clsDocu::LastAuthor},
                                           {L"Subject", &clsDocu::Title},
                                           {L"Date", nullptr, &clsDocu::Created}};

// A search for a date may go through the text from each digit, so it sees no more of a text.
constexpr int64_t kMostDateUnits = 2048;

clsSharedRegEx headerEndPattern(LR"(\r\n\r\n|\r{2}|\n{2})");
clsSharedRegEx fieldPattern(LR"(^([A-Za-z_]+):[\t ]*(.*)$)");

bool IsAddressField(const String& name) {
    return std::any_of(std::begin(kAddressFields), std::end(kAddressFields),
                       [&](const wchar_t* field) { return _wcsicmp(field, name.Text()) == 0; });
}

// The text before the first empty line.
bool FindHeader(const String& text, String& header) {
    clsRegExMatchList groups;
    if (!headerEndPattern.Match(text, &groups)) return false;
    header = text.Left(groups.get(0).position);
    return true;
}

bool IsPossible(const SYSTEMTIME& time) {
    return time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 && time.wDay <= 31 && time.wHour <= 24 &&
           time.wMinute <= 59 && time.wSecond <= 59;
}

void TakeDate(SYSTEMTIME& property, const String& value) {
    SYSTEMTIME time = EmptyTime();
    if (ParseInternetDate(time, value.Left(kMostDateUnits)) && IsPossible(time)) property = time;
}

void TakeField(clsDocu& document, const String& name, const String& value) {
    const scNamedProperty* const row = FindProperty(kProperties, name);
    if (row && row->text) SetText(document.*row->text, UtilDecodeMailField(value, name));
    if (row && row->time) TakeDate(document.*row->time, value);
}

// Names with a hyphen do not match: no field of such a name counts.
void TakeFields(clsDocu& document, const String& header) {
    const String unfolded = clsRegEx(LR"([\r\n]+[\t ])").GSub(header, L" ");
    clsRegExMatchList groups;
    for (const String& line : clsRegEx(LR"([\r\n]+)").Split(unfolded))
        if (fieldPattern.Match(line, &groups)) TakeField(document, groups.get(1).text, groups.get(2).text);
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
