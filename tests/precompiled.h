// Parsed once for all unit tests.
#pragma once

#include "cmake/precompiled.h"

#include <gtest/gtest.h>
