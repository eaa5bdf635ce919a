#include "containers/skip_list_base.h"

#include "base/critical_section.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <utility>

namespace vxut {
namespace {

// The random bits that all skip lists of the process share. Each level takes two bits of a word.
class LevelBits {
public:
    static LevelBits& Instance() {
        static LevelBits instance;
        return instance;
    }

    void Reset() {
        const Scope scope(lock_);
        Refill();
    }

    uint32_t ChooseLevel(uint32_t mask, uint32_t maximumLevels) {
        const Scope scope(lock_);
        uint32_t level = 0;
        while (NextBits(mask) == 0) ++level;
        return std::min(level, maximumLevels - 1);
    }

private:
    static constexpr int kShiftsInWord = 7; // the generator returns 15 bits, of which each step takes two
    static constexpr DWORD kSpinCount = 100;

    // There is no lock on a machine with one processor. Callers rely on this.
    class Scope {
    public:
        explicit Scope(std::optional<clsCriticalSection>& lock) {
            if (lock) scope_.emplace(*lock);
        }

    private:
        std::optional<clsCriticalSectionScope> scope_;
    };

    LevelBits() {
        SYSTEM_INFO system;
        GetSystemInfo(&system);
        if (system.dwNumberOfProcessors >= 2) lock_.emplace(kSpinCount);
    }

    void Refill() {
        word_ = static_cast<uint32_t>(std::rand());
        left_ = kShiftsInWord;
    }

    uint32_t NextBits(uint32_t mask) {
        const uint32_t bits = word_ & mask;
        word_ >>= 2;
        if (--left_ == 0) Refill();
        return bits;
    }

    uint32_t word_ = 0;
    int left_ = kShiftsInWord;
    std::optional<clsCriticalSection> lock_;
};

} // namespace

WCSkipNonTempBase::WCSkipNonTempBase(uint32_t levelMask, uint32_t maximumLevels,
                                     const WCAllocatorPair& memory, bool allowDuplicates) noexcept
    : allowDuplicates_(allowDuplicates),
      memory_(memory),
      maximumLevels_(std::clamp<uint32_t>(maximumLevels, 1, kMostLevels)),
      levelMask_(levelMask == 1 ? 1 : kDefaultLevelMask),
      head_(reinterpret_cast<WCSkipNode*>(inlineHead_)) {
    LevelBits::Instance().Reset();
    ClearHead();
}

void WCSkipNonTempBase::ClearHead() noexcept {
    std::fill(std::begin(inlineHead_), std::end(inlineHead_), nullptr);
    topLevel_ = 0;
    entries_ = 0;
}

// Creates a node and links it in after the path. The list grows by at most one level for each node.
WCSkipNode* WCSkipNonTempBase::AddNode(Path& path, void* element, uint32_t& level) {
    level = LevelBits::Instance().ChooseLevel(levelMask_, maximumLevels_);
    if (level > topLevel_) {
        level = ++topLevel_;
        path.at[level] = head_;
    }
    WCSkipNode* const node = AllocateNode(element, level);
    if (!node) return nullptr;
    for (uint32_t i = 0; i <= level; ++i) {
        Next(node, i) = Next(path.at[i], i);
        Next(path.at[i], i) = node;
    }
    ++entries_;
    return node;
}

bool WCSkipNonTempBase::Remove(const void* key) {
    Path path;
    WCSkipNode* const node = FindPath(VirtualComparison(*this, key), path);
    if (!node) return false;
    uint32_t levels = 0;
    while (levels <= topLevel_ && Next(path.at[levels], levels) == node) {
        Next(path.at[levels], levels) = Next(node, levels);
        ++levels;
    }
    while (topLevel_ > 0 && !Next(head_, topLevel_)) --topLevel_;
    --entries_;
    FreeNode(node, levels - 1);
    return true;
}

// Frees each node with its true level, which a deallocator needs to know the size: a node reaches as many
// levels as have it for their next node. The list is emptied first, so that the destructor of an element that
// accesses the list finds it in order.
void WCSkipNonTempBase::clear() noexcept {
    WCSkipNode* next[kMostLevels];
    std::copy(std::begin(inlineHead_), std::end(inlineHead_), next);
    const uint32_t top = topLevel_;
    ClearHead();
    while (WCSkipNode* const node = next[0]) {
        uint32_t level = 0;
        next[0] = Next(node, 0);
        while (level < top && next[level + 1] == node) {
            ++level;
            next[level] = Next(node, level);
        }
        FreeNode(node, level);
    }
}

void WCSkipNonTempBase::StartAppending(Path& path) noexcept {
    WCSkipNode* node = head_;
    for (uint32_t level = topLevel_ + 1; level-- > 0;) {
        while (WCSkipNode* const next = Next(node, level)) node = next;
        path.at[level] = node;
    }
}

bool WCSkipNonTempBase::AppendNode(Path& path, void* element) {
    uint32_t level = 0;
    WCSkipNode* const node = AddNode(path, element, level);
    if (!node) return false;
    std::fill_n(path.at, level + 1, node);
    return true;
}

void WCSkipNonTempBase::SwapNodes(WCSkipNonTempBase& other) noexcept {
    std::swap(inlineHead_, other.inlineHead_);
    std::swap(allowDuplicates_, other.allowDuplicates_);
    std::swap(memory_, other.memory_);
    std::swap(maximumLevels_, other.maximumLevels_);
    std::swap(levelMask_, other.levelMask_);
    std::swap(topLevel_, other.topLevel_);
    std::swap(entries_, other.entries_);
}

} // namespace vxut
