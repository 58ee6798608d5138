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

// Queries the size, then fetches the document; retries if it has grown in between. None if a call failed.
std::optional<std::string> FetchDocument(const CaptureFunction& capture);

// The volumes as a multi-string: each entry is null-terminated, and another null character ends the list.
std::wstring MultiStringOf(const std::vector<std::wstring>& volumes);

// Captures the document, indented and in UTF-8, or its bytes if options.raw says so; the errors of the log go
// to `errors`. None if the capture failed. Throws as Capture does.
std::optional<std::string> CaptureDocument(const CaptureOptions& options, std::ostream& errors);

// `orvane capture`: writes the document to `out` or to the selected file, and the errors of the log to
// `errors`. Returns the exit code. Throws LibraryError, machine::DescriptionError and other std::exceptions.
int Capture(const CaptureOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace host
