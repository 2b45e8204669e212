// Writes a stream of frames to a pipe: NUT with raw video, which
//   ffmpeg -f nut -i - out.mov
// takes.
//
// Samples are those that a file of the same depth would hold: clamped and rounded to nearest, NaN 0. Pixels
// are rgb24, rgba, rgb48 or rgba64, of an image of alpha alone gray or gray16; each frame is its display
// window, black where there are no pixels.
#pragma once

#include <memory>
#include <string>

#include "ZoImage/Render.h"
#include "shot/files/ImageFile.h"
#include "shot/image/Image.h"
#include "shot/movie/Stream.h"

namespace veloxa {

// Throws Error, NAME: what is wrong, where no stream can be as the options ask: of another depth than uint8
// and uint16, which is what unknown stands for, or compressed.
void check_stream(const std::string& name, const WriteOptions& options);

// One thread at a time, but for stop(). Whoever closes the other end of the pipe sends SIGPIPE, which the
// caller ignores.
class StreamWriter {
  public:
    // What does it, in the module that brings libav.
    class Encoder {
      public:
        virtual ~Encoder() = default;
        virtual void write(const Image& image, const FrameTime& time) = 0;
        virtual void finish() = 0;
        virtual void stop() = 0;
    };

    // To the file descriptor, which stays the caller's; `name` is what messages call the stream. Frame rate,
    // times' unit and tags are those of `info`. Throws as check_stream does.
    StreamWriter(int file, std::string name, StreamInfo info, const WriteOptions& options);

    // The next frame, which starts after the last. Pixels' aspect, size and channels are those of the first.
    // Throws Error when the frame is of another size or the stream cannot be written any more, and
    // Interrupted when the flag is raised, also while waiting for the other side.
    void write(const Image& image, const FrameTime& time) { encoder_->write(image, time); }
    // Ends the stream, after its frames. Throws likewise.
    void finish() { encoder_->finish(); }
    // Has the others throw Interrupted, now and later; any thread.
    void stop() { encoder_->stop(); }

  private:
    std::unique_ptr<Encoder> encoder_;
};

}  // namespace veloxa
