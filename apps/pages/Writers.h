// The texts that are made from the command line.
#pragma once

#include <string>

#include "CommandLine.h"

namespace veloxa {

// A page for man: of the command, or of the program itself. `version` stands in its margin, no date, so that
// one version's pages are always the same bytes.
std::string manual_page(const CommandLine& all, const CommandText& command, const std::string& version);

// The page's name for man.
std::string page_name(const CommandLine& all, const CommandText& command);

// Completions, as each shell reads them from a file of its folder of completions.
std::string bash_completion(const CommandLine& all);
std::string zsh_completion(const CommandLine& all);
std::string fish_completion(const CommandLine& all);

}  // namespace veloxa
