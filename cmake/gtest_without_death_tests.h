#pragma once

// Included before GoogleTest's own sources, because its death tests do not compile without its thread
// support.

#include <gtest/internal/gtest-port.h>

#undef GTEST_HAS_DEATH_TEST
