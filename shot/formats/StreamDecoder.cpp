#include <array>
#include <new>
#include <utility>
#include <vector>

#include "ZoImage/Samples.h"
#include "shot/Errors.h"
#include "shot/formats/Av.h"
#include "shot/formats/Movies.h"
#include "shot/formats/PipeIo.h"
#include "shot/movie/MovieFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr std::string_view kSignature("nut/multimedia container\0", 25);
constexpr int kLargestSide = 1 << 20;

struct CloseInput {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};

StreamInfo::Tags tags_of(const AVDictionary* from) {
    StreamInfo::Tags tags;
    const AVDictionaryEntry* one = nullptr;
    while ((one = av_dict_get(from, "", one, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        // Whoever writes the next stream names himself.
        if (std::string_view(one->key) != "encoder") tags.emplace_back(one->key, one->value);
    }
    return tags;
}

bool is_gray(const AVPixFmtDescriptor& format) {
    return format.nb_components < 3;
}

bool is_keyable(const AVPixFmtDescriptor& format) {
    constexpr std::uint64_t kOthers = AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT |
                                      AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BITSTREAM;
    if ((format.flags & kOthers) != 0) return false;
    return is_gray(format) || (format.flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

// What every sample of so many bits stands for: a frame is the same from a stream and from a file.
std::vector<float> values_of(int bits) {
    std::vector<float> values(std::size_t{1} << bits);
    const auto most = static_cast<double>(values.size() - 1);
    for (std::size_t n = 0; n < values.size(); ++n) {
        values[n] = bits == 8    ? to_float(static_cast<std::uint8_t>(n))
                    : bits == 16 ? to_float(static_cast<std::uint16_t>(n))
                                 : static_cast<float>(static_cast<double>(n) / most);
    }
    return values;
}

class StreamDecoder final : public StreamReader::Decoder {
  public:
    StreamDecoder(int file, std::string name, int first, const AbortFlag* abort)
        : name_(std::move(name)), next_(first), abort_(abort), io_(file, PipeIo::Way::kRead, abort) {
        hush_av();
        check_head();
        open();
        find_pictures();
        open_codec();
        describe();
    }

    std::optional<StreamFrame> read() override;
    void stop() override { io_.stop(); }

  private:
    void check_head();
    void open();
    void find_pictures();
    void open_codec();
    void describe();
    void check_sync();
    bool read_packet();
    Image image_of(const AVFrame& frame) const;
    FrameTime time_of_packet();
    [[noreturn]] void fail(const std::string& what) { throw Error(name_, what); }
    [[noreturn]] void fail_frame(const std::string& what) {
        fail("frame " + std::to_string(next_) + ": " + what);
    }
    void give_up_if_stopped() const {
        if (io_.failure() == AVERROR_EXIT) throw Interrupted();
    }

    const std::string name_;
    int next_;  // frame's number
    const AbortFlag* const abort_;
    PipeIo io_;  // outlives the two below
    std::unique_ptr<AVFormatContext, CloseInput> input_;
    AVStream* stream_ = nullptr;
    AvOwned<AVCodecContext> codec_;
    AvOwned<AVPacket> packet_{av_packet_alloc()};
    AvOwned<AVFrame> frame_{av_frame_alloc()};
    const AVPixFmtDescriptor* format_ = nullptr;
    std::array<std::vector<float>, 17> values_;  // by bits
    Header header_;
    Info shape_;
    int frame_bytes_ = 0;
    std::int64_t expected_start_ = 0;
};

void StreamDecoder::check_head() {
    const std::string_view head = io_.head();
    give_up_if_raised(abort_);
    if (io_.failure() != 0) fail("cannot be read: " + av_message(io_.failure()));
    if (head.empty())
        fail("is empty; it should be a stream of frames, as " + frames_command("in.mov") + " makes it");
    if (head.starts_with(kSignature)) return;
    fail("is no NUT stream of frames; one is made by " + frames_command("in.mov"));
}

void StreamDecoder::open() {
    AVFormatContext* input = avformat_alloc_context();
    if (input == nullptr) throw std::bad_alloc();
    input->pb = io_.context();
    const int failed = avformat_open_input(&input, nullptr, av_find_input_format("nut"), nullptr);
    if (failed < 0) {  // and the context is freed
        give_up_if_stopped();
        fail("the stream's header is damaged or cut off");
    }
    input_.reset(input);
}

void StreamDecoder::find_pictures() {
    for (unsigned n = 0; n < input_->nb_streams; ++n) {
        AVStream* const one = input_->streams[n];
        if (stream_ == nullptr && one->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
            stream_ = one;
        } else {
            one->discard = AVDISCARD_ALL;
            others = true;
        }
    }
    if (stream_ == nullptr) fail("the stream holds no pictures");
    const AVCodecParameters& with = *stream_->codecpar;
    if (with.codec_id != AV_CODEC_ID_RAWVIDEO) {
        fail(std::string("the stream holds ") + avcodec_get_name(with.codec_id) +
             " and not raw video; add -c:v rawvideo -pix_fmt rgb48le to ffmpeg's options");
    }
    if (with.width <= 0 || with.height <= 0 || with.width > kLargestSide || with.height > kLargestSide) {
        fail("the stream's frames have an impossible size");
    }
}

void StreamDecoder::open_codec() {
    const AVCodec* const raw = avcodec_find_decoder(AV_CODEC_ID_RAWVIDEO);
    codec_.reset(avcodec_alloc_context3(raw));
    if (!codec_ || !packet_ || !frame_) throw std::bad_alloc();
    if (avcodec_parameters_to_context(codec_.get(), stream_->codecpar) < 0 ||
        avcodec_open2(codec_.get(), raw, nullptr) < 0) {
        fail("the stream's pixel format is not known");
    }
    format_ = av_pix_fmt_desc_get(codec_->pix_fmt);
    if (format_ == nullptr) fail("the stream's pixel format is not known");
    if (!is_keyable(*format_)) {
        const bool alpha = (format_->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
        fail(std::string("the stream's pixels are ") + format_->name + ", which is no RGB; add -pix_fmt " +
             (alpha ? "rgba64le" : "rgb48le") + " to ffmpeg's options");
    }
    frame_bytes_ = av_image_get_buffer_size(codec_->pix_fmt, codec_->width, codec_->height, 1);
    if (frame_bytes_ <= 0) fail("the stream's frames have an impossible size");
    for (int c = 0; c < format_->nb_components; ++c) {
        const int bits = format_->comp[c].depth;
        std::vector<float>& values = values_.at(static_cast<std::size_t>(bits));
        if (values.empty()) values = values_of(bits);
    }
}

void StreamDecoder::describe() {
    info.time_base = ratio(stream_->time_base);
    const AVRational rate = stream_->r_frame_rate.num > 0 ? stream_->r_frame_rate : stream_->avg_frame_rate;
    if (rate.num > 0 && rate.den > 0) info.frame_rate = ratio(rate);
    info.video_tags = tags_of(stream_->metadata);
    info.tags = tags_of(input_->metadata);

    const bool alpha = (format_->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    AVRational aspect = stream_->sample_aspect_ratio;
    if (aspect.num <= 0) aspect = stream_->codecpar->sample_aspect_ratio;
    header_ = Header(codec_->width, codec_->height, (is_gray(*format_) ? 1 : 3) + (alpha ? 1 : 0),
                     format_->comp[0].depth > 8 ? OIIO::TypeUInt16 : OIIO::TypeUInt8);
    if (is_gray(*format_)) {
        header_.channelnames = alpha ? std::vector<std::string>{"Y", "A"} : std::vector<std::string>{"Y"};
        header_.alpha_channel = alpha ? 1 : -1;
    }
    if (info.frame_rate.num > 0) {
        const std::array<int, 2> fraction{info.frame_rate.num, info.frame_rate.den};
        header_.attribute("FramesPerSecond", OIIO::TypeRational, fraction.data());
    }
    shape_.box = shape_.format.box = {0, 0, codec_->width, codec_->height};
    if (aspect.num > 0 && aspect.den > 0) {
        shape_.format.pixel_aspect = static_cast<float>(av_q2d(aspect));
        header_.attribute("PixelAspectRatio", static_cast<float>(av_q2d(aspect)));
    }
    shape_.channels = kMaskRgb;
    if (alpha) shape_.channels += kAlpha;
}

// The library goes on at the next place that it makes sense of, and passes over what lies between.
void StreamDecoder::check_sync() {
    const std::string error = take_av_error();
    if (!error.empty()) fail_frame("is damaged: " + error);
}

// Reads the next packet of the pictures; false at the end of the stream.
bool StreamDecoder::read_packet() {
    take_av_error();
    do {
        av_packet_unref(packet_.get());
        const int failed = av_read_frame(input_.get(), packet_.get());
        give_up_if_stopped();
        if (failed == AVERROR_EOF && io_.failure() == 0) {
            check_sync();
            return false;
        }
        if (failed < 0) fail_frame(io_.at_end() ? "is cut off" : "cannot be read: " + av_message(failed));
    } while (packet_->stream_index != stream_->index);
    if (packet_->size < frame_bytes_ && io_.at_end()) fail_frame("is cut off");
    if (packet_->size != frame_bytes_) {
        // ffmpeg names a format that NUT has no name for as some other.
        fail_frame("is no " + std::string(format_->name) + ", as the stream says; add -pix_fmt rgb48le to " +
                   "ffmpeg's options, or rgba64le where there is an alpha");
    }
    check_sync();
    return true;
}

FrameTime StreamDecoder::time_of_packet() {
    FrameTime time{packet_->pts, packet_->duration};
    if (time.duration <= 0 && info.frame_rate.num > 0) {
        time.duration = av_rescale_q(1, av_inv_q(rational(info.frame_rate)), stream_->time_base);
    }
    time.duration = std::max<std::int64_t>(time.duration, 1);
    if (time.start == AV_NOPTS_VALUE || time.start < expected_start_) time.start = expected_start_;
    expected_start_ = time.start + 1;
    return time;
}

Image StreamDecoder::image_of(const AVFrame& frame) const {
    Info own = shape_;
    if (is_gray(*format_)) own.channels -= kMaskRgb;
    Image image(own);
    image.info = shape_;
    image.header = header_;
    if (is_gray(*format_)) {
        image.planes[0] = image.planes[1] = image.planes[2] = make_plane(image.width() * image.height());
    }
    const std::array<const std::uint8_t*, 4> data{frame.data[0], frame.data[1], frame.data[2], frame.data[3]};
    std::vector<std::uint16_t> samples(image.width());
    for (int n = 0; n < format_->nb_components; ++n) {
        const Channel c = is_gray(*format_) && n == 1 ? kAlpha : static_cast<Channel>(kRed + n);
        const std::vector<float>& values = values_[static_cast<std::size_t>(format_->comp[n].depth)];
        for (int row = 0; row < frame.height; ++row) {
            if (row % 64 == 0) give_up_if_raised(abort_);
            av_read_image_line2(samples.data(), const_cast<const std::uint8_t**>(data.data()), frame.linesize,
                                format_, 0, row, n, frame.width, 0, sizeof(std::uint16_t));
            float* const line = image.line(c, frame.height - 1 - row);
            for (std::size_t x = 0; x < samples.size(); ++x) line[x] = values[samples[x]];
        }
    }
    return image;
}

std::optional<StreamFrame> StreamDecoder::read() {
    if (!read_packet()) return std::nullopt;
    if (avcodec_send_packet(codec_.get(), packet_.get()) < 0 ||
        avcodec_receive_frame(codec_.get(), frame_.get()) < 0) {
        fail_frame("is damaged");
    }
    StreamFrame result{next_, image_of(*frame_), time_of_packet()};
    av_frame_unref(frame_.get());
    ++next_;
    return result;
}

}  // namespace

std::unique_ptr<StreamReader::Decoder> make_decoder(int file, std::string name, int first,
                                                    const AbortFlag* abort) {
    return std::make_unique<StreamDecoder>(file, std::move(name), first, abort);
}

}  // namespace veloxa
