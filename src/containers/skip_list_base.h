// The skip list independent of its element type: search, insert, remove, clear and the choice of levels.
//
// A node is one allocation: the element, then level + 1 forward pointers. It is addressed by its forward
// pointers; the element directly precedes them. A search starts at the top level of the head, moves forward
// while the next element is less than the key, and then goes down one level.
#pragma once

#include "containers/container_base.h"

#include <cstdint>

namespace vxut {

struct WCSkipNode; // opaque: an array of forward pointers, preceded by an element

// A skip list of opaque nodes. Not thread-safe; the random state that all lists share has a lock of its own.
class WCSkipNonTempBase : public WCExcept {
public:
    static constexpr uint32_t kMostLevels = 20;
    static constexpr uint32_t kDefaultLevels = 8;
    static constexpr uint32_t kDefaultLevelMask = 3;

    WCSkipNonTempBase(const WCSkipNonTempBase&) = delete;
    WCSkipNonTempBase& operator=(const WCSkipNonTempBase&) = delete;

    int entries() const noexcept { return static_cast<int>(entries_); }
    bool isEmpty() const noexcept { return entries_ == 0; }
    uint32_t maximumLevels() const noexcept { return maximumLevels_; }
    uint32_t levelMask() const noexcept { return levelMask_; }
    // The highest level in use. An insertion that found no memory may have raised it; that is harmless.
    uint32_t topLevel() const noexcept { return topLevel_; }

    void clear() noexcept;

protected:
    bool allowsDuplicates() const noexcept { return allowDuplicates_; }

    // A level mask other than 1 becomes 3: a level is used with a probability of one in two or one in four.
    // The number of levels is clamped to 1..kMostLevels.
    WCSkipNonTempBase(uint32_t levelMask, uint32_t maximumLevels, const WCAllocatorPair& memory,
                      bool allowDuplicates) noexcept;

    // For each level up to the top one, the node from which a search went down.
    struct Path {
        WCSkipNode* at[kMostLevels];
    };

    static WCSkipNode*& Next(WCSkipNode* node, uint32_t level) noexcept {
        return reinterpret_cast<WCSkipNode**>(node)[level];
    }
    static constexpr size_t ForwardBytes(uint32_t level) noexcept {
        return (level + 1) * sizeof(WCSkipNode*);
    }

    WCSkipNode* First() const noexcept { return Next(head_, 0); }

    // The derived class knows the types of keys and elements.
    virtual bool Equals(WCSkipNode* node, const void* key) const = 0;
    virtual bool Less(WCSkipNode* node, const void* key) const = 0;
    virtual WCSkipNode* AllocateNode(void* element, uint32_t level) = 0; // moves the element; null on failure
    virtual void FreeNode(WCSkipNode* node, uint32_t level) noexcept = 0;

    // Returns the first node that is equal to what comparison looks for, or null. Where keepStep(level, node)
    // is called the search goes down from that node. A node is compared once: the one that stopped the search
    // on a level also ends the next lower one.
    template <class Comparison, class KeepStep>
    WCSkipNode* Search(Comparison&& comparison, KeepStep&& keepStep) const {
        WCSkipNode* node = head_;
        WCSkipNode* bound = nullptr; // the first node that is known not to be less
        for (uint32_t level = topLevel_ + 1; level-- > 0;) {
            WCSkipNode* next;
            while ((next = Next(node, level)) != bound && comparison.IsLess(next)) node = next;
            bound = next;
            keepStep(level, node);
        }
        return bound && comparison.IsEqual(bound) ? bound : nullptr;
    }
    template <class Comparison>
    WCSkipNode* FindPath(Comparison&& comparison, Path& path) const {
        return Search(comparison, [&path](uint32_t level, WCSkipNode* node) { path.at[level] = node; });
    }
    template <class Comparison>
    WCSkipNode* FindNode(Comparison&& comparison) const {
        return Search(comparison, [](uint32_t, WCSkipNode*) {});
    }
    // Moves an element in. Returns null, with the element unchanged, if it is a refused duplicate or there is
    // no memory.
    template <class Comparison>
    WCSkipNode* InsertNode(Comparison&& comparison, void* element) {
        Path path;
        if (FindPath(comparison, path) && !allowDuplicates_) return nullptr;
        uint32_t level = 0;
        return AddNode(path, element, level);
    }
    bool Remove(const void* key);

    // Compares by the virtual functions, for lists with an order of their own and where speed matters little.
    class VirtualComparison {
    public:
        VirtualComparison(const WCSkipNonTempBase& list, const void* key) noexcept : list_(list), key_(key) {}
        bool IsLess(WCSkipNode* node) const { return list_.Less(node, key_); }
        bool IsEqual(WCSkipNode* node) const { return list_.Equals(node, key_); }

    private:
        const WCSkipNonTempBase& list_;
        const void* key_;
    };

    // Insertion after the last node, without a search. Precondition: elements are inserted in ascending
    // order, starting with the path that StartAppending() sets.
    void StartAppending(Path& path) noexcept;
    bool AppendNode(Path& path, void* element);
    void SwapNodes(WCSkipNonTempBase& other) noexcept;

private:
    WCSkipNode* AddNode(Path& path, void* element, uint32_t& level);
    void ClearHead() noexcept;

    WCSkipNode* inlineHead_[kMostLevels];
    bool allowDuplicates_;

protected:
    WCAllocatorPair memory_;

private:
    uint32_t maximumLevels_;
    uint32_t levelMask_;
    uint32_t topLevel_;
    WCSkipNode* head_;
    uint32_t entries_;
};

} // namespace vxut
