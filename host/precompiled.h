// The headers that nearly every source of vlm.exe needs, parsed once.
#pragma once

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
