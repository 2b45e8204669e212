// What a file says of a picture beside its samples: windows, channels, how it is stored, and attributes by
// name.
//
// Names of attributes and what they mean are OpenImageIO's, whatever the format: "PixelAspectRatio",
// "Copyright", "smpte:TimeCode", "compression"; what begins with "oiio:" is about the file and not in it.
// Case does not tell names apart. Rows and columns are counted from an origin that both windows share,
// downwards and to the right.
#pragma once

#include <OpenImageIO/paramlist.h>
#include <OpenImageIO/typedesc.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace veloxa {

struct Header {
    Header() = default;
    // Both windows start at 0, 0; channels get their usual names.
    Header(int columns, int rows, int channels, OIIO::TypeDesc type);

    int x = 0, y = 0, width = 0, height = 0;                      // data window
    int full_x = 0, full_y = 0, full_width = 0, full_height = 0;  // display window
    int tile_width = 0, tile_height = 0;                          // 0 for rows
    int nchannels = 0;
    OIIO::TypeDesc format;                         // of the samples, or the widest of the channels'
    std::vector<OIIO::TypeDesc> channelformats{};  // empty where all have that of the samples
    std::vector<std::string> channelnames{};
    int alpha_channel = -1, z_channel = -1;  // -1 for none
    bool deep = false;
    OIIO::ParamValueList extra_attribs{};

    // Y for one channel, else R, G, B and A.
    void default_channel_names();
    // All samples are of this type.
    void set_format(OIIO::TypeDesc type);
    // Empty for a channel that is not there.
    std::string_view channel_name(int channel) const;
    OIIO::TypeDesc channelformat(int channel) const;
    // -1 for none of that name.
    int channelindex(std::string_view name) const;
    // As stored; of all channels, or from one up to and without another.
    std::size_t pixel_bytes() const { return pixel_bytes(0, nchannels); }
    std::size_t pixel_bytes(int from, int to) const;

    // Null for none.
    const OIIO::ParamValue* find_attribute(std::string_view name) const;
    std::string get_string_attribute(std::string_view name, const std::string& otherwise = {}) const;
    int get_int_attribute(std::string_view name, int otherwise = 0) const;
    float get_float_attribute(std::string_view name, float otherwise = 0.0f) const;
    // False where there is none, or none that can be taken for that type.
    bool getattribute(std::string_view name, OIIO::TypeDesc type, void* value) const;
    // Takes the place of one of that name.
    void attribute(std::string_view name, OIIO::TypeDesc type, const void* value);
    void attribute(std::string_view name, int value);
    void attribute(std::string_view name, float value);
    void attribute(std::string_view name, std::string_view value);
    void erase_attribute(std::string_view name);
};

}  // namespace veloxa
