#pragma once

#include <filesystem>
#include <ostream>
#include <string>

namespace host {

// Both write the whole text, or throw std::runtime_error with `what` ("the document") in its message.
void DeliverToFile(const std::filesystem::path& file, const std::string& text, const std::string& what);
void DeliverToStream(std::ostream& out, const std::string& text, const std::string& what);

}  // namespace host
