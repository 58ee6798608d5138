#include "tools/orvane/delivery.h"

#include <stdexcept>

namespace host {

void DeliverToStream(std::ostream& out, const std::string& text, const std::string& what) {
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out.flush()) {
        throw std::runtime_error(what + " cannot be written to standard output");
    }
}

}  // namespace host
