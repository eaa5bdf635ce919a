// The headers that nearly every source of the library needs, parsed once.
#pragma once

#include <windows.h>
// After windows.h, which they need:
#include <objbase.h>
#include <oleauto.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
