// A minidump, packed with the recent logs.
#pragma once

#include "crash/debug_help_job.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

// Writes a dump and packs it into "Velmora.dmp.zip" in the dump's folder. An empty name stands for a
// temporary file. name becomes that of the archive, or that of the dump if the packing was stopped. The dump
// is deleted in any case. Returns false if there is no dump.
bool WritePackedDump(clsDBGHelpWrapper& job, String& name, EXCEPTION_POINTERS* exception);

// Whether a log belongs into the archive: it was written in the ten minutes before now, all in units of 100
// ns.
constexpr bool IsRecentLog(uint64_t lastWritten, uint64_t now) {
    constexpr uint64_t kTenMinutes = 6'000'000'000;
    return lastWritten + kTenMinutes >= now;
}

} // namespace vxut
