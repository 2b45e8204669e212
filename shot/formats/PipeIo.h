// Bytes of a pipe or a file for libav, without blocking for good: a raised flag ends every wait.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ZoImage/Render.h"
#include "shot/formats/Av.h"

namespace veloxa {

// One thread, but for stop().
class PipeIo {
  public:
    enum class Way { kRead, kWrite };

    // The file descriptor stays the caller's.
    PipeIo(int file, Way way, const Zo::Image::AbortFlag* abort);
    PipeIo(const PipeIo&) = delete;
    PipeIo& operator=(const PipeIo&) = delete;

    AVIOContext* context() { return context_.get(); }
    // Up to 4096 bytes that are read first, and read again by the context; fewer at the end of the file.
    std::string_view head();
    // Why the last call failed; 0 or an AVERROR.
    int failure() const { return failure_; }
    bool at_end() const { return at_end_; }
    // Ends what waits for the other side, now and later; any thread.
    void stop() { stopped_ = true; }

  private:
    static constexpr std::size_t kHead = 4096;

    int take(std::uint8_t* bytes, std::size_t most);
    int give(const std::uint8_t* bytes, std::size_t size);
    int wait(short events);

    const int file_;
    const Zo::Image::AbortFlag* const abort_;
    std::size_t largest_write_;
    std::atomic<bool> stopped_{false};
    int failure_ = 0;
    bool at_end_ = false;
    std::array<std::uint8_t, kHead> head_{};
    std::size_t head_size_ = 0;
    std::size_t head_taken_ = 0;
    AvOwned<AVIOContext> context_;
};

}  // namespace veloxa
