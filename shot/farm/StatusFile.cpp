#include "shot/farm/StatusFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"

namespace veloxa {

namespace {

constexpr const char* kFirstLine = "veloxa status 1";

// Empty without a picture. Microseconds are what all file systems keep that frames are rendered to.
std::string state_of(const std::string& picture) {
    struct stat status {};
    if (::stat(picture.c_str(), &status) != 0) return {};
    return "size " + std::to_string(status.st_size) + "\ntime " + std::to_string(status.st_mtim.tv_sec) +
           " s " + std::to_string(status.st_mtim.tv_nsec / 1000) + " us\n";
}

std::string text_for(const std::string& fingerprint, const std::string& state) {
    return std::string(kFirstLine) + "\nfingerprint " + fingerprint + "\n" + state;
}

}  // namespace

std::string status_file(const std::string& picture) {
    const std::filesystem::path path(picture);
    return (path.parent_path() / ("." + path.filename().string() + ".veloxa")).string();
}

void note_fingerprint(const std::string& picture, const std::string& fingerprint) {
    const std::string state = state_of(picture);
    if (state.empty()) throw Error(picture, std::strerror(errno));
    write_text(status_file(picture), text_for(fingerprint, state), true);
}

std::string noted_fingerprint(const std::string& picture) {
    std::ifstream file(status_file(picture));
    std::string first, word, fingerprint;
    if (!std::getline(file, first) || !(file >> word >> fingerprint)) return {};
    file.ignore();
    const std::string rest(std::istreambuf_iterator<char>(file), {});
    const std::string state = state_of(picture);
    return !state.empty() && first == kFirstLine && rest == state ? fingerprint : "";
}

void forget_fingerprint(const std::string& picture) {
    ::unlink(status_file(picture).c_str());
}

}  // namespace veloxa
