#include "base/shielded_read.h"

#include "base/shield.h"

#include <cstring>

namespace vxut {
namespace {

[[gnu::noinline]] uint32_t Word(const void* source) {
    uint32_t word;
    std::memcpy(&word, source, sizeof word);
    return word;
}

[[gnu::noinline]] void StoreWord(void* target, uint32_t word) { std::memcpy(target, &word, sizeof word); }

// The text may be misaligned, and may change meanwhile: each unit is read once.
void CopyText(wchar_t* target, size_t units, const wchar_t* source) {
    for (size_t i = 0; i + 1 < units; ++i) {
        std::memcpy(target + i, reinterpret_cast<const char*>(source) + i * sizeof *source, sizeof *source);
        if (target[i] == L'\0') return;
    }
    target[units - 1] = L'\0';
}

} // namespace

bool ReadShielded(void* target, const void* source, size_t bytes) {
    return Shielded([=] { std::memcpy(target, source, bytes); });
}

// On the path of every free, as is the write of a word: a shield of its own, without the detour of a closure.
// Not inlined: a caller has the C++ run-time's handler instead of this one.
template <>
[[gnu::noinline]] bool ReadShielded(uint32_t& target, const void* source) {
    __try {
        target = Word(source);
        return true;
    } __except (IsFault(GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

[[gnu::noinline]] bool WriteShielded(void* target, uint32_t word) {
    __try {
        StoreWord(target, word);
        return true;
    } __except (IsFault(GetExceptionCode()) ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH) {
        return false;
    }
}

bool ReadTextShielded(wchar_t* target, size_t units, const wchar_t* source) {
    const bool isRead = Shielded([=] { CopyText(target, units, source); });
    if (!isRead) target[0] = L'\0';
    return isRead;
}

bool WriteShielded(void* target, const void* source, size_t bytes) {
    return ReadShielded(target, source, bytes);
}

} // namespace vxut
