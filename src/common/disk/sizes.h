#pragma once

namespace bmr_common {

// Bytes as the gigabytes of the text dumps.
inline double Gigabytes(double bytes) {
    constexpr double kStep = 1.0 / 1024;
    return bytes * kStep * kStep * kStep;
}

}  // namespace bmr_common
