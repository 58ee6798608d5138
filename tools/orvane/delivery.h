#pragma once

#include <ostream>
#include <string>

namespace host {

// Writes the whole text, or throws std::runtime_error with `what` ("the document") in its message.
void DeliverToStream(std::ostream& out, const std::string& text, const std::string& what);

}  // namespace host
