#include "encoding/base64.h"

#include "encoding/base64_avx2.h"

#include <array>
#include <cstring>

namespace vxut {
namespace {

constexpr std::wstring_view kAlphabet = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr wchar_t kPadding = L'=';
constexpr size_t kGroupUnits = 4;
constexpr size_t kGroupBytes = 3;
constexpr uint8_t kNoSymbol = 0xFF;

struct SymbolPair {
    wchar_t units[2];
};

// The two symbols of each value of twelve bits.
constexpr auto kPairs = [] {
    std::array<SymbolPair, 4096> pairs{};
    for (size_t i = 0; i < pairs.size(); ++i) pairs[i] = {{kAlphabet[i / 64], kAlphabet[i % 64]}};
    return pairs;
}();

constexpr auto kValues = [] {
    std::array<uint8_t, 256> values{};
    values.fill(kNoSymbol);
    for (size_t i = 0; i < kAlphabet.size(); ++i) values[kAlphabet[i]] = static_cast<uint8_t>(i);
    return values;
}();

uint8_t ValueOf(wchar_t unit) { return unit < kValues.size() ? kValues[unit] : kNoSymbol; }
bool IsSkipped(wchar_t unit) { return ValueOf(unit) == kNoSymbol && unit != kPadding; }

void EncodeGroup(uint32_t bits, wchar_t* target) {
    std::memcpy(target, &kPairs[bits >> 12], sizeof(SymbolPair));
    std::memcpy(target + 2, &kPairs[bits & 0xFFF], sizeof(SymbolPair));
}

void PutGroup(uint32_t bits, uint8_t* target) {
    target[0] = static_cast<uint8_t>(bits >> 16);
    target[1] = static_cast<uint8_t>(bits >> 8);
    target[2] = static_cast<uint8_t>(bits);
}

// Decodes groups of four symbols up to the first unit that is none. Returns their number.
size_t DecodeSymbols(std::wstring_view text, std::span<uint8_t> target) {
    size_t groups = HasAvx2() ? DecodeBase64Avx2(text, target) : 0;
    for (; text.size() - groups * kGroupUnits >= kGroupUnits &&
           target.size() - groups * kGroupBytes >= kGroupBytes;
         ++groups) {
        const wchar_t* const units = text.data() + groups * kGroupUnits;
        const uint8_t values[] = {ValueOf(units[0]), ValueOf(units[1]), ValueOf(units[2]), ValueOf(units[3])};
        if ((values[0] | values[1] | values[2] | values[3]) == kNoSymbol) break;
        PutGroup(static_cast<uint32_t>(values[0] << 18 | values[1] << 12 | values[2] << 6 | values[3]),
                 target.data() + groups * kGroupBytes);
    }
    return groups;
}

// The bytes that count of a group whose first symbol is the first unit of text.
size_t CountByPadding(std::wstring_view text) {
    const auto isPadding = [&](size_t index) { return index < text.size() && text[index] == kPadding; };
    if (isPadding(0)) return 0;
    if (isPadding(2)) return 1;
    return isPadding(3) ? 2 : 3;
}

// Decodes one group of symbols with anything between them. Returns the number of units that it takes.
size_t DecodeGroup(std::wstring_view text, uint8_t* target) {
    uint32_t bits = 0;
    size_t used = 0;
    for (size_t symbols = 0; symbols < kGroupUnits; ++symbols) {
        while (used < text.size() && IsSkipped(text[used])) ++used;
        const wchar_t unit = used < text.size() ? text[used++] : kPadding;
        bits = bits << 6 | (unit == kPadding ? 0u : ValueOf(unit));
    }
    PutGroup(bits, target);
    return used;
}

} // namespace

void EncodeBase64(std::span<const uint8_t> bytes, wchar_t* target) noexcept {
    const size_t vectorised = HasAvx2() ? EncodeBase64Avx2(bytes, target) : 0;
    target += Base64Length(vectorised);
    bytes = bytes.subspan(vectorised);
    for (; bytes.size() >= kGroupBytes; bytes = bytes.subspan(kGroupBytes), target += kGroupUnits)
        EncodeGroup(static_cast<uint32_t>(bytes[0] << 16 | bytes[1] << 8 | bytes[2]), target);
    if (bytes.empty()) return;
    EncodeGroup(static_cast<uint32_t>(bytes[0] << 16 | (bytes.size() > 1 ? bytes[1] << 8 : 0)), target);
    target[3] = kPadding;
    if (bytes.size() == 1) target[2] = kPadding;
}

bool DecodeBase64(std::wstring_view text, std::span<uint8_t> target, Base64Count count,
                  size_t& size) noexcept {
    size = 0;
    for (;;) {
        const size_t groups = DecodeSymbols(text, target);
        text.remove_prefix(groups * kGroupUnits);
        target = target.subspan(groups * kGroupBytes);
        size += groups * kGroupBytes;
        while (!text.empty() && IsSkipped(text.front())) text.remove_prefix(1);
        if (text.empty()) return true;
        if (target.size() < kGroupBytes) return false;
        size += count == Base64Count::kByPadding ? CountByPadding(text) : kGroupBytes;
        text.remove_prefix(DecodeGroup(text, target.data()));
        target = target.subspan(kGroupBytes);
    }
}

} // namespace vxut
