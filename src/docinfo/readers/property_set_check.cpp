// Whether the values of a property set are inside it.
#include "base/byte_cursor.h"
#include "docinfo/readers/compound_file.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <propidl.h>

#include <utility>

namespace vxut {
namespace {

#pragma pack(push, 1)
struct SetHeader {
    uint16_t byteOrder;
    uint16_t format;
    uint32_t system;
    uint8_t classId[16];
    uint32_t sections;
    uint8_t formatId[16]; // of the first section
    uint32_t offset;      // of the first section
};
struct SectionHeader {
    uint32_t bytes; // with this header
    uint32_t properties;
};
struct Property {
    uint32_t id;
    uint32_t offset; // in the section
};
#pragma pack(pop)
static_assert(sizeof(SetHeader) == 48 && sizeof(SectionHeader) == 8 && sizeof(Property) == 8);

constexpr uint16_t kByteOrder = 0xFFFE;
constexpr uint32_t kUnicode = 1200; // as a code page

struct SizeRow {
    VARTYPE type;
    size_t bytes;
};
constexpr SizeRow kFixedSizes[] = {
    {VT_EMPTY, 0}, {VT_NULL, 0}, {VT_I1, 1},  {VT_UI1, 1},  {VT_I2, 2},     {VT_UI2, 2},      {VT_BOOL, 2},
    {VT_I4, 4},    {VT_UI4, 4},  {VT_INT, 4}, {VT_R4, 4},   {VT_UINT, 4},   {VT_ERROR, 4},    {VT_I8, 8},
    {VT_UI8, 8},   {VT_R8, 8},   {VT_CY, 8},  {VT_DATE, 8}, {VT_CLSID, 16}, {VT_FILETIME, 8},
};

// Values that begin with their length. Some system code writes a terminator at the end of a text, or takes
// the tag off a clipboard value: both need a minimum.
struct CountedRow {
    VARTYPE type;
    uint32_t unitBytes;
    uint32_t least;
};
constexpr CountedRow kCounted[] = {{VT_LPSTR, 1, 1}, {VT_BSTR, 1, 1}, {VT_LPWSTR, sizeof(wchar_t), 1},
                                   {VT_CF, 1, 4},    {VT_BLOB, 1, 0}, {VT_BLOB_OBJECT, 1, 0}};

bool ReadCounted(clsByteCursor& cursor, uint32_t unitBytes, uint32_t least, std::span<const uint8_t>& bytes) {
    uint32_t count = 0;
    return cursor.ReadLittle(count) && count >= least && cursor.Remaining() / unitBytes >= count &&
           cursor.ReadBytes(size_t{count} * unitBytes, bytes);
}

// Some system code takes narrow text of a Unicode set up to the first zero, wherever that is.
bool IsTerminatedWide(std::span<const uint8_t> bytes) {
    constexpr size_t kUnit = sizeof(wchar_t);
    return bytes.size() >= kUnit && bytes.size() % kUnit == 0 && bytes[bytes.size() - 1] == 0 &&
           bytes[bytes.size() - kUnit] == 0;
}

bool SkipValue(clsByteCursor& cursor, uint32_t codePage) {
    uint32_t type = 0;
    if (!cursor.ReadLittle(type)) return false;
    for (const SizeRow& row : kFixedSizes)
        if (row.type == type) return cursor.Skip(row.bytes);
    for (const CountedRow& row : kCounted) {
        if (row.type != type) continue;
        std::span<const uint8_t> bytes;
        const bool isWide = codePage == kUnicode && (type == VT_LPSTR || type == VT_BSTR);
        return ReadCounted(cursor, row.unitBytes, row.least, bytes) && (!isWide || IsTerminatedWide(bytes));
    }
    return false;
}

// The names of properties.
bool SkipDictionary(clsByteCursor& cursor, uint32_t codePage) {
    uint32_t names = 0;
    if (!cursor.ReadLittle(names)) return false;
    const bool isWide = codePage == kUnicode;
    for (uint32_t i = 0; i < names; ++i) {
        const size_t start = cursor.Position();
        std::span<const uint8_t> name;
        if (!cursor.Skip(sizeof(uint32_t)) || !ReadCounted(cursor, isWide ? sizeof(wchar_t) : 1, 1, name))
            return false;
        const size_t odd = (cursor.Position() - start) % sizeof(uint32_t);
        if (isWide && odd != 0 && !cursor.Skip(sizeof(uint32_t) - odd)) return false;
    }
    return true;
}

// Calls visit with the id of each property and a cursor at its value, until it returns false.
template <class Visit>
bool ForEachProperty(clsByteCursor section, Visit visit) {
    SectionHeader header;
    if (!section.ReadObject(header) || header.properties > section.Remaining() / sizeof(Property))
        return false;
    for (uint32_t i = 0; i < header.properties; ++i) {
        Property property;
        clsByteCursor value = section;
        if (!section.ReadObject(property) || property.offset < sizeof header ||
            !value.Seek(property.offset) || !visit(property.id, value)) {
            return false;
        }
    }
    return true;
}

// Passes over the values of a section as the system reads them: one after the other, of Unicode until there
// was a code page.
class SectionCheck {
public:
    explicit SectionCheck(size_t bytes) : left_(bytes) {}

    bool Take(uint32_t id, clsByteCursor value) {
        const size_t start = value.Position();
        const clsByteCursor whole = value;
        const bool isInside =
            id == PID_DICTIONARY ? SkipDictionary(value, codePage_) : SkipValue(value, codePage_);
        if (!isInside || (id == PID_CODEPAGE && !TakeCodePage(whole))) return false;
        // The system copies every value. If they shared their bytes, a small set could take any memory.
        const size_t used = value.Position() - start;
        if (used > left_) return false;
        left_ -= used;
        return true;
    }

private:
    bool TakeCodePage(clsByteCursor value) {
        uint32_t type = 0;
        uint16_t number = 0;
        if (std::exchange(hasCodePage_, true)) return false;
        if (value.ReadLittle(type) && (type == VT_I2 || type == VT_I4) && value.ReadLittle(number))
            codePage_ = number;
        return true;
    }

    size_t left_;
    uint32_t codePage_ = kUnicode;
    bool hasCodePage_ = false;
};

} // namespace

bool IsPropertySetSound(std::span<const uint8_t> bytes) {
    clsByteCursor cursor(bytes);
    SetHeader set;
    if (!cursor.ReadObject(set) || set.byteOrder != kByteOrder || set.sections < 1) return false;
    clsByteCursor section;
    uint32_t size = 0;
    if (!cursor.Seek(set.offset) || !cursor.PeekLittle(size) || !cursor.ReadPart(size, section)) return false;
    SectionCheck check(section.Size());
    return ForEachProperty(section,
                           [&check](uint32_t id, clsByteCursor value) { return check.Take(id, value); });
}

} // namespace vxut
