// The parameters and locals of a frame.
#pragma once

#include "crash/debug_help_library.h"
#include "crash/debug_items.h"

#include <cstdint>

namespace vxut {

// The types of values, as hosts read them.
enum ValueType : uint32_t {
    kValueUnsigned32 = 0,
    kValueUnsigned64 = 1,
    kValueDecimal32 = 2,
    kValueSigned64 = 3,
    kValueDouble = 4,
    kValueNarrowText = 5,
    kValueWideText = 6,
    kValueBstr = 7,
    kValuePointer = 8,
    kValueOther = 9
};

// The numbers of the basic types in debug data.
enum BasicType : uint32_t {
    kBasicNone = 0,
    kBasicVoid = 1,
    kBasicChar = 2,
    kBasicWChar = 3,
    kBasicInt = 6,
    kBasicUInt = 7,
    kBasicFloat = 8,
    kBasicBcd = 9,
    kBasicBool = 10,
    kBasicLong = 13,
    kBasicULong = 14,
    kBasicCurrency = 25,
    kBasicDate = 26,
    kBasicVariant = 27,
    kBasicComplex = 28,
    kBasicBit = 29,
    kBasicBstr = 30,
    kBasicHresult = 31
};

const wchar_t* BasicTypeName(uint32_t basicType);

// How a value of a basic type is shown. Signed numbers of any size become 64-bit ones.
ValueType ValueTypeOf(uint32_t basicType, uint64_t bytes);

// What a frame's values are read from.
struct scFrameContext {
    CONTEXT registers;
    uint64_t framePointer = 0;
    bool isInnermost = false; // else registers that calls may change are not those of the frame
};

// Adds the parameters of the current scope of dbghelp to a frame, then its locals, while there is space.
// Descriptions belong to the list.
void AddFrameValues(clsRPDBGHELP& library, HANDLE process, const scFrameContext& context,
                    DBGStackTraceItem& frame, clsDBGStackTraceList& list);

// Copies the first arguments on the stack into the values of a frame that could not be read.
void FillFromArguments(uint64_t framePointer, DBGStackTraceItem& frame);

// The bits of a register, by its CodeView number. Returns false if the number is unknown or if the register
// need not have kept its value in a frame that is not the innermost.
bool ReadRegister(const scFrameContext& context, uint32_t number, uint64_t& bits);

} // namespace vxut
