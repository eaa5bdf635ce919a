#include "profile/text_form.h"

#include "base/debug.h"
#include "profile/list_builder.h"
#include "profile/load_exception.h"

namespace vxut {
namespace {

constexpr std::wstring_view kRootHead = L"[/]";

wchar_t DecodeName(wchar_t unit) {
    switch (unit) {
        case kMappedEquals:
            return L'=';
        case kMappedOpen:
            return L'[';
        case kMappedClose:
            return L']';
        default:
            return unit;
    }
}

// Names keep their control pictures; only values are restored in full.
wchar_t DecodeValue(wchar_t unit) {
    const bool isPicture = unit > kControlPictures && unit < kControlPictures + kFirstPrintable;
    return isPicture ? static_cast<wchar_t>(unit - kControlPictures) : unit;
}

template <class Decode>
void DecodeInPlace(wchar_t* text, size_t length, Decode decode) {
    for (size_t i = 0; i < length; ++i) text[i] = decode(text[i]);
}

void ReadItem(clsListBuilder& builder, std::wstring_view line) {
    const size_t split = line.find(L'=');
    const bool hasValue = split != std::wstring_view::npos;
    clsItem& item = builder.AddItem(line.substr(0, split), hasValue ? line.substr(split + 1) : L"");
    DecodeInPlace(item.NameUnits(), item.Name().size(), DecodeName);
    DecodeInPlace(item.ValueUnits(), item.Value().size(), DecodeValue);
}

// Reads one line of a list. Returns false at the close of the list that the reader began with.
bool ReadLine(clsListBuilder& builder, std::wstring_view line) {
    if (line.empty()) return true;
    switch (line.front()) {
        case L'#':
        case L';':
        case L'{':
            return true; // a list needs no opening brace
        case L'[':
            builder.OpenList(line);
            return true;
        case L'}':
            return builder.CloseList();
        default:
            ReadItem(builder, line);
            return true;
    }
}

void ReadEntries(clsProfileInput& input, clsItemList& list) {
    clsListBuilder builder(list);
    for (std::wstring_view line; input.NextLine(line) && ReadLine(builder, line);) continue;
    builder.CloseAll();
}

template <class Test>
bool SkipTo(clsProfileInput& input, Test test) {
    std::wstring_view line;
    while (input.NextLine(line))
        if (test(line)) return true;
    return false;
}

} // namespace

void ProfReadList(clsProfileInput& input, int level, clsItemList& list) {
    if (level >= 0 || SkipTo(input, [](std::wstring_view line) { return line == kRootHead; }))
        ReadEntries(input, list);
}

void ProfReadSections(clsProfileInput& input, int, clsItemList& list) {
    try {
        if (SkipTo(input, [](std::wstring_view line) { return line.starts_with(L'['); }))
            ReadEntries(input, list);
    } catch (const clsLoadException& exception) {
        DebugWrite(L"INI: error '%s' in line %d", exception.Message().Text(), exception.Line());
        throw;
    }
}

} // namespace vxut
