// Downloads a file while the calling thread goes on serving its host.
#pragma once

#include "net/download_thread.h"
#include "text/string.h"
#include "util/download.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// Returns when the transfer has ended. The callback is known to be callable.
HRESULT DownloadFile(const String& url, UtilDownloadCallback* callback,
                     uint64_t patience = clsDownloadThread::kPatience);

// The extension of the file that a URL names, with its dot; empty if there is none that a file can have.
String ExtensionOfUrl(const String& url);

} // namespace vxut
