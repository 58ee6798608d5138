#pragma once

#include <string_view>

namespace recorder {

// Whether a text consists of words on the published list (everyday_words.inc), of which it has at least one,
// of words of at most three letters, and of at most three digits at its end, with spaces, hyphens and
// underscores between. Such a text may be in other values by chance.
bool IsEveryday(std::wstring_view text);

}  // namespace recorder
