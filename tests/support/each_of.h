#pragma once

#include <functional>
#include <iterator>
#include <type_traits>
#include <vector>

namespace support {

// What `projection` (a member or a function) gives of each element, in order.
template <class Range, class Projection>
auto EachOf(const Range& range, Projection projection) {
    using Value = std::invoke_result_t<Projection, decltype(*std::begin(range))>;
    std::vector<std::remove_cvref_t<Value>> values;
    for (const auto& element : range) {
        values.push_back(std::invoke(projection, element));
    }
    return values;
}

}  // namespace support
