// Settings as scripts in files, which the program reads and writes too.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/Host.h"
#include "instance/Instance.h"

namespace veloxa::ofx {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string& file, const std::string& what) {
    throw Failure(kOfxStatFailed, file + ": " + what);
}

std::string chosen_file(const OwnParameters& own) {
    std::string file = own.text(kSettingsFile);
    if (file.empty()) throw Failure(kOfxStatFailed, "choose a settings file first");
    std::error_code failed;
    if (fs::is_directory(file, failed)) fail(file, "is a folder");
    return file;
}

// All of it or nothing: beside the file first, under a name that is nobody's, then in its place.
void write_whole(const std::string& file, const std::string& text) {
    const std::string beside = file + '.' + std::to_string(getpid()) + ".part";
    std::FILE* const out = std::fopen(beside.c_str(), "wbx");
    if (out == nullptr) fail(file, std::strerror(errno));
    bool good = std::fwrite(text.data(), 1, text.size(), out) == text.size();
    good = std::fclose(out) == 0 && good;
    good = good && std::rename(beside.c_str(), file.c_str()) == 0;
    if (good) return;
    const int fault = errno;
    std::remove(beside.c_str());
    fail(file, std::strerror(fault));
}

}  // namespace

void Instance::load_settings(OfxTime time) {
    const std::string file = chosen_file(editor_.own());
    std::ifstream in(file, std::ios::binary);
    if (!in) fail(file, std::strerror(errno));
    std::ostringstream text;
    // Of an empty file no character can be passed on, which counts as a fault there.
    if (in.peek() != std::ifstream::traits_type::eof()) text << in.rdbuf();
    if (in.bad() || !text) fail(file, "cannot be read");
    editor_.apply(text.str(), file, time);
    show_start();
}

void Instance::save_settings() {
    const std::string file = chosen_file(editor_.own());
    std::error_code failed;
    if (fs::exists(file, failed) && !ask(effect_, (file + " exists. Replace it?").c_str())) {
        editor_.own().report("nothing is saved: " + file + " exists, and was not to be replaced");
        return;
    }
    write_whole(file, editor_.script());
    editor_.own().report("settings are saved to " + file);
}

}  // namespace veloxa::ofx
