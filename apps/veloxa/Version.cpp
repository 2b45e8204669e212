#include "Version.h"

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <exception>
#include <vector>

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

// The library's list without "null" and "term", which stand for no file at all.
std::string formats(const char* attribute) {
    auto names = OIIO::Strutil::splits(OIIO::get_string_attribute(attribute), ",");
    std::erase_if(names, [](const std::string& name) { return name == "null" || name == "term"; });
    return OIIO::Strutil::join(names, ", ");
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
