// Tooltips for terminals.
#pragma once

#include <string>
#include <string_view>

namespace veloxa {

// The text without its tags, an item of a list or a new paragraph on a line of its own, named and numbered
// characters (&lt; &#39; &#x27;) as themselves. What looks like neither stays as it is.
std::string plain_text(std::string_view markup);

}  // namespace veloxa
