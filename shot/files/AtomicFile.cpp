#include "shot/files/AtomicFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "shot/Errors.h"
#include "shot/files/CheckedFile.h"
#include "shot/files/SystemFault.h"

namespace veloxa {

namespace fs = std::filesystem;

namespace {

constexpr const char* kExists = "exists; use --overwrite";

}  // namespace

void AtomicFile::check(const std::string& path, bool overwrite) {
    std::error_code ignored;
    const fs::path folder = fs::path(path).parent_path();
    std::error_code fault;
    if (!folder.empty() && !fs::is_directory(folder, fault)) {
        if (may_pass(fault.value())) throw_fault(path, fault.value());
        throw Error(path, "there is no folder " + folder.string());
    }
    const fs::file_status status = fs::status(path, ignored);
    if (fs::is_directory(status)) throw Error(path, "is a folder");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw Error(path, "is not a regular file");
    if (fs::exists(status) && !overwrite) throw Error(path, kExists);
    if (::access(folder.empty() ? "." : folder.c_str(), W_OK) != 0) {
        const int error = errno;
        throw_fault(path, error, "cannot write to its folder: " + std::string(std::strerror(error)));
    }
}

AtomicFile::AtomicFile(std::string path, bool overwrite)
    : path_(std::move(path)), overwrite_(overwrite), temporary_((check(path_, overwrite_), path_)) {}

void AtomicFile::commit() {
    const int fault = temporary_.rename(path_, overwrite_);
    if (fault == EEXIST) throw Error(path_, kExists);
    if (fault != 0) throw_fault(path_, fault);
}

void write_text(const std::string& path, std::string_view text, bool overwrite) {
    AtomicFile file(path, overwrite);
    CheckedFile bytes(file.temporary());
    bytes.write(text.data(), text.size());
    bytes.close();
    bytes.check(path);
    file.commit();
}

}  // namespace veloxa
