// The skip list without its element type: search, insert, remove, clear and the choice of levels.
//
// A node is one allocation: the element, then level + 1 forward pointers. It is known by the address of its
// forward pointers; the element stands directly in front of them.
#pragma once

#include "containers/container_base.h"

#include <cstdint>

namespace vxut {

struct WCSkipNode; // opaque: an array of forward pointers with an element in front

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
    // The highest level in use, or that an insertion which failed has raised.
    uint32_t topLevel() const noexcept { return topLevel_; }

    void clear() noexcept;

protected:
    bool allowsDuplicates() const noexcept { return allowDuplicates_; }

    // Any mask but 1 becomes 3; the number of levels is held between 1 and 20.
    WCSkipNonTempBase(uint32_t levelMask, uint32_t maximumLevels, const WCAllocatorPair& memory,
                      bool allowDuplicates) noexcept;

    // For each level the node from which a search went down.
    struct Path {
        WCSkipNode* at[kMostLevels] = {};
    };

    static WCSkipNode*& Next(WCSkipNode* node, uint32_t level) noexcept {
        return reinterpret_cast<WCSkipNode**>(node)[level];
    }
    static constexpr size_t ForwardBytes(uint32_t level) noexcept {
        return (level + 1) * sizeof(WCSkipNode*);
    }

    WCSkipNode* First() const noexcept { return Next(head_, 0); }

    // Keys and elements are what the derived class says.
    virtual bool Equals(WCSkipNode* node, const void* key) const = 0;
    virtual bool Less(WCSkipNode* node, const void* key) const = 0;
    virtual WCSkipNode* AllocateNode(void* element, uint32_t level) = 0; // moves the element; null on failure
    virtual void FreeNode(WCSkipNode* node, uint32_t level) noexcept = 0;

    WCSkipNode* Find(const void* key) const;
    // Null if the key is a duplicate or there is no memory; the element is untouched then.
    WCSkipNode* Insert(const void* key, void* element);
    bool Remove(const void* key);
    // Path of the end, and insertion behind the last node: elements come in order.
    void StartAppending(Path& path) noexcept;
    bool AppendNode(Path& path, void* element);
    void SwapNodes(WCSkipNonTempBase& other) noexcept;

private:
    WCSkipNode* FindPath(const void* key, Path& path) const;
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
