// The packed form of a profile: a magic and a raw deflate stream of a whole file of any form, this one
// included.
#pragma once

#include "files/file.h"

namespace vxut {

class ProfJob;

constexpr char kPackedMagic[] = "ZRzQ";
constexpr int kPackedMagicSize = sizeof kPackedMagic - 1;

// Loads from the position after the magic; result as of LoadProfile(). Expands the image to a temporary file,
// and images inside it likewise, and reads what the last one holds. A damaged stream is no failure: what it
// expanded to is read. PROF_ERR_FORMAT ends images that are nested more than 8 deep, and images that together
// expand to more than 4 GB, or to more than 16 MB and 1032 times the file's size, which is as far as one
// stream can expand. PROF_ERR_BUSY and PROF_ERR_MEMORY report files that cannot be read or written, and a
// lack of memory. For the thread of the job.
bool LoadPackedProfile(ProfJob& job, clsFile& file);

// Write magic and stream of an image that is at its start to an empty file in memory. Return false if that
// fails; may throw std::bad_alloc.
bool SavePackedToFile(clsFile& image, clsFile& target);
// Writes a stream without content, which callers rely on: only files receive packed profiles.
bool SavePackedToStream(clsFile& image, clsFile& target);

} // namespace vxut
