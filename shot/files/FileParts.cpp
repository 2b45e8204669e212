#include "shot/files/FileParts.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <vector>

#include "shot/files/Hush.h"

namespace veloxa {

namespace {

// A film has many; what is told of is that there are others.
constexpr std::size_t kCounted = 100;
constexpr std::size_t kNamed = 8;

// Their names, or numbers for those without.
std::vector<std::string> part_names(const std::string& path) {
    const Hush hush(path);
    std::vector<std::string> names;
    const auto input = OIIO::ImageInput::open(path);
    while (input && names.size() < kCounted && input->seek_subimage(static_cast<int>(names.size()), 0)) {
        const std::string name = input->spec().get_string_attribute("oiio:subimagename");
        names.push_back(name.empty() ? std::to_string(names.size()) : name);
    }
    OIIO::geterror();  // there is always an end
    return names;
}

}  // namespace

void warn_of_parts(const std::string& path, const Caller& caller) {
    const std::vector<std::string> names = part_names(path);
    if (names.size() < 2) return;
    std::string list;
    for (std::size_t n = 0; n < std::min(names.size(), kNamed); ++n) list += (n > 0 ? ", " : "") + names[n];
    if (names.size() > kNamed) list += ", ...";
    const std::string count = std::to_string(names.size()) + (names.size() == kCounted ? " or more" : "");
    caller.warn(path + ": warning: holds " + count + " parts (" + list + "); only the first is used, " +
                names.front());
}

}  // namespace veloxa
