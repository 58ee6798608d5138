#include "tools/orvane/delivery.h"

#include "machine/description/text.h"

#include <fstream>
#include <stdexcept>

namespace host {

void DeliverToFile(const std::filesystem::path& file, const std::string& text, const std::string& what) {
    std::ofstream out(file, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
        throw std::runtime_error(machine::Narrow(file.wstring()) + ": " + what + " cannot be written");
    }
}

void DeliverToStream(std::ostream& out, const std::string& text, const std::string& what) {
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!out.flush()) {
        throw std::runtime_error(what + " cannot be written to standard output");
    }
}

}  // namespace host
