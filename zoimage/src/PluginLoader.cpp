#include "ZoImage/PluginLoader.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "Text.h"

namespace Zo::Image {

namespace {

namespace fs = std::filesystem;

// Any object of this library; its address tells the loader which file the library was loaded from.
const char kInThisLibrary = 0;

// The directory of a file, all links followed; empty when it cannot be told.
fs::path directory_of(const fs::path& file) {
    std::error_code error;
    const fs::path real = fs::canonical(file, error);
    return error ? fs::path() : real.parent_path();
}

std::vector<fs::path> search_directories() {
    std::vector<fs::path> directories;
    if (const char* const variable = std::getenv("VELOXA_PLUGIN_PATH")) {
        std::string_view rest = variable;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(':'), rest.size());
            if (end > 0) directories.emplace_back(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    Dl_info library{};
    if (dladdr(&kInThisLibrary, &library) != 0 && library.dli_fname != nullptr) {
        const fs::path beside = directory_of(library.dli_fname);
        if (!beside.empty()) directories.push_back(beside / "veloxa");
    }
    const fs::path program = directory_of("/proc/self/exe");
    if (!program.empty()) directories.push_back(program.parent_path() / "lib" / "veloxa");
    return directories;
}

// The name becomes a file name, so it must not lead elsewhere.
bool is_class_name(std::string_view name) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    return !name.empty() && name.find_first_not_of(kLetters) == std::string_view::npos;
}

// The module's handle. Where it was found or looked for is told either way.
void* load_from_directories(std::string_view name, std::string& where) {
    const std::string file_name = std::string(name) + ".so";
    std::string looked_at;
    for (const fs::path& directory : search_directories()) {
        const fs::path path = directory / file_name;
        looked_at += (looked_at.empty() ? "" : ", ") + directory.string();
        std::error_code error;
        if (!fs::exists(path, error)) continue;
        where = path.string();
        // A name without a slash would be searched for in the system's library directories.
        const fs::path absolute = fs::absolute(path, error);
        void* const module = dlopen((error ? path : absolute).c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module != nullptr) return module;
        const char* const reason = dlerror();
        throw PluginError("cannot load " + where + ": " + (reason != nullptr ? reason : "unknown reason") +
                          " (looked at " + looked_at + ")");
    }
    where = looked_at;
    return nullptr;
}

}  // namespace

void* load_module(std::string_view name) {
    std::string where;
    if (void* const module = load_from_directories(name, where)) return module;
    throw PluginError("there is no " + std::string(name) + ".so in " + where);
}

const Op::Description& load_plugin(std::string_view class_name) {
    if (const Op::Description* const known = Op::Description::find(class_name)) return *known;
    const std::string who = "cannot load operator " + quoted(class_name) + ": ";
    if (!is_class_name(class_name)) throw PluginError(who + "that is no class name");

    std::string where;
    const bool loaded = load_from_directories(class_name, where) != nullptr;
    if (const Op::Description* const found = Op::Description::find(class_name)) return *found;
    if (loaded) throw PluginError(where + " registers no operator " + quoted(class_name));
    throw PluginError(who + "no " + std::string(class_name) + ".so in " + where);
}

}  // namespace Zo::Image
