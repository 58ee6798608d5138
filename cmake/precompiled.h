#pragma once

// The headers that most sources include, compiled once. Every source must still include what it uses:
// `make lint` compiles each source without this file.

#include "common/windows.h"

#include <comdef.h>
#include <msxml2.h>
#include <oleauto.h>
#include <wbemidl.h>
#include <winternl.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include <boost/make_shared.hpp>
