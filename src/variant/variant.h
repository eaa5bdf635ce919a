// A VARIANT with value semantics: it owns its contents, compares by value, converts, and has a stream form.
//
// Layout: that of VARIANT with nothing added, so that a clsVariant can be passed wherever one is expected.
// What is in it is released with VariantClear().
//
// Failure: no operation throws. What does not convert, or cannot be copied, leaves an empty value and a
// result that says so; reports go to the debug channel under a developer's login only.
//
// Threads: a value without shared state; one object serves one thread at a time.
#pragma once

#include "text/string.h"

#include <objbase.h>
// After objbase.h, which it needs:
#include <oleauto.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vxut {

class clsVariant : public VARIANT {
public:
    enum Kind { kOther = 0, kNumeric = 1, kString = 2 };

    clsVariant() noexcept;
    clsVariant(const clsVariant& other) noexcept : clsVariant() { Assign(other); }
    clsVariant(clsVariant&& other) noexcept : clsVariant() { Swap(other); }
    clsVariant& operator=(const clsVariant& other) noexcept {
        Assign(other);
        return *this;
    }
    clsVariant& operator=(clsVariant&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~clsVariant() { Clear(); }

    void Clear() noexcept;
    void Swap(clsVariant& other) noexcept;
    // Copies a value; of a reference, what it refers to. FILETIME and CLSID values (types 64 and 72), which
    // the system does not copy, keep the bytes that their stream form has. The value is empty after a
    // failure. The source may be this object.
    HRESULT Assign(const VARIANT& source) noexcept;
    // Makes it a string (VT_BSTR). Zero units are units like any other. Empty after a failure.
    HRESULT AssignText(std::wstring_view text) noexcept;

    // The group that decides how values of different types compare. Arrays and references are of the group of
    // their elements and targets.
    Kind Group() const noexcept;
    // Returns the value as text. Returns false, with an empty text, if it does not convert.
    bool ToString(String& target) const noexcept;
    // Returns 0.0 if the value does not convert. 64-bit integers do not.
    double ToDouble() const noexcept;
    // Converts in place; the value stays after a failure. 64-bit integers convert to VT_BSTR only.
    bool ChangeType(VARTYPE type) noexcept;
    // Compares values of one type by value, and different types of one group as doubles or as texts of the
    // user's language. Nothing equals a NaN. With an empty or null value and a value of another type, the
    // result is whether one of the bits 0xF00 of this type is set: callers rely on it.
    bool Compare(const clsVariant& other) const noexcept;

    // Reads an element of an array of objects (VT_DISPATCH, VT_UNKNOWN) or of variants; indexes are in the
    // order of the dimensions and count from 0. The target is empty if this is no such array, an index is out
    // of bounds or their number is not that of the dimensions.
    void GetArrayElement(clsVariant& target, const int32_t* indexes, uint32_t count) const noexcept;

    // Writes the type as 16 bits and the value in the width of its type, little-endian, at the position of a
    // stream. A string has neither length nor terminator; types without a stream form write the type only.
    HRESULT Save(IStream& stream) const noexcept;
    // Reads from the position of a stream to its end. A type without a stream form, or a value that is cut
    // off, makes an empty value; only failures of the stream or of memory are failures, and empty it too.
    HRESULT Load(IStream& stream) noexcept;
    // The same from bytes in memory.
    HRESULT LoadBytes(std::span<const uint8_t> bytes) noexcept;
};
static_assert(sizeof(clsVariant) == sizeof(VARIANT));

} // namespace vxut
