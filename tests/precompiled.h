#pragma once

// Headers that most tests include, compiled once without optimisation. Every source still includes what it
// uses.

#include "cmake/precompiled.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
