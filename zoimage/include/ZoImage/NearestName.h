// What a name that does not exist may have been meant for. Any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Zo::Image {

// The first of the names to which the fewest slips of the keyboard lead: a letter too many, missing, wrong,
// or swapped with the next; capitals count as small letters. Empty where all are more than a third of `name`,
// and a slip, away.
std::string_view nearest_name(std::string_view name, std::span<const std::string> names);

// "; did you mean 'NAME'?", empty where no name is near.
std::string did_you_mean(std::string_view name, std::span<const std::string> names);

// The end of a message about a name that does not exist: "; there are A, B, C", which a guess follows if
// there is one; where the list is long the guess alone.
std::string choices(std::string_view name, std::span<const std::string> names);

}  // namespace Zo::Image
