#pragma once

namespace support {

// True if this program runs under Wine, as on every build machine without Windows.
bool UnderWine();

}  // namespace support
