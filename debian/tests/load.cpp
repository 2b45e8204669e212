// Loads an OpenFX module and checks that its one effect is the keyer.
#include <dlfcn.h>

#include <cstdio>
#include <cstring>

#include "abi/OfxCore.h"

int main(int, char** argv) {
    void* const module = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        std::printf("%s\n", dlerror());
        return 1;
    }
    const auto count =
        reinterpret_cast<decltype(&OfxGetNumberOfPlugins)>(dlsym(module, "OfxGetNumberOfPlugins"));
    const auto plugin = reinterpret_cast<decltype(&OfxGetPlugin)>(dlsym(module, "OfxGetPlugin"));
    if (count == nullptr || plugin == nullptr || count() != 1 || plugin(0) == nullptr) return 1;
    std::printf("%s\n", plugin(0)->pluginIdentifier);
    return std::strcmp(plugin(0)->pluginIdentifier, "org.veloxa.Keyer");
}
