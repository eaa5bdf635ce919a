// The destination of a profile's text when it is written.
#pragma once

#include "base/owners.h"
#include "files/file.h"

#include <cstdint>
#include <string_view>

namespace vxut {

// Collects bytes in a block and writes them to a file, which must outlive it, in large pieces; without a file
// it only counts them. After a short write nothing more is written. For one thread.
class clsProfOutput {
public:
    clsProfOutput() noexcept = default;
    explicit clsProfOutput(clsFile& file);

    void PutBytes(const void* bytes, size_t size);
    void Put(std::wstring_view text) { PutBytes(text.data(), text.size() * sizeof(wchar_t)); }

    // The text with each unit passed through map.
    template <class Map>
    void PutMapped(std::wstring_view text, Map map) {
        if (!file_) return Put(text);
        wchar_t piece[kPiece];
        for (; !text.empty(); text.remove_prefix(text.size() < kPiece ? text.size() : kPiece)) {
            const std::wstring_view part = text.substr(0, kPiece);
            for (size_t i = 0; i < part.size(); ++i) piece[i] = map(part[i]);
            Put({piece, part.size()});
        }
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
    int64_t Size() const noexcept { return size_; }

private:
    static constexpr size_t kBlock = size_t{64} * 1024;
    static constexpr size_t kPiece = 256;

    void Write(const void* bytes, size_t size);

    clsFile* file_ = nullptr;
    clsAutoDeleteBytes<uint8_t> block_;
    size_t used_ = 0;
    int64_t size_ = 0;
    bool failed_ = false;
    DWORD error_ = ERROR_SUCCESS;
};

} // namespace vxut
