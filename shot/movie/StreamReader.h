// Reads a stream of frames from a pipe: NUT with raw video, as
//   ffmpeg -i in.mov -f nut -c:v rawvideo -pix_fmt rgba64le -
// writes it.
//
// Pixel formats: red, green and blue or grey, with or without alpha, of whole numbers, in every order, depth
// and byte order that NUT has a name for; 0 and the largest number become 0 and 1, no colour is converted and
// no alpha multiplied. A grey frame has one plane for red, green and blue. NUT holds no floats.
//
// The image's header says size, channels, sample type (uint8 or uint16), FramesPerSecond and
// PixelAspectRatio. NUT says nothing of colour: no primaries, transfer curve, matrix or range.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ZoImage/Render.h"
#include "shot/image/Image.h"
#include "shot/movie/Stream.h"

namespace veloxa {

struct StreamFrame {
    int number = 0;
    Image image;
    FrameTime time;
};

// One thread at a time, but for stop().
class StreamReader {
  public:
    // What does it, in the module that brings libav.
    class Decoder {
      public:
        virtual ~Decoder() = default;
        virtual std::optional<StreamFrame> read() = 0;
        virtual void stop() = 0;
        StreamInfo info;
        bool others = false;
    };

    // Reads the stream's header from the file descriptor, which stays the caller's. Frames are numbered from
    // `first`; `name` is what messages call the stream. Throws Error, NAME: what is wrong, with what to ask
    // of ffmpeg where that would help, and Interrupted when the flag is raised, also while waiting for bytes.
    StreamReader(int file, std::string name, int first, const Zo::Image::AbortFlag* abort);

    const StreamInfo& info() const { return decoder_->info; }
    // Whether the stream holds more than these pictures, such as sound, which is passed over.
    bool holds_others() const { return decoder_->others; }
    // The next frame; nothing at the end. Throws Error, NAME: frame N: what is wrong, after which there is
    // nothing more to read, and Interrupted.
    std::optional<StreamFrame> read() { return decoder_->read(); }
    // Has read() throw Interrupted, now and later; any thread.
    void stop() { decoder_->stop(); }

  private:
    const std::unique_ptr<Decoder> decoder_;
};

}  // namespace veloxa
