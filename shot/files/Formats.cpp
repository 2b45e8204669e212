#include "shot/files/Formats.h"

#include <OpenImageIO/thread.h>
#include <dlfcn.h>

#include <mutex>

#include "ZoImage/PluginLoader.h"
#include "shot/Errors.h"
#include "shot/openexr/ExrFile.h"

namespace veloxa {

namespace {

std::mutex mutex;  // guards the two below
int threads_of_files = 0;
const Formats* loaded = nullptr;

const Formats* load() try {
    void* const module = Zo::Image::load_module("Formats");
    const auto made = reinterpret_cast<const Formats* (*)()>(::dlsym(module, "veloxa_formats"));
    if (made == nullptr) throw Error("Formats.so is of another version");
    return made();
} catch (const Zo::Image::PluginError& error) {
    throw Error(error.what());
}

}  // namespace

const Formats& formats() {
    const std::lock_guard hold(mutex);
    if (loaded == nullptr) {
        const Formats* const module = load();
        module->set_threads(threads_of_files);
        loaded = module;
    }
    return *loaded;
}

void set_file_threads(int threads) {
    const std::lock_guard hold(mutex);
    threads_of_files = threads;
    OIIO::default_thread_pool()->resize(threads > 0 ? threads - 1 : -1);
    set_exr_threads(threads);
    if (loaded != nullptr) loaded->set_threads(threads);
}

}  // namespace veloxa
