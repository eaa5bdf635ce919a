#include "encoding/deflate.h"

namespace vxut {
namespace {

struct Row {
    uint32_t mode;
    scDeflateMode settings;
};
constexpr Row kRows[] = {
    {kDeflateFast, {Z_BEST_SPEED, 8, Z_DEFAULT_STRATEGY}},
    {kDeflateBest, {Z_BEST_COMPRESSION, 8, Z_DEFAULT_STRATEGY}},
    {kDeflateBlocks, {Z_BEST_COMPRESSION, 9, Z_FILTERED}},
    {kDeflateProfiles, {Z_BEST_COMPRESSION, 9, Z_DEFAULT_STRATEGY}},
    {kDeflateFastFiltered, {Z_BEST_SPEED, 9, Z_FILTERED}},
    {kDeflateFastSmall, {Z_BEST_SPEED, 7, Z_DEFAULT_STRATEGY}},
};
constexpr scDeflateMode kOther = {Z_DEFAULT_COMPRESSION, 8, Z_DEFAULT_STRATEGY};

int StartDeflate(z_stream& stream, uint32_t mode, int windowBits) {
    const scDeflateMode settings = SettingsOf(mode);
    return deflateInit2(&stream, settings.level, Z_DEFLATED, windowBits, settings.memoryLevel,
                        settings.strategy);
}

} // namespace

scDeflateMode SettingsOf(uint32_t mode) noexcept {
    for (const Row& row : kRows)
        if (row.mode == mode) return row.settings;
    return kOther;
}

clsDeflateStream::clsDeflateStream(uint32_t mode, int windowBits) noexcept
    : initResult_(StartDeflate(stream_, mode, windowBits)) {}

clsInflateStream::clsInflateStream(int windowBits) noexcept
    : initResult_(inflateInit2(&stream_, windowBits)) {}

} // namespace vxut
