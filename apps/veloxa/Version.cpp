#include "Version.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <exception>

#include "shot/node/Node.h"

namespace veloxa {

namespace {

#ifdef __clang__
constexpr const char* kCompiler = __VERSION__;
#else
constexpr const char* kCompiler = "GCC " __VERSION__;
#endif

std::string lanes() try { return Node().image().diagnostic("lanes"); } catch (const std::exception& error) {
    return error.what();
}

std::string library_version() {
    const int version = OIIO::openimageio_version();
    return std::to_string(version / 10000) + '.' + std::to_string(version / 100 % 100) + '.' +
           std::to_string(version % 100);
}

// The library's list with blanks behind the commas; "null" and "term" stand for no file at all.
std::string formats(const char* attribute) {
    std::string list;
    const std::string all = OIIO::get_string_attribute(attribute);
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = std::min(all.find(',', at), all.size());
        const std::string name = all.substr(at, end - at);
        if (name != "null" && name != "term") list += (list.empty() ? "" : ", ") + name;
        at = end + 1;
    }
    return list;
}

}  // namespace

std::string version_text(bool verbose) {
    std::string version = "veloxa " VELOXA_VERSION;
    if (!verbose) return version;
    return version + "\ncompiler     " + kCompiler + "\narithmetic   " + lanes() + "\nOpenImageIO  " +
           library_version() + "\nreads        " + formats("input_format_list") + "\nwrites       " +
           formats("output_format_list");
}

}  // namespace veloxa
