// Writes a job's tree to files, streams and images in memory.
#pragma once

#include "files/file.h"
#include "profile/forms.h"

#include <objbase.h>

#include <cstdint>

namespace vxut {

class ProfJob;

// The bits of a save's format beside the form.
constexpr uint32_t kSavePacked = 0x40;
constexpr uint32_t kSaveKeepPacked = 0x80;

// Writes the tree in one form from the start of a file and ends the file there. An empty tree leaves an empty
// file. False if something could not be written in full.
bool SerialiseProfile(ProfJob& job, const IclsFormWriter& writer, int startDepth, clsFile& target);

// What ProfSave... gives. A null name is the job's own.
int32_t SaveProfile(ProfJob& job, const wchar_t* name, uint32_t format);
int32_t SaveProfileToStream(ProfJob& job, IStream* stream, uint32_t format);

} // namespace vxut
