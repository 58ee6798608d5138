#include "documents/commands/command.h"

#include "documents/text/utf8.h"

#include <ostream>

namespace documents {

void Complain(const Terminal& terminal, const std::string& text) {
    terminal.errors << "orvane: " << Escaped(text) << '\n';
}

void Print(const Terminal& terminal, const std::string& text) {
    terminal.out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!terminal.out.flush()) {
        throw Trouble("the output cannot be written");
    }
}

}  // namespace documents
