// The destination of a profile's text when it is written.
#pragma once

#include "base/owners.h"
#include "base/unit_scan.h"
#include "files/file.h"

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace vxut {

// Collects bytes in a block and writes them to a file, which must outlive it, in large pieces; without a file
// it only counts them. After a short write nothing more is written. For one thread.
class clsProfOutput {
public:
    clsProfOutput() noexcept = default;
    explicit clsProfOutput(clsFile& file);

    void PutBytes(const void* bytes, size_t size);
    void Put(std::wstring_view text) {
        if (wchar_t* const to = Space(text.size()))
            CopyUnits(to, text, nullptr);
        else
            PutBytes(text.data(), text.size() * sizeof(wchar_t));
    }

    // The text with each unit passed through map. A map that has a MayChange(eight units), with all bits set
    // in those that it might change, is asked about the others only there.
    template <class Map>
    void PutMapped(std::wstring_view text, Map map) {
        if (!file_) return Put(text);
        for (; text.size() > kPiece; text.remove_prefix(kPiece)) PutMappedPiece(text.substr(0, kPiece), map);
        PutMappedPiece(text, map);
    }

    // Writes a TAB for each four levels of depth and blanks for the rest. Readers ignore indentation, so it
    // stops growing at a depth that only hostile trees reach, where the file would grow with the square of
    // the depth.
    void PutIndent(int depth);
    static constexpr int kMaxIndentDepth = 64;
    static constexpr int kDepthPerTab = 4;

    // Writes what is left in the block. Returns false if anything could not be written in full.
    bool Flush();
    // Reports that something could not be expressed. Nothing more is written.
    void Fail(DWORD error) noexcept { error_ = error; }
    bool HasFailed() const noexcept { return failed_ || error_ != ERROR_SUCCESS; }
    // The error of Fail(). What the file could not take is the file's.
    DWORD Error() const noexcept { return error_; }
    int64_t Size() const noexcept { return written_ + static_cast<int64_t>(used_); }

private:
    static constexpr size_t kBlock = size_t{64} * 1024;
    static constexpr size_t kPiece = 256;

    // Space for units in the block, which count as used; null if there is not enough.
    wchar_t* Space(size_t units) noexcept {
        if (units > (capacity_ - used_) / sizeof(wchar_t)) return nullptr;
        auto* const space = reinterpret_cast<wchar_t*>(block_.get() + used_);
        used_ += units * sizeof(wchar_t);
        return space;
    }

    // map: null for none.
    template <class Map>
    static void CopyUnits(wchar_t* to, std::wstring_view text, Map map) noexcept {
        size_t at = 0;
        const auto copyTo = [&](size_t end) {
            for (; at < end; ++at)
                if constexpr (std::is_null_pointer_v<Map>)
                    to[at] = text[at];
                else
                    to[at] = map(text[at]);
        };
        constexpr bool kIsSelective = requires { Map::MayChange(__m128i{}); };
        if constexpr (kIsSelective || std::is_null_pointer_v<Map>) {
            while (at + kUnitsPerScan <= text.size()) {
                const __m128i units = LoadUnits(text.data() + at);
                if constexpr (kIsSelective) {
                    if (MatchBits(Map::MayChange(units)) != 0) {
                        copyTo(at + kUnitsPerScan);
                        continue;
                    }
                }
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), units);
                at += kUnitsPerScan;
            }
        }
        copyTo(text.size());
    }

    // Precondition: there is a file.
    template <class Map>
    void PutMappedPiece(std::wstring_view piece, Map map) {
        wchar_t* to = Space(piece.size());
        if (!to) {
            Flush();
            to = Space(piece.size());
        }
        CopyUnits(to, piece, map);
    }

    void Write(const void* bytes, size_t size);

    clsFile* file_ = nullptr;
    clsAutoDeleteBytes<uint8_t> block_;
    size_t capacity_ = 0;
    size_t used_ = 0;
    int64_t written_ = 0; // or counted
    bool failed_ = false;
    DWORD error_ = ERROR_SUCCESS;
};

} // namespace vxut
