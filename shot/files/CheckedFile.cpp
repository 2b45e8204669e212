#include "shot/files/CheckedFile.h"

#include <algorithm>
#include <cerrno>

#include "shot/files/SystemFault.h"

namespace veloxa {

CheckedFile::CheckedFile(const std::string& path)
    : IOProxy(path, Write), file_(std::fopen(path.c_str(), "wb")) {
    if (!file_) {
        note_failure();
        m_mode = Closed;
    }
}

CheckedFile::~CheckedFile() {
    close();
}

void CheckedFile::note_failure() {
    if (failure_ == 0) failure_ = errno;
}

void CheckedFile::check(const std::string& path) const {
    if (failure_ != 0) throw_fault(path, failure_);
}

void CheckedFile::close() {
    if (file_ && std::fclose(file_) != 0) note_failure();
    file_ = nullptr;
    m_mode = Closed;
}

bool CheckedFile::seek(int64_t offset) {
    if (!file_ || ::fseeko(file_, offset, SEEK_SET) != 0) {
        note_failure();
        return false;
    }
    m_pos = offset;
    return true;
}

size_t CheckedFile::write(const void* bytes, size_t size) {
    if (!file_ || size == 0) return 0;  // with no bytes their address may be null
    const size_t written = std::fwrite(bytes, 1, size, file_);
    if (written != size) note_failure();
    m_pos += static_cast<int64_t>(written);
    end_ = std::max(end_, m_pos);
    return written;
}

size_t CheckedFile::pwrite(const void* bytes, size_t size, int64_t offset) {
    const int64_t here = m_pos;
    const size_t written = seek(offset) ? write(bytes, size) : 0;
    seek(here);
    return written;
}

}  // namespace veloxa
