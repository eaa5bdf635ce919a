// Reports about handles on the debug channel: those that were lost, and those that two snapshots differ in.
#pragma once

#include "containers/containers.h"
#include "crash/handle_list.h"

#include <cstdint>
#include <initializer_list>

namespace vxut {

// Handles of a dictionary, which has to live as long.
using HandleSelection = WCValSList<const HandleDict::Pair*>;

// All handles. Throws std::bad_alloc.
HandleSelection SelectAll(const HandleDict& handles);
// Those that are not in the other dictionary. Throws std::bad_alloc.
HandleSelection SelectMissing(const HandleDict& handles, const HandleDict& other);

// The texts of the frames of handles.
class clsFrameTexts {
public:
    // Texts are addresses.
    clsFrameTexts() = default;
    // Texts are symbols where the stack engine finds them. Takes the engine for the duration of the
    // constructor, unless nobody listens to the debug channel. Throws std::bad_alloc.
    explicit clsFrameTexts(std::initializer_list<const HandleSelection*> selections);

    // Writes the frames of a stack, one line each, without the leading ones of the library itself.
    void Write(const scHandleRecord& record) const;

private:
    WCValSkipListDict<void*, String> symbols_; // empty texts for addresses without a symbol
};

void WriteLostHandles(const String& typeName, const HandleDict& handles, const clsFrameTexts& texts);

// Writes the numbers of handles that were added and removed between two snapshots, and then the same with the
// handles and their stacks. Throws std::bad_alloc.
void WriteHandleChanges(const clsUTHandleList& earlier, const clsUTHandleList& later);

} // namespace vxut
