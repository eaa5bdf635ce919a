#include "crash/frame_values.h"

#include "base/guard.h"
#include "crash/own_memory.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace vxut {
namespace {

constexpr const wchar_t* kUnknownType = L"unknown type";
constexpr int kMostTypedefs = 32;

enum SymbolTag : DWORD { kTagEnum = 12, kTagPointer = 14, kTagArray = 15, kTagBase = 16, kTagTypedef = 17 };

struct BasicTypeEntry {
    uint32_t basicType;
    const wchar_t* name;
};
constexpr BasicTypeEntry kBasicTypes[] = {
    {kBasicNone, L"NoType"}, {kBasicVoid, L"Void"},       {kBasicChar, L"Char"},
    {kBasicWChar, L"WChar"}, {kBasicInt, L"Int"},         {kBasicUInt, L"UInt"},
    {kBasicFloat, L"Float"}, {kBasicBcd, L"BCD"},         {kBasicBool, L"Bool"},
    {kBasicLong, L"Long"},   {kBasicULong, L"ULong"},     {kBasicCurrency, L"Currency"},
    {kBasicDate, L"Date"},   {kBasicVariant, L"Variant"}, {kBasicComplex, L"Complex"},
    {kBasicBit, L"Bit"},     {kBasicBstr, L"BSTR"},       {kBasicHresult, L"Hresult"},
};

constexpr bool IsSigned(uint32_t basicType) { return basicType == kBasicInt || basicType == kBasicLong; }

// The debug data of types.
class Types {
public:
    Types(clsRPDBGHELP& library, HANDLE process, uint64_t module)
        : library_(library), process_(process), module_(module) {}

    // Reads one property of a type; fallback if it has none.
    template <class Value>
    Value Get(ULONG type, IMAGEHLP_SYMBOL_TYPE_INFO what, Value fallback) const {
        Value value = {};
        return library_.SymGetTypeInfo(process_, module_, type, what, &value) ? value : fallback;
    }
    DWORD Tag(ULONG type) const { return Get<DWORD>(type, TI_GET_SYMTAG, 0); }
    uint64_t Length(ULONG type) const { return Get<ULONG64>(type, TI_GET_LENGTH, 0); }
    ULONG Element(ULONG type) const { return Resolved(Get<DWORD>(type, TI_GET_TYPEID, 0)); }
    uint32_t Basic(ULONG type) const {
        return Tag(type) == kTagBase ? Get<DWORD>(type, TI_GET_BASETYPE, kBasicNone) : ~uint32_t{0};
    }
    // The type behind names of types.
    ULONG Resolved(ULONG type) const {
        for (int i = 0; i < kMostTypedefs && Tag(type) == kTagTypedef; ++i)
            type = Get<DWORD>(type, TI_GET_TYPEID, type);
        return type;
    }

private:
    clsRPDBGHELP& library_;
    const HANDLE process_;
    const uint64_t module_;
};

// Where a value is: in memory, or its bits if it is in a register.
struct Place {
    bool isKnown = false;
    bool isRegister = false;
    uint64_t where = 0;
};

Place PlaceOf(const SYMBOL_INFO& symbol, const scFrameContext& context) {
    constexpr ULONG kStackPointer = 335;
    Place place;
    if (symbol.Flags & SYMFLAG_REGISTER) {
        place.isRegister = true;
        place.isKnown = ReadRegister(context, symbol.Register, place.where);
    } else if (symbol.Flags & (SYMFLAG_REGREL | SYMFLAG_FRAMEREL)) {
        const auto offset = static_cast<int64_t>(symbol.Address);
        // Nothing lives below the stack pointer: such an offset counts from the frame pointer, whatever
        // register the symbol names.
        const bool isOfFrame =
            (symbol.Flags & SYMFLAG_FRAMEREL) || (symbol.Register == kStackPointer && offset < 0);
        uint64_t base = isOfFrame ? context.registers.Rbp : 0;
        place.isKnown = isOfFrame || ReadRegister(context, symbol.Register, base);
        place.where = base + static_cast<uint64_t>(offset);
    } else {
        place.isKnown = symbol.Address != 0;
        place.where = symbol.Address;
    }
    return place;
}

bool ReadBits(const Place& place, uint64_t bytes, uint64_t& bits) {
    bits = 0;
    if (!place.isKnown || bytes == 0 || bytes > sizeof bits) return false;
    if (!place.isRegister) return ReadOwnMemory(&bits, place.where, bytes);
    bits = place.where;
    if (bytes < sizeof bits) bits &= (uint64_t{1} << bytes * 8) - 1;
    return true;
}

uint64_t SignExtended(uint64_t bits, uint64_t bytes) {
    const uint64_t sign = uint64_t{1} << (bytes * 8 - 1);
    return bytes < sizeof bits && (bits & sign) ? bits | ~(sign * 2 - 1) : bits;
}

uint64_t DoubleBits(uint64_t bits, uint64_t bytes) {
    if (bytes != sizeof(float)) return bits;
    float narrow;
    std::memcpy(&narrow, &bits, sizeof narrow);
    const double wide = narrow;
    std::memcpy(&bits, &wide, sizeof bits);
    return bits;
}

// Adds the values of one frame, symbol by symbol.
class ValueReader {
public:
    ValueReader(clsRPDBGHELP& library, HANDLE process, const scFrameContext& context,
                DBGStackTraceItem& frame, clsDBGStackTraceList& list)
        : library_(library), process_(process), context_(context), frame_(frame), list_(list) {}

