// Walks over a stack of the process.
#pragma once

#include "crash/debug_items.h"
#include "crash/symbol_session.h"

namespace vxut {

// Bits of the frame mode.
inline constexpr uint32_t kFrameSymbols = UTIL_DEBUGHELP_FRAME_SYMBOLS;
inline constexpr uint32_t kFrameArguments = UTIL_DEBUGHELP_FRAME_ARGUMENTS;
inline constexpr uint32_t kFrameOwnThread = UTIL_DEBUGHELP_FRAME_OWN_THREAD;

struct scStackWalk {
    const CONTEXT* context = nullptr; // where the walk starts
    HANDLE thread = nullptr; // whose stack it is; it must not run meanwhile, unless it waits for the walk
    int32_t mostFrames = 0;
    uint32_t mode = kFrameSymbols;
};

// Adds the frames to the list. Returns false if the walk is not possible.
bool WalkStack(clsRPDBGHELP& library, HANDLE process, clsSymbolSession& symbols, const scStackWalk& walk,
               clsDBGStackTraceList& list);

} // namespace vxut
