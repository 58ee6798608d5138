#pragma once

#include "orvane/orvane.h"
#include "tools/orvane/options.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace host {

using CaptureFunction = std::function<std::uint32_t(char* buffer, std::uint32_t size, std::uint32_t* needed)>;

// Asks for the size, then for the document, again when it has grown in between. None when a call failed.
std::optional<std::string> FetchDocument(const CaptureFunction& capture);

// The volumes as the library takes them: each ended by a zero character, the list by another one.
std::wstring MultiStringOf(const std::vector<std::wstring>& volumes);

// `orvane capture`: writes the document to `out` or the chosen file, the log's errors to `errors`. Returns
// the exit code. Throws LibraryError, machine::DescriptionError and other std::exceptions.
int Capture(const CaptureOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace host
