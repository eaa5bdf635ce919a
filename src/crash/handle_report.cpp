#include "crash/handle_report.h"

#include "base/debug.h"
#include "base/stack_trace.h"
#include "crash/frame_symbols.h"
#include "text/append_or_throw.h"

#include <span>

namespace vxut {
namespace {

std::span<void* const> HostFrames(const scHandleRecord& record) {
    const std::span<void* const> frames(record.frames, record.frameCount);
    return frames.subspan(LeadingOwnFrames(record.frames, record.frameCount));
}

struct Change {
    const wchar_t* word;
    HandleSelection handles;
};

void WriteChange(const Change& change, const String& typeName, const clsFrameTexts* details) {
    if (change.handles.isEmpty()) return;
    DebugWriteIndented(1, L"%s %d %s HANDLES:", change.word, change.handles.entries(), typeName.Text());
    for (const HandleDict::Pair* pair : change.handles) {
        if (!details) break;
        DebugWrite(L"%s %s HANDLE %#p", change.word, typeName.Text(), pair->key());
        details->Write(pair->value);
    }
    DebugWriteIndented(-1, nullptr);
}

} // namespace

HandleSelection SelectAll(const HandleDict& handles) { return SelectMissing(handles, {}); }

HandleSelection SelectMissing(const HandleDict& handles, const HandleDict& other) {
    HandleSelection selection;
    for (const HandleDict::Pair& pair : handles)
        if (!other.contains(pair.key())) AppendOrThrow(selection, &pair);
    return selection;
}

clsFrameTexts::clsFrameTexts(std::initializer_list<const HandleSelection*> selections) {
    if (!DebugIsActive()) return;
    clsFrameSymbols engine;
    for (const HandleSelection* selection : selections) {
        for (const HandleDict::Pair* pair : *selection) {
            for (void* const frame : HostFrames(pair->value))
                if (!symbols_.contains(frame)) symbols_[frame] = engine.TextOf(frame);
        }
    }
}

void clsFrameTexts::Write(const scHandleRecord& record) const {
    for (void* const frame : HostFrames(record)) {
        const String* const symbol = symbols_.find(frame);
        if (symbol && !symbol->IsEmpty())
            DebugWrite(L"  %s", symbol->Text());
        else
            DebugWrite(L"  %#p", frame);
    }
}

void WriteLostHandles(const String& typeName, const HandleDict& handles, const clsFrameTexts& texts) {
    for (const HandleDict::Pair& pair : handles) {
        DebugWrite(L"LOST %s HANDLE %#p:", typeName.Text(), pair.key());
        texts.Write(pair.value);
    }
}

void WriteHandleChanges(const clsUTHandleList& earlier, const clsUTHandleList& later) {
    const Change changes[] = {{L"NEW", SelectMissing(later.Handles(), earlier.Handles())},
                              {L"DELETED", SelectMissing(earlier.Handles(), later.Handles())}};
    const clsFrameTexts texts({&changes[0].handles, &changes[1].handles});
    for (const clsFrameTexts* const details : {static_cast<const clsFrameTexts*>(nullptr), &texts})
        for (const Change& change : changes) WriteChange(change, later.TypeName(), details);
}

} // namespace vxut
