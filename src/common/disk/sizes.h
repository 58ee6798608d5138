#pragma once

namespace bmr_common {

// Converts bytes to gigabytes, as printed in the text dumps.
inline double Gigabytes(double bytes) {
    constexpr double kStep = 1.0 / 1024;
    return bytes * kStep * kStep * kStep;
}

}  // namespace bmr_common
