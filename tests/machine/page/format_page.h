#pragma once

#include <string>

namespace machine_test {

// The page that documents the format, with its tables written anew from the rows that read it. A table stands
// between the lines "<!-- rows: NAME -->" and "<!-- end -->". Throws std::invalid_argument for a name that
// has no rows.
std::string WithTables(const std::string& page);

}  // namespace machine_test