    void AddAll(bool wantsLocals) {
        wantsLocals_ = wantsLocals;
        library_.SymEnumSymbols(process_, 0, "*", TakeSymbol, this);
    }

private:
    static BOOL CALLBACK TakeSymbol(PSYMBOL_INFO symbol, ULONG, void* reader) {
        return Guarded(FALSE, [&] { return static_cast<ValueReader*>(reader)->Take(*symbol); });
    }

    bool Take(const SYMBOL_INFO& symbol) {
        if (frame_.valueCount == kMostValues) return false;
        const bool isParameter = (symbol.Flags & SYMFLAG_PARAMETER) != 0;
        const bool isLocal = !isParameter && (symbol.Flags & SYMFLAG_LOCAL) != 0;
        if (wantsLocals_ ? isLocal : isParameter) Add(symbol);
        return true;
    }

    void Add(const SYMBOL_INFO& symbol) {
        DBGStackTraceValue& value = frame_.values[frame_.valueCount++];
        value.isLocal = wantsLocals_;
        CopyToField(value.name, symbol.Name);
        const Types types(library_, process_, symbol.ModBase);
        const ULONG type = types.Resolved(symbol.TypeIndex);
        const uint64_t bytes = types.Length(type);
        if (types.Tag(type) == kTagArray) {
            String text;
            text.Format(L"@@@<array[%d] of %s>", types.Get<DWORD>(type, TI_GET_COUNT, 0),
                        BasicTypeName(types.Basic(types.Element(type))));
            Describe(value, text);
        } else if (bytes > sizeof value.value) {
            String text;
            text.Format(L"@@@<param of size %d, possibly struct>", static_cast<int>(bytes));
            Describe(value, text);
        } else if (types.Tag(type) == kTagPointer) {
            AddPointer(value, PlaceOf(symbol, context_), types.Basic(types.Element(type)));
        } else {
            AddNumber(value, PlaceOf(symbol, context_), types, type, bytes);
        }
    }

    // Descriptions are handed over as pointers to text.
    void Describe(DBGStackTraceValue& value, const String& text) {
        value.type = kValueWideText;
        value.value.bits = reinterpret_cast<uint64_t>(list_.Keep(text));
        value.isFilled = 1;
    }

