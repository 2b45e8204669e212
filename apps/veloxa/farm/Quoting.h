// Words of a command line as bash reads them, in files that others read before bash does.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace veloxa {

// Bytes in, the same bytes after bash took the quotes off. One line without control characters and without
// "{{", in valid UTF-8 whatever the bytes are. Empty text gives ''.
std::string shell_word(std::string_view text);

// Each as a word, with `between` from one to the next; a word that is an option's value stays beside its
// option: it follows a word that begins with a dash and does not begin with one itself.
std::string shell_words(const std::vector<std::string>& words, std::string_view between);

// A line of bash as a recipe of make.
std::string make_recipe(std::string_view line);

bool is_utf8(std::string_view text);

}  // namespace veloxa
