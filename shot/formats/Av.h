// Ownership and errors of libav's objects.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <memory>
#include <string>

#include "shot/movie/Stream.h"

namespace veloxa {

struct AvDelete {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);  // libav may have put another in the place of the first
        avio_context_free(&io);
    }
};
template <class T>
using AvOwned = std::unique_ptr<T, AvDelete>;

// From now on nothing that libav has to say is printed.
void hush_av();
// The last error that libav logged in this thread since the last call; empty without one.
std::string take_av_error();
// What an error number means.
std::string av_message(int error);

inline AVRational rational(const Ratio& ratio) {
    return {ratio.num, ratio.den};
}
inline Ratio ratio(const AVRational& rational) {
    return {rational.num, rational.den};
}

}  // namespace veloxa
