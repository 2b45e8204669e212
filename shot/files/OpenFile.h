// An open file of the system's, closed at the end.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace veloxa {

class OpenFile {
  public:
    OpenFile(const std::string& path, int flags) : handle_(::open(path.c_str(), flags | O_CLOEXEC)) {}
    ~OpenFile() {
        if (handle_ >= 0) ::close(handle_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    // Whether it could be opened; else errno says why.
    explicit operator bool() const { return handle_ >= 0; }
    int handle() const { return handle_; }

  private:
    const int handle_;
};

}  // namespace veloxa
