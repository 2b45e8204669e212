#include "shot/files/SystemFault.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include "shot/Errors.h"

namespace veloxa {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

}  // namespace

bool may_pass(int error) {
    constexpr std::array kPassing{ENOSPC,       EDQUOT,    EROFS,       EIO,        EREMOTEIO,
                                  ESTALE,       ETIMEDOUT, ENOTCONN,    ECONNRESET, EHOSTDOWN,
                                  EHOSTUNREACH, ENETDOWN,  ENETUNREACH, ENOMEM,     ENFILE};
    return std::ranges::find(kPassing, error) != kPassing.end();
}

void throw_fault(const std::string& path, int error, const std::string& what) {
    const std::string text = what.empty() ? std::strerror(error) : what;
    if (may_pass(error)) throw TryAgain(path, text);
    throw Error(path, text);
}

int fault_of_reading(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return errno;
    std::vector<char> block(kBlock);
    ssize_t count = 1;
    while (count > 0) count = ::read(file, block.data(), block.size());
    const int fault = count < 0 ? errno : 0;
    ::close(file);
    return fault;
}

int fault_of_writing(int file) {
    const std::vector<char> block(kBlock);
    const off_t end = ::lseek(file, 0, SEEK_END);
    if (end < 0) return errno;
    for (std::size_t done = 0; done < block.size();) {
        const ssize_t count =
            ::pwrite(file, block.data() + done, block.size() - done, end + static_cast<off_t>(done));
        if (count < 0) return errno;
        done += static_cast<std::size_t>(count);
    }
    return ::fsync(file) == 0 ? 0 : errno;
}

}  // namespace veloxa
