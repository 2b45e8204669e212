#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "shot/Errors.h"
#include "shot/files/FileRows.h"
#include "shot/formats/Av.h"
#include "shot/formats/Movies.h"
#include "shot/formats/PipeIo.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct FreeOutput {
    void operator()(AVFormatContext* output) const { avformat_free_context(output); }
};

void set_tags(AVDictionary*& dictionary, const StreamInfo::Tags& tags) {
    for (const auto& [name, value] : tags) av_dict_set(&dictionary, name.c_str(), value.c_str(), 0);
}

AVPixelFormat format_of(std::size_t channels, bool bytes) {
    if (channels == 1) return bytes ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_GRAY16;
    if (channels == 3) return bytes ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_RGB48;
    return bytes ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGBA64;
}

class StreamEncoder final : public StreamWriter::Encoder {
  public:
    StreamEncoder(int file, std::string name, StreamInfo info, const WriteOptions& options)
        : name_(std::move(name)),
          info_(std::move(info)),
          options_(options),
          io_(file, PipeIo::Way::kWrite, options.abort) {
        hush_av();
        if (!packet_) throw std::bad_alloc();
    }

    void write(const Image& image, const FrameTime& time) override;
    void finish() override;
    void stop() override { io_.stop(); }

  private:
    void begin(const Image& image, const FileRows& rows);
    void fill(const FileRows& rows);
    void check(int result);
    bool bytes() const { return options_.depth == Depth::UINT8; }

    const std::string name_;
    const StreamInfo info_;
    const WriteOptions options_;
    PipeIo io_;  // outlives the one below
    std::unique_ptr<AVFormatContext, FreeOutput> output_;
    AVStream* stream_ = nullptr;
    bool begun_ = false;
    AvOwned<AVPacket> packet_{av_packet_alloc()};
    Box box_;
};

void StreamEncoder::check(int result) {
    if (result >= 0) result = io_.failure();
    if (result >= 0) return;
    if (io_.failure() == AVERROR_EXIT) throw Interrupted();
    if (result == AVERROR(EPIPE)) throw Error(name_, "nobody reads it any more");
    const std::string error = take_av_error();
    throw Error(name_, "cannot be written: " + (error.empty() ? av_message(result) : error));
}

void StreamEncoder::begin(const Image& image, const FileRows& rows) {
    AVFormatContext* output = nullptr;
    check(avformat_alloc_output_context2(&output, nullptr, "nut", nullptr));
    output_.reset(output);
    stream_ = avformat_new_stream(output, nullptr);
    if (stream_ == nullptr) throw std::bad_alloc();
    box_ = image.info.format.box;
    const AVPixelFormat format = format_of(rows.channels().size(), bytes());
    AVCodecParameters& with = *stream_->codecpar;
    with.codec_type = AVMEDIA_TYPE_VIDEO;
    with.codec_id = AV_CODEC_ID_RAWVIDEO;
    with.codec_tag = avcodec_pix_fmt_to_codec_tag(format);
    with.format = format;
    with.width = box_.width();
    with.height = box_.height();
    constexpr int kLargestTerm = 1000;
    with.sample_aspect_ratio = stream_->sample_aspect_ratio =
        av_d2q(static_cast<double>(image.info.format.pixel_aspect), kLargestTerm);
    stream_->time_base = rational(info_.time_base);
    stream_->avg_frame_rate = stream_->r_frame_rate = rational(info_.frame_rate);
    set_tags(stream_->metadata, info_.video_tags);
    set_tags(output->metadata, info_.tags);
    output->pb = io_.context();
    output->flush_packets = 1;  // who reads should not wait for the next frame
    check(avformat_write_header(output, nullptr));
    begun_ = true;
}

void StreamEncoder::fill(const FileRows& rows) {
    const std::size_t row_bytes = rows.pitch() * (bytes() ? sizeof(std::uint8_t) : sizeof(std::uint16_t));
    const std::size_t size = row_bytes * static_cast<std::size_t>(rows.height());
    if (size > INT_MAX / 2) throw Error(name_, "cannot hold frames as large as " + size_text(box_));
    if (av_new_packet(packet_.get(), static_cast<int>(size)) < 0) throw std::bad_alloc();
    with_sample_of(bytes() ? OIIO::TypeUInt8 : OIIO::TypeUInt16, [&]<class Sample>(Sample) {
        std::vector<Sample> row(rows.pitch());
        std::vector<Sample> samples(rows.width());
        for (int n = 0; n < rows.height(); ++n) {
            rows.fill(n, row.data(), samples.data());
            std::memcpy(packet_->data + row_bytes * static_cast<std::size_t>(n), row.data(), row_bytes);
        }
    });
}

void StreamEncoder::write(const Image& image, const FrameTime& time) {
    give_up_if_raised(options_.abort);
    const FileRows rows(image, options_.alpha);
    if (!begun_) begin(image, rows);
    if (image.info.format.box != box_) {
        throw Error(name_,
                    "a frame is " + size_text(image.info.format.box) + ", the first was " + size_text(box_));
    }
    fill(rows);
    const AVRational base = rational(info_.time_base);
    packet_->pts = packet_->dts = av_rescale_q(time.start, base, stream_->time_base);
    packet_->duration = av_rescale_q(time.duration, base, stream_->time_base);
    packet_->flags |= AV_PKT_FLAG_KEY;
    packet_->stream_index = stream_->index;
    const int result = av_write_frame(output_.get(), packet_.get());
    av_packet_unref(packet_.get());
    check(result);
}

void StreamEncoder::finish() {
    if (!begun_) return;
    check(av_write_trailer(output_.get()));
    avio_flush(io_.context());
    check(0);
}

}  // namespace

std::unique_ptr<StreamWriter::Encoder> make_encoder(int file, std::string name, StreamInfo info,
                                                    const WriteOptions& options) {
    return std::make_unique<StreamEncoder>(file, std::move(name), std::move(info), options);
}

}  // namespace veloxa
