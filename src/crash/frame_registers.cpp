#include "crash/frame_values.h"

#include <cstring>
#include <iterator>

namespace vxut {
namespace {

enum : unsigned { kRax, kRcx, kRdx, kRbx, kRsp, kRbp, kRsi, kRdi, kR8 };

// CodeView numbers a group of registers in a row; the order within the first eight is one of its own.
struct RegisterGroup {
    uint32_t first;
    uint32_t count;
    unsigned bytes;
    bool isHigh; // bits 8 to 15
    uint8_t order[8];
};

constexpr RegisterGroup kGroups[] = {
    {328, 8, 8, false, {kRax, kRbx, kRcx, kRdx, kRsi, kRdi, kRbp, kRsp}}, // RAX...
    {336, 8, 8, false, {8, 9, 10, 11, 12, 13, 14, 15}},                   // R8...
    {17, 8, 4, false, {kRax, kRcx, kRdx, kRbx, kRsp, kRbp, kRsi, kRdi}},  // EAX...
    {360, 8, 4, false, {8, 9, 10, 11, 12, 13, 14, 15}},                   // R8D...
    {9, 8, 2, false, {kRax, kRcx, kRdx, kRbx, kRsp, kRbp, kRsi, kRdi}},   // AX...
    {352, 8, 2, false, {8, 9, 10, 11, 12, 13, 14, 15}},                   // R8W...
    {1, 4, 1, false, {kRax, kRcx, kRdx, kRbx}},                           // AL...
    {5, 4, 1, true, {kRax, kRcx, kRdx, kRbx}},                            // AH...
    {324, 4, 1, false, {kRsi, kRdi, kRbp, kRsp}},                         // SIL...
    {344, 8, 1, false, {8, 9, 10, 11, 12, 13, 14, 15}},                   // R8B...
};

// The integer registers stand in the context in the order of their machine numbers.
uint64_t IntegerRegister(const CONTEXT& context, unsigned index) {
    uint64_t bits;
    std::memcpy(&bits, reinterpret_cast<const char*>(&context.Rax) + index * sizeof bits, sizeof bits);
    return bits;
}
static_assert(offsetof(CONTEXT, R15) - offsetof(CONTEXT, Rax) == 15 * sizeof(DWORD64));

constexpr bool IsKeptByCalls(unsigned index) {
    return index == kRbx || (index >= kRsp && index <= kRdi) || index >= 12;
}

bool ReadXmm(const scFrameContext& context, uint32_t number, uint64_t& bits) {
    constexpr uint32_t kXmm0 = 154, kXmm8 = 252;
    unsigned index;
    if (number - kXmm0 < 8)
        index = number - kXmm0;
    else if (number - kXmm8 < 8)
        index = number - kXmm8 + 8;
    else
        return false;
    if (!context.isInnermost && index < 6) return false;
    std::memcpy(&bits, reinterpret_cast<const char*>(&context.registers.Xmm0) + index * sizeof(M128A),
                sizeof bits);
    return true;
}

} // namespace

bool ReadRegister(const scFrameContext& context, uint32_t number, uint64_t& bits) {
    for (const RegisterGroup& group : kGroups) {
        if (number - group.first >= group.count) continue;
        const unsigned index = group.order[number - group.first];
        if (!context.isInnermost && !IsKeptByCalls(index)) return false;
        bits = IntegerRegister(context.registers, index);
        if (group.isHigh) bits >>= 8;
        if (group.bytes < sizeof bits) bits &= (uint64_t{1} << group.bytes * 8) - 1;
        return true;
    }
    return ReadXmm(context, number, bits);
}

} // namespace vxut
