// The texts of failed downloads.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// The name of the system's status code, or the system's text for one without a name.
String DownloadErrorText(HRESULT status);

} // namespace vxut
