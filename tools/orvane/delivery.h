#pragma once

#include <filesystem>
#include <ostream>
#include <string>

namespace host {

// Both throw std::runtime_error, which names `what` ("the document"), unless every byte arrived.
void DeliverToFile(const std::filesystem::path& file, const std::string& text, const std::string& what);
void DeliverToStream(std::ostream& out, const std::string& text, const std::string& what);

}  // namespace host
