#include "shot/files/TemporaryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "shot/files/SystemFault.h"

namespace veloxa {

namespace fs = std::filesystem;

namespace {

bool is_plain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
}

std::string find_machine_name() {
    constexpr std::size_t kHost = 20;  // file names have room for so much
    constexpr std::size_t kStart = 8;
    std::array<char, HOST_NAME_MAX + 1> host{};
    ::gethostname(host.data(), host.size() - 1);
    std::string name = std::string(host.data()).substr(0, kHost);
    std::string start;
    std::ifstream("/proc/sys/kernel/random/boot_id") >> start;
    if (name.empty()) name = "unknown";
    if (!start.empty()) name += '-' + start.substr(0, kStart);
    for (char& c : name) c = is_plain(c) ? c : '_';
    return name;
}

struct flock whole_file() {
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return whole;
}

std::optional<int> number(std::string_view digits) {
    int value = 0;
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (fault != std::errc() || end != digits.data() + digits.size() || value < 0) return std::nullopt;
    return value;
}

}  // namespace

const std::string& machine_name() {
    static const std::string name = find_machine_name();
    return name;
}

Lock look_at_lock(int file) {
    struct flock whole = whole_file();
    if (::fcntl(file, F_OFD_GETLK, &whole) != 0) return Lock::kUnknown;
    return whole.l_type == F_UNLCK ? Lock::kFree : Lock::kTaken;
}

Lock take_lock(int file) {
    const struct flock whole = whole_file();
    if (::fcntl(file, F_OFD_SETLK, &whole) == 0) return Lock::kFree;
    return errno == EAGAIN || errno == EACCES ? Lock::kTaken : Lock::kUnknown;
}

bool is_name_of(const std::string& path, int file) {
    struct stat named {};
    struct stat opened {};
    return ::stat(path.c_str(), &named) == 0 && ::fstat(file, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

std::optional<TemporaryName> parse_temporary(const std::string& name) {
    const fs::path file(name);
    const std::string end = file.extension().string();
    const std::string start = file.stem().string();
    const std::size_t which = start.rfind('.');
    if (which == 0 || which == std::string::npos) return {};
    const std::size_t machine = start.rfind('.', which - 1);
    const std::size_t dash = start.find('-', which);
    if (machine == 0 || machine == std::string::npos || dash == std::string::npos) return {};
    TemporaryName result{start.substr(1, machine - 1) + end, start.substr(machine + 1, which - machine - 1),
                         0};
    const auto process = number(std::string_view(start).substr(which + 1, dash - which - 1));
    if (start.front() != '.' || !process || !number(std::string_view(start).substr(dash + 1))) return {};
    if (result.machine.empty() || !std::ranges::all_of(result.machine, is_plain)) return {};
    result.process = *process;
    return result;
}

TemporaryFile::TemporaryFile(const std::string& path) {
    // One process may write several files of one name at a time, and find one of a namesake that was killed.
    static std::atomic<unsigned> count{0};
    constexpr int kTries = 1000;
    const fs::path file(path);
    for (int n = 0; n < kTries && handle_ < 0; ++n) {
        const std::string name = '.' + file.stem().string() + '.' + machine_name() + '.' +
                                 std::to_string(::getpid()) + '-' + std::to_string(count++ % INT_MAX) +
                                 file.extension().string();
        name_ = (file.parent_path() / name).string();
        handle_ = ::open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (handle_ < 0 && errno != EEXIST) break;
    }
    if (handle_ < 0) throw_fault(path, errno);
    take_lock(handle_);  // where there are no locks the name tells of its writer
}

TemporaryFile::~TemporaryFile() {
    if (!renamed_) ::unlink(name_.c_str());
    ::close(handle_);
}

int TemporaryFile::rename(const std::string& path, bool replace) {
    const unsigned how = replace ? 0U : static_cast<unsigned>(RENAME_NOREPLACE);
    const auto fault_of = [](int failed) { return failed == 0 ? 0 : errno; };
    int fault = fault_of(::renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, path.c_str(), how));
    // Some file systems do not know the flag; some of them do not know a second name either.
    if (!replace && (fault == EINVAL || fault == ENOSYS)) {
        fault = fault_of(::link(name_.c_str(), path.c_str()));
        if (fault == 0) ::unlink(name_.c_str());
        if (fault != 0 && fault != EEXIST) {
            fault = fs::exists(path) ? EEXIST : fault_of(::rename(name_.c_str(), path.c_str()));
        }
    }
    renamed_ = fault == 0;
    return fault;
}

}  // namespace veloxa
