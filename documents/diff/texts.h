#pragma once

#include <cstdint>
#include <string>

// Numbers as Windows and partitioning tools show them.
namespace documents::diff {

std::string SerialText(std::uint32_t serial);        // "8E17-A45D"
std::string SignatureText(std::uint32_t signature);  // "0x7A3C51E8"
std::string TypeText(std::uint8_t type);             // "0x07"

}  // namespace documents::diff