    void AddPointer(DBGStackTraceValue& value, const Place& place, uint32_t target) {
        const wchar_t* invalid = nullptr;
        value.type = kValuePointer;
        if (target == kBasicChar) {
            value.type = kValueNarrowText;
            invalid = L"@@@<invalid 64 bit Char pointer, NULL HIword>";
        } else if (target == kBasicWChar) {
            value.type = kValueWideText;
            invalid = L"@@@<invalid 64 bit WChar pointer, NULL HIword>";
        }
        AddPointerBits(value, place, invalid);
    }

    // No text is below 4 GB in a 64-bit process of ours.
    void AddPointerBits(DBGStackTraceValue& value, const Place& place, const wchar_t* invalid) {
        value.isFilled = ReadBits(place, sizeof(void*), value.value.bits);
        if (value.isFilled && invalid && value.value.bits >> 32 == 0) Describe(value, invalid);
    }

    void AddNumber(DBGStackTraceValue& value, const Place& place, const Types& types, ULONG type,
                   uint64_t bytes) {
        const uint32_t basic = types.Tag(type) == kTagEnum ? uint32_t{kBasicInt} : types.Basic(type);
        value.type = ValueTypeOf(basic, bytes);
        if (value.type == kValueBstr) {
            AddPointerBits(value, place, L"@@@<invalid 64 bit BSTR pointer, NULL HIword>");
            return;
        }
        uint64_t bits;
        if (!ReadBits(place, bytes, bits)) return;
        value.isFilled = 1;
        if (value.type == kValueDouble)
            value.value.bits = DoubleBits(bits, bytes);
        else
            value.value.bits = value.type == kValueSigned64 ? SignExtended(bits, bytes) : bits;
    }

    clsRPDBGHELP& library_;
    const HANDLE process_;
    const scFrameContext& context_;
    DBGStackTraceItem& frame_;
    clsDBGStackTraceList& list_;
    bool wantsLocals_ = false;
};

} // namespace

const wchar_t* BasicTypeName(uint32_t basicType) {
    for (const BasicTypeEntry& entry : kBasicTypes)
        if (entry.basicType == basicType) return entry.name;
    return kUnknownType;
}

ValueType ValueTypeOf(uint32_t basicType, uint64_t bytes) {
    if (basicType == kBasicFloat || basicType == kBasicDate) return kValueDouble;
    if (IsSigned(basicType) || basicType == kBasicCurrency) return kValueSigned64;
    if (basicType == kBasicBstr) return kValueBstr;
    if (basicType == kBasicChar || basicType == kBasicWChar || basicType == kBasicBool)
        return kValueDecimal32;
    const bool isNumber = basicType == kBasicUInt || basicType == kBasicULong || basicType == kBasicBit;
    if (isNumber) return bytes > sizeof(uint32_t) ? kValueUnsigned64 : kValueUnsigned32;
    return bytes > sizeof(uint32_t) ? kValuePointer : kValueOther;
}

void AddFrameValues(clsRPDBGHELP& library, HANDLE process, const scFrameContext& context,
                    DBGStackTraceItem& frame, clsDBGStackTraceList& list) {
    if (!library.SymEnumSymbols.IsAvailable() || !library.SymGetTypeInfo.IsAvailable()) return;
    ValueReader reader(library, process, context, frame, list);
    reader.AddAll(false);
    reader.AddAll(true);
}

// The arguments follow the saved frame pointer and the return address.
void FillFromArguments(uint64_t framePointer, DBGStackTraceItem& frame) {
    uint64_t argument = framePointer + 2 * sizeof(void*);
    for (DBGStackTraceValue& value : std::span(frame.values, frame.valueCount)) {
        if (value.isLocal) break;
        const bool isLong = value.type == kValueUnsigned64 || value.type == kValueDouble;
        uint64_t bits = 0;
        if (!value.isFilled && ReadOwnMemory(&bits, argument, isLong ? 8 : 4)) {
            value.value.bits = bits;
            value.isFilled = 1;
        }
        argument += sizeof(void*);
    }
}

} // namespace vxut
