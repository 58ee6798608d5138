#include "tools/orvane/text_encoding.h"

#include "common/windows.h"
#include "machine/description/text.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace host {

std::string FromAnsi(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    std::wstring wide;
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)));
    if (MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size())) ==
        0) {
        throw std::runtime_error("the document cannot be converted from the ANSI code page, error " +
                                 std::to_string(GetLastError()));
    }
    return machine::Narrow(wide);
}

std::string FromLocale(const char* text) {
    std::wstring wide;
    const char* const end = text + std::strlen(text);
    while (text != end) {
        wchar_t character = L'?';
        const int used = std::mbtowc(&character, text, static_cast<std::size_t>(end - text));
        wide += used > 0 ? character : L'?';
        text += used > 0 ? used : 1;
    }
    return machine::Narrow(wide);
}

}  // namespace host
