#pragma once

namespace support {

// Whether Wine runs this program, as it does wherever the project is tested without Windows.
bool UnderWine();

}  // namespace support
