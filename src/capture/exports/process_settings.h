#pragma once

#include "capture/grabber/info_grabber.h"

#include <cstdint>
#include <string>
#include <vector>

// The process-wide settings that the setters store for later calls. No locks: only one thread calls at a
// time.
extern std::uint32_t gSaveXmlFormat;

std::vector<std::wstring>& SelectedVolumes();
// Always empty: no export fills the list.
const std::vector<orvane::RequestedDisk>& RequestedDisks();
