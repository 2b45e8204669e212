#include "shot/image/Header.h"

#include <algorithm>
#include <iterator>

namespace veloxa {

Header::Header(int columns, int rows, int channels, OIIO::TypeDesc type)
    : width(columns),
      height(rows),
      full_width(columns),
      full_height(rows),
      nchannels(channels),
      format(type) {
    default_channel_names();
}

void Header::default_channel_names() {
    channelnames.clear();
    for (int n = 0; n < nchannels; ++n) channelnames.emplace_back(1, nchannels == 1 ? 'Y' : "RGBA"[n % 4]);
    alpha_channel = nchannels == 4 ? 3 : -1;
    z_channel = -1;
}

void Header::set_format(OIIO::TypeDesc type) {
    format = type;
    channelformats.clear();
}

std::string_view Header::channel_name(int channel) const {
    const auto n = static_cast<std::size_t>(channel);
    return n < channelnames.size() ? std::string_view(channelnames[n]) : std::string_view();
}

OIIO::TypeDesc Header::channelformat(int channel) const {
    const auto n = static_cast<std::size_t>(channel);
    return n < channelformats.size() ? channelformats[n] : format;
}

int Header::channelindex(std::string_view name) const {
    const auto found = std::ranges::find(channelnames, name);
    return found == channelnames.end() ? -1 : static_cast<int>(std::distance(channelnames.begin(), found));
}

std::size_t Header::pixel_bytes(int from, int to) const {
    std::size_t bytes = 0;
    for (int n = from; n < to; ++n) bytes += channelformat(n).size();
    return bytes;
}

const OIIO::ParamValue* Header::find_attribute(std::string_view name) const {
    const auto found = extra_attribs.find(name, OIIO::TypeUnknown, false);
    return found == extra_attribs.cend() ? nullptr : &*found;
}

std::string Header::get_string_attribute(std::string_view name, const std::string& otherwise) const {
    const OIIO::ParamValue* const found = find_attribute(name);
    return found ? found->get_string() : otherwise;
}

int Header::get_int_attribute(std::string_view name, int otherwise) const {
    const OIIO::ParamValue* const found = find_attribute(name);
    return found ? found->get_int(otherwise) : otherwise;
}

float Header::get_float_attribute(std::string_view name, float otherwise) const {
    const OIIO::ParamValue* const found = find_attribute(name);
    return found ? found->get_float(otherwise) : otherwise;
}

bool Header::getattribute(std::string_view name, OIIO::TypeDesc type, void* value) const {
    return extra_attribs.getattribute(name, type, value);
}

void Header::attribute(std::string_view name, OIIO::TypeDesc type, const void* value) {
    OIIO::ParamValue made(name, type, 1, value);
    const auto found = extra_attribs.find(name, OIIO::TypeUnknown, false);
    if (found == extra_attribs.end()) {
        extra_attribs.push_back(std::move(made));
    } else {
        *found = std::move(made);
    }
}

void Header::attribute(std::string_view name, int value) {
    attribute(name, OIIO::TypeInt, &value);
}

void Header::attribute(std::string_view name, float value) {
    attribute(name, OIIO::TypeFloat, &value);
}

void Header::attribute(std::string_view name, std::string_view value) {
    const OIIO::ustring text(value);
    attribute(name, OIIO::TypeString, &text);
}

void Header::erase_attribute(std::string_view name) {
    const auto found = extra_attribs.find(name, OIIO::TypeUnknown, false);
    if (found != extra_attribs.end()) extra_attribs.erase(found);
}

}  // namespace veloxa
