#pragma once

#include <cstddef>

namespace faults {

// Counts the operations of one kind, and makes one of them fail, alone or with all later ones.
class Meter {
public:
    // Restarts the counting. Operation number `ordinal` will fail (0: none), alone or with all later ones.
    void Arm(std::size_t ordinal, bool from_there_on) noexcept {
        ordinal_ = ordinal;
        from_there_on_ = from_there_on;
        steps_ = 0;
        hits_ = 0;
    }
    void Disarm() noexcept { Arm(0, false); }

    // Counts one operation. True if it must fail.
    bool Step() noexcept {
        ++steps_;
        const bool hit = ordinal_ != 0 && (from_there_on_ ? steps_ >= ordinal_ : steps_ == ordinal_);
        hits_ += hit ? 1 : 0;
        return hit;
    }

    std::size_t steps() const noexcept { return steps_; }
    std::size_t hits() const noexcept { return hits_; }

private:
    std::size_t ordinal_ = 0;
    bool from_there_on_ = false;
    std::size_t steps_ = 0;
    std::size_t hits_ = 0;
};

}  // namespace faults
