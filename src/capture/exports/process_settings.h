#pragma once

#include "capture/grabber/info_grabber.h"

#include <cstdint>
#include <string>
#include <vector>

// What the setters of the interface leave for the calls after them. No locks: one thread calls at a time.
extern std::uint32_t gSaveXmlFormat;

std::vector<std::wstring>& SelectedVolumes();
// No export fills it.
const std::vector<orvane::RequestedDisk>& RequestedDisks();
