#include "shot/formats/PipeIo.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <new>

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr int kBuffer = 1 << 16;
constexpr int kLookEvery = 50;  // milliseconds, at the flag

}  // namespace

PipeIo::PipeIo(int file, Way way, const AbortFlag* abort) : file_(file), abort_(abort) {
    struct stat status {};
    const bool pipe = ::fstat(file, &status) == 0 && !S_ISREG(status.st_mode);
    // A pipe that poll calls writable has room for this much; more may block.
    largest_write_ = pipe ? PIPE_BUF : std::size_t{1} << 20;
    auto* const buffer = static_cast<unsigned char*>(av_malloc(kBuffer));
    if (buffer == nullptr) throw std::bad_alloc();
    const auto read = [](void* self, std::uint8_t* bytes, int most) {
        return static_cast<PipeIo*>(self)->take(bytes, static_cast<std::size_t>(most));
    };
    const auto write = [](void* self, std::uint8_t* bytes, int size) {
        return static_cast<PipeIo*>(self)->give(bytes, static_cast<std::size_t>(size));
    };
    const bool writes = way == Way::kWrite;
    context_.reset(avio_alloc_context(
        buffer, kBuffer, writes ? 1 : 0, this,
        writes ? nullptr : static_cast<int (*)(void*, std::uint8_t*, int)>(read),
        writes ? static_cast<int (*)(void*, std::uint8_t*, int)>(write) : nullptr, nullptr));
    if (!context_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    context_->seekable = 0;
}

int PipeIo::wait(short events) {
    for (;;) {
        if (stopped_ || (abort_ && abort_->raised())) return failure_ = AVERROR_EXIT;
        struct pollfd one {
            file_, events, 0
        };
        const int ready = ::poll(&one, 1, kLookEvery);
        if (ready > 0) return 0;
        if (ready < 0 && errno != EINTR) return failure_ = AVERROR(errno);
    }
}

int PipeIo::take(std::uint8_t* bytes, std::size_t most) {
    if (head_taken_ < head_size_) {
        const std::size_t count = std::min(most, head_size_ - head_taken_);
        std::copy_n(head_.begin() + static_cast<std::ptrdiff_t>(head_taken_), count, bytes);
        head_taken_ += count;
        return static_cast<int>(count);
    }
    for (;;) {
        if (const int failed = wait(POLLIN); failed != 0) return failed;
        const ssize_t count = ::read(file_, bytes, most);
        if (count > 0) return static_cast<int>(count);
        if (count == 0) {
            at_end_ = true;
            return AVERROR_EOF;
        }
        if (errno != EINTR && errno != EAGAIN) return failure_ = AVERROR(errno);
    }
}

std::string_view PipeIo::head() {
    while (head_size_ < kHead && head_taken_ == 0) {
        head_taken_ = head_size_;  // so that take() goes to the file
        const int count = take(head_.data() + head_size_, kHead - head_size_);
        head_taken_ = 0;
        if (count <= 0) break;
        head_size_ += static_cast<std::size_t>(count);
    }
    return {reinterpret_cast<const char*>(head_.data()), head_size_};
}

int PipeIo::give(const std::uint8_t* bytes, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        if (const int failed = wait(POLLOUT); failed != 0) return failed;
        const ssize_t count = ::write(file_, bytes + done, std::min(size - done, largest_write_));
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR && errno != EAGAIN) {
            return failure_ = AVERROR(errno);
        }
    }
    return static_cast<int>(size);
}

}  // namespace veloxa
