#include "shot/formats/Movies.h"

#include <filesystem>
#include <memory>
#include <string_view>

#include "shot/formats/Av.h"
#include "shot/movie/MovieFile.h"

namespace veloxa {

namespace {

// Of libav's formats those that are movies for certain: some others take any text, or stills.
constexpr const char* kMovies =
    "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi,mxf,mpeg,mpegts,mpegvideo,nut,yuv4mpegpipe,flv,ogg,asf,gxf,dv,"
    "ivf,rm,wtv,h264,hevc";

struct CloseMovie {
    void operator()(AVFormatContext* movie) const { avformat_close_input(&movie); }
};

// NAME.%06d.png for NAME.mov.
std::string stills_beside(const std::string& movie) {
    std::string name;
    for (const char c : std::filesystem::path(movie).replace_extension().string()) {
        name += c == '%' ? "%%" : std::string(1, c);
    }
    return name + ".%06d.png";
}

}  // namespace

std::string read_as_movie(const std::string& path, const std::string& input) {
    hush_av();
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", kMovies, 0);
    AVFormatContext* opened = nullptr;
    const int failed = avformat_open_input(&opened, ("file:" + path).c_str(), nullptr, &options);
    av_dict_free(&options);
    if (failed < 0) return {};
    const std::unique_ptr<AVFormatContext, CloseMovie> movie(opened);
    avformat_find_stream_info(opened, nullptr);
    const int best = av_find_best_stream(opened, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (best < 0) return {};
    const AVStream& pictures = *opened->streams[best];
    if ((pictures.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) return {};
    const auto* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pictures.codecpar->format));
    const bool alpha = format != nullptr && (format->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    return "is a movie; give its frames: " + frames_command(path, alpha) + " | veloxa key --" + input +
           " - ..., or make files of them: ffmpeg -v error -i " + quoted_for_shell(path) + " " +
           quoted_for_shell(stills_beside(path));
}

std::string written_as_movie(const std::string& path) {
    const AVOutputFormat* const format = av_guess_format(nullptr, path.c_str(), nullptr);
    if (format == nullptr || format->video_codec == AV_CODEC_ID_NONE) return {};
    if (std::string_view(format->name) == "image2") return {};
    return "is a movie; send it the frames: veloxa key ... -o - | ffmpeg -v error -f nut -i - " +
           quoted_for_shell(path);
}

}  // namespace veloxa
