#pragma once

// What most tests include, compiled once without optimisation. Every source still names what it uses.

#include "cmake/precompiled.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
