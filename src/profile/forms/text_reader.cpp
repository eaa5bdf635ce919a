#include "profile/forms/text_form.h"

#include "base/debug.h"
#include "base/unit_scan.h"
#include "profile/list_builder.h"
#include "profile/load_exception.h"

#include <span>

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

// All units that are decoded are at or above this one.
constexpr wchar_t kLowestMapped = 0x2000;
static_assert(kLowestMapped <= kControlPictures && kLowestMapped <= kMappedEquals);
static_assert(kLowestMapped <= kMappedOpen && kLowestMapped <= kMappedClose);

scItemTexts SplitItem(std::wstring_view line) {
    const size_t split = FindUnit(line, L'=');
    if (split == std::wstring_view::npos) return {line, {}};
    return {line.substr(0, split), line.substr(split + 1)};
}

bool IsItem(std::wstring_view line) {
    return !line.empty() && std::wstring_view(L"#;{[}").find(line.front()) == std::wstring_view::npos;
}

// Reads a line that is not an item. Returns false at the close of the list that the reader began with.
bool ReadStructure(clsListBuilder& builder, std::wstring_view line) {
    if (line.starts_with(L'[')) builder.OpenList(line);
    return !line.starts_with(L'}') || builder.CloseList();
}

void ReadMappedItem(clsListBuilder& builder, std::wstring_view line) {
    const scItemTexts texts = SplitItem(line);
    clsItem& item = builder.AddItem(texts.name, texts.value);
    DecodeInPlace(item.NameUnits(), item.Name().size(), DecodeName);
    DecodeInPlace(item.ValueUnits(), item.Value().size(), DecodeValue);
}

using Lines = std::span<const std::wstring_view>;

// Reads the items that the lines begin with and need no decoding, and returns their number.
size_t ReadPlainItems(clsListBuilder& builder, Lines lines) {
    scItemTexts texts[clsListBuilder::kMaxBatch];
    size_t count = 0;
    for (; count < lines.size() && IsItem(lines[count]) && AreUnitsBelow(lines[count], kLowestMapped);
         ++count)
        texts[count] = SplitItem(lines[count]);
    if (count > 0) builder.AddItems({texts, count});
    return count;
}

// Returns false at the close of the list that the reader began with.
bool ReadLines(clsListBuilder& builder, Lines lines) {
    while (!lines.empty()) {
        lines = lines.subspan(ReadPlainItems(builder, lines));
        if (lines.empty()) break;
        const std::wstring_view line = lines.front();
        if (IsItem(line))
            ReadMappedItem(builder, line);
        else if (!ReadStructure(builder, line))
            return false;
        lines = lines.subspan(1);
    }
    return true;
}

void ReadEntries(clsProfileInput& input, clsItemList& list) {
    clsListBuilder builder(list);
    std::wstring_view lines[clsListBuilder::kMaxBatch];
    for (size_t count = 0; (count = input.NextLines(lines)) > 0 && ReadLines(builder, {lines, count});)
        continue;
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
