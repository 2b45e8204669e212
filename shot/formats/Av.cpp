#include "shot/formats/Av.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

namespace veloxa {

namespace {

thread_local std::string logged;

void keep_error(void*, int level, const char* format, std::va_list arguments) {
    // That it looks for a place to go on at, libav tells only who debugs it.
    if (level > AV_LOG_ERROR && !std::string_view(format).starts_with("syncing from")) return;
    std::array<char, 256> line{};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    logged = line.data();
    while (!logged.empty() && (logged.back() == '\n' || logged.back() == '.')) logged.pop_back();
}

}  // namespace

void hush_av() {
    av_log_set_callback(keep_error);
}

std::string take_av_error() {
    return std::exchange(logged, {});
}

std::string av_message(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

}  // namespace veloxa
