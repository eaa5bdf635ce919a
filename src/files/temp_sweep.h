// The shared temp folder: the sign of activity that processes leave in it, and the sweep of files whose
// processes died.
//
// Each process that has the temp-file manager open rewrites the activity file every few seconds. Its contents
// are for people; only the time of its last write counts. Processes of another major version have another
// activity file and other names, so that versions leave each other's files alone.
//
// Times are in UTC. The functions may be called on any thread.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// The activity file of a folder, which has no backslash at its end.
String ActivityFile(const String& folder);

// Whether nobody was at work in the folder for three hours. A file that the system does not tell about counts
// as recent.
bool IsSweepDue(const String& activityFile, const SYSTEMTIME& now);

// Rewrites the activity file.
void SignalActivity(const String& activityFile, const SYSTEMTIME& now);

// Whether a sweep takes a file: not an activity file, and not written since the limit. The name has no
// folder.
bool IsSweepable(const String& name, const FILETIME& lastWritten, const SYSTEMTIME& limit);

// Deletes the files of the version in a folder, which has a backslash at its end, that were not written for
// an hour. What cannot be deleted now stays for a later sweep.
void SweepTempFolder(const String& folder, const SYSTEMTIME& now);

// Deletes a file. Returns ERROR_SUCCESS or the error, which is reported unless it says that there is no file.
DWORD DeleteTempFile(const String& path);

} // namespace vxut
