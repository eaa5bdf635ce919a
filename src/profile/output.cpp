#include "profile/output.h"

#include <algorithm>
#include <cstring>

namespace vxut {
namespace {

constexpr wchar_t kTabs[] = L"\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
constexpr wchar_t kBlanks[] = L"   ";
static_assert(std::size(kTabs) - 1 == clsProfOutput::kMaxIndentDepth / clsProfOutput::kDepthPerTab);

} // namespace

clsProfOutput::clsProfOutput(clsFile& file)
    : file_(&file), block_(std::make_unique_for_overwrite<uint8_t[]>(kBlock)), capacity_(kBlock) {}

void clsProfOutput::PutBytes(const void* bytes, size_t size) {
    if (size > capacity_ - used_) Flush();
    if (size > capacity_) return Write(bytes, size);
    if (size > 0) std::memcpy(block_.get() + used_, bytes, size);
    used_ += size;
}

void clsProfOutput::PutIndent(int depth) {
    const auto level = static_cast<size_t>(std::clamp(depth, 0, kMaxIndentDepth));
    Put({kTabs, level / kDepthPerTab});
    Put({kBlanks, level % kDepthPerTab});
}

bool clsProfOutput::Flush() {
    if (used_ > 0) Write(block_.get(), used_);
    used_ = 0;
    return !HasFailed();
}

void clsProfOutput::Write(const void* bytes, size_t size) {
    const auto wanted = static_cast<int64_t>(size);
    written_ += wanted;
    if (file_ && !HasFailed()) failed_ = file_->Write(bytes, wanted) != wanted;
}

} // namespace vxut
