#include "shot/files/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "shot/Errors.h"
#include "shot/files/CheckedFile.h"

namespace veloxa {

namespace fs = std::filesystem;

namespace {

constexpr const char* kExists = "exists; use --overwrite";

// One process may write several files of one name at a time, so the process id alone is not enough.
std::string temporary_name(const fs::path& path) {
    static std::atomic<unsigned> count{0};
    std::string name(1, '.');
    name += path.stem().string() + '.' + std::to_string(::getpid()) + '-' + std::to_string(count++);
    name += path.extension().string();
    return (path.parent_path() / name).string();
}

}  // namespace

void AtomicFile::check(const std::string& path, bool overwrite) {
    std::error_code ignored;
    const fs::path folder = fs::path(path).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, ignored)) {
        throw Error(path, "there is no folder " + folder.string());
    }
    const fs::file_status status = fs::status(path, ignored);
    if (fs::is_directory(status)) throw Error(path, "is a folder");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw Error(path, "is not a regular file");
    if (fs::exists(status) && !overwrite) throw Error(path, kExists);
    if (::access(folder.empty() ? "." : folder.c_str(), W_OK) != 0) {
        throw Error(path, "cannot write to its folder: " + std::string(std::strerror(errno)));
    }
}

AtomicFile::AtomicFile(std::string path, bool overwrite) : path_(std::move(path)), overwrite_(overwrite) {
    check(path_, overwrite_);
    temporary_ = temporary_name(path_);
}

AtomicFile::~AtomicFile() {
    if (!committed_) ::unlink(temporary_.c_str());
}

void AtomicFile::commit() {
    int failed = ::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(),
                             overwrite_ ? 0U : static_cast<unsigned>(RENAME_NOREPLACE));
    // Some file systems do not know the flag.
    if (failed != 0 && (errno == EINVAL || errno == ENOSYS) && !fs::exists(path_)) {
        failed = ::rename(temporary_.c_str(), path_.c_str());
    }
    if (failed != 0) throw Error(path_, errno == EEXIST ? kExists : std::strerror(errno));
    committed_ = true;
}

void write_text(const std::string& path, std::string_view text, bool overwrite) {
    AtomicFile file(path, overwrite);
    CheckedFile bytes(file.temporary());
    bytes.write(text.data(), text.size());
    bytes.close();
    if (!bytes.failure().empty()) throw Error(path, bytes.failure());
    file.commit();
}

}  // namespace veloxa
