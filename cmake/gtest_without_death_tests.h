#pragma once

// Included ahead of GoogleTest's own sources: its death tests do not compile without its thread support.

#include <gtest/internal/gtest-port.h>

#undef GTEST_HAS_DEATH_TEST
