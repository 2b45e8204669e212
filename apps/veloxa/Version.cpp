#include "Version.h"

#include <OpenImageIO/strutil.h>

#include <exception>

#include "shot/files/Formats.h"
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

}  // namespace

std::string version_text(bool verbose) {
    std::string version = "veloxa " VELOXA_VERSION;
    if (!verbose) return version;
    return version + "\ncompiler     " + kCompiler + "\narithmetic   " + lanes() + "\nOpenImageIO  " +
           formats().version() + "\nreads        " + OIIO::Strutil::join(formats().read(), ", ") +
           "\nwrites       " + OIIO::Strutil::join(formats().written(), ", ");
}

}  // namespace veloxa
