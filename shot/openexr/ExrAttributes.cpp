#include "shot/openexr/ExrAttributes.h"

#include <OpenEXR/ImfBoxAttribute.h>
#include <OpenEXR/ImfChromaticitiesAttribute.h>
#include <OpenEXR/ImfDoubleAttribute.h>
#include <OpenEXR/ImfFloatAttribute.h>
#include <OpenEXR/ImfFloatVectorAttribute.h>
#include <OpenEXR/ImfIntAttribute.h>
#include <OpenEXR/ImfKeyCodeAttribute.h>
#include <OpenEXR/ImfMatrixAttribute.h>
#include <OpenEXR/ImfRationalAttribute.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <OpenEXR/ImfStringVectorAttribute.h>
#include <OpenEXR/ImfTimeCodeAttribute.h>
#include <OpenEXR/ImfVecAttribute.h>
#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstring>
#include <numeric>
#include <string_view>

#include "shot/openexr/ExrCompression.h"

namespace veloxa {

using OIIO::TypeDesc;
using OIIO::Strutil::iequals;

namespace {

struct Name {
    const char* exr;
    const char* common;
};
constexpr std::array kNames{
    Name{"worldToCamera", "worldtocamera"},
    Name{"worldToScreen", "worldtoscreen"},
    Name{"worldToNDC", "worldtoNDC"},
    Name{"capDate", "DateTime"},
    Name{"comments", "ImageDescription"},
    Name{"owner", "Copyright"},
    Name{"pixelAspectRatio", "PixelAspectRatio"},
    Name{"xDensity", "XResolution"},
    Name{"expTime", "ExposureTime"},
    Name{"aperture", "FNumber"},
    Name{"name", "oiio:subimagename"},
    Name{"dwaCompressionLevel", "openexr:dwaCompressionLevel"},
    Name{"timeCode", "smpte:TimeCode"},
    Name{"keyCode", "smpte:KeyCode"},
};

bool among(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

// Empty for what the header says elsewhere.
std::string common_name(const std::string& exr) {
    if (among(exr, {"channels", "compression", "dataWindow", "displayWindow", "envmap", "lineOrder", "tiles",
                    "type"})) {
        return {};
    }
    if (exr == "cameraTransform") return "worldToCamera";
    if (exr == "chunkCount" || exr == "maxSamplesPerPixel") return "openexr:" + exr;
    if (exr == "name" || exr.starts_with("worldTo")) return exr;
    const auto known = std::ranges::find(kNames, std::string_view(exr), &Name::exr);
    return known == kNames.end() ? exr : known->common;
}

// Empty for what is no attribute of such a file.
std::string exr_name(const std::string& common) {
    for (const Name& name : kNames) {
        if (iequals(common, name.common)) return name.exr;
    }
    if (iequals(common, "description")) return "comments";
    for (const char* elsewhere : {"YResolution", "planarconfig", "type", "tiles", "chunkCount", "lineOrder",
                                  "channels", "dataWindow", "displayWindow", "compression", "envmap"}) {
        if (iequals(common, elsewhere)) return {};
    }
    // What other formats know of their own files.
    constexpr std::array kFormats{"bmp",       "cineon", "dds",  "dicom", "dpx",   "ffmpeg", "fits",
                                  "gif",       "hdr",    "heif", "ico",   "iff",   "jpeg",   "jpeg2000",
                                  "openvdb",   "png",    "pnm",  "psd",   "raw",   "rla",    "sgi",
                                  "softimage", "targa",  "tiff", "webp",  "zfile", "oiio",   "ICCProfile"};
    const std::string prefix = common.substr(0, common.find(':'));
    if (prefix != common &&
        std::ranges::any_of(kFormats, [&](const char* format) { return iequals(prefix, format); })) {
        return {};
    }
    return common;
}

template <class Value>
const Value* value_in(const Imf::Attribute& attribute) {
    const auto* const typed = dynamic_cast<const Imf::TypedAttribute<Value>*>(&attribute);
    return typed ? &typed->value() : nullptr;
}

// Whether the attribute is of that type.
template <class Value>
bool take(const Imf::Attribute& attribute, const std::string& name, const TypeDesc& type, Header& to) {
    const Value* const value = value_in<Value>(attribute);
    if (value) to.attribute(name, type, value);
    return value != nullptr;
}

void take_rational(const Imf::Rational& value, const std::string& name, Header& to) {
    const unsigned common = std::gcd(value.n, value.d);
    const unsigned denominator = common > 1 && value.d > INT_MAX ? value.d / common : value.d;
    if (denominator > INT_MAX) return;
    const std::array fraction{denominator == value.d ? value.n : value.n / static_cast<int>(common),
                              static_cast<int>(denominator)};
    to.attribute(name, OIIO::TypeRational, fraction.data());
}

// Types that need more than a copy of their bytes; whether the attribute is of one of them.
bool take_other(const Imf::Attribute& attribute, const std::string& name, Header& to) {
    if (const auto* text = value_in<std::string>(attribute)) {
        to.attribute(name, *text);
    } else if (const auto* texts = value_in<Imf::StringVector>(attribute)) {
        const std::vector<OIIO::ustring> all(texts->begin(), texts->end());
        if (!all.empty())
            to.attribute(name, TypeDesc(TypeDesc::STRING, static_cast<int>(all.size())), all.data());
    } else if (const auto* floats = value_in<Imf::FloatVector>(attribute)) {
        if (!floats->empty()) {
            to.attribute(name, TypeDesc(TypeDesc::FLOAT, static_cast<int>(floats->size())), floats->data());
        }
    } else if (const auto* rational = value_in<Imf::Rational>(attribute)) {
        take_rational(*rational, name, to);
    } else if (const auto* time = value_in<Imf::TimeCode>(attribute)) {
        const std::array both{time->timeAndFlags(Imf::TimeCode::TV60_PACKING), time->userData()};
        to.attribute(name, OIIO::TypeTimeCode, both.data());
    } else if (const auto* key = value_in<Imf::KeyCode>(attribute)) {
        const std::array all{key->filmMfcCode(), key->filmType(),      key->prefix(),       key->count(),
                             key->perfOffset(),  key->perfsPerFrame(), key->perfsPerCount()};
        to.attribute(name, OIIO::TypeKeyCode, all.data());
    } else {
        return false;
    }
    return true;
}

void take_attribute(const Imf::Attribute& attribute, const std::string& name, Header& to) {
    const auto of = [](TypeDesc::BASETYPE base, TypeDesc::AGGREGATE aggregate,
                       TypeDesc::VECSEMANTICS meaning = TypeDesc::NOSEMANTICS,
                       int count = 0) { return TypeDesc(base, aggregate, meaning, count); };
    using T = TypeDesc;
    static_cast<void>(take<int>(attribute, name, OIIO::TypeInt, to) ||
                      take<float>(attribute, name, OIIO::TypeFloat, to) ||
                      take<double>(attribute, name, T::DOUBLE, to) || take_other(attribute, name, to) ||
                      take<Imath::V2i>(attribute, name, of(T::INT, T::VEC2), to) ||
                      take<Imath::V2f>(attribute, name, of(T::FLOAT, T::VEC2), to) ||
                      take<Imath::V2d>(attribute, name, of(T::DOUBLE, T::VEC2), to) ||
                      take<Imath::V3i>(attribute, name, of(T::INT, T::VEC3, T::VECTOR), to) ||
                      take<Imath::V3f>(attribute, name, OIIO::TypeVector, to) ||
                      take<Imath::V3d>(attribute, name, of(T::DOUBLE, T::VEC3, T::VECTOR), to) ||
                      take<Imath::M33f>(attribute, name, OIIO::TypeMatrix33, to) ||
                      take<Imath::M44f>(attribute, name, OIIO::TypeMatrix44, to) ||
                      take<Imath::M33d>(attribute, name, of(T::DOUBLE, T::MATRIX33), to) ||
                      take<Imath::M44d>(attribute, name, of(T::DOUBLE, T::MATRIX44), to) ||
                      take<Imath::Box2i>(attribute, name, of(T::INT, T::VEC2, T::NOSEMANTICS, 2), to) ||
                      take<Imath::Box2f>(attribute, name, of(T::FLOAT, T::VEC2, T::NOSEMANTICS, 2), to) ||
                      take<Imf::Chromaticities>(attribute, name, T(T::FLOAT, 8), to));
}

template <class Value>
void put(Imf::Header& to, const std::string& name, const OIIO::ParamValue& from) {
    Value value;
    std::memcpy(static_cast<void*>(&value), from.data(), sizeof value);
    to.insert(name, Imf::TypedAttribute<Value>(value));
}

void put_floats(Imf::Header& to, const std::string& name, const OIIO::ParamValue& from) {
    const TypeDesc& type = from.type();
    const auto* const values = static_cast<const float*>(from.data());
    const std::size_t count = type.basevalues();
    if (count == 4 && type.aggregate == TypeDesc::VEC2) return put<Imath::Box2f>(to, name, from);
    if (count == 8 && name == "chromaticities") return put<Imf::Chromaticities>(to, name, from);
    if (type == TypeDesc::FLOAT) return put<float>(to, name, from);
    if (count == 2) return put<Imath::V2f>(to, name, from);
    if (count == 3) return put<Imath::V3f>(to, name, from);
    if (count == 9) return put<Imath::M33f>(to, name, from);
    if (count == 16) return put<Imath::M44f>(to, name, from);
    to.insert(name, Imf::FloatVectorAttribute(Imf::FloatVector(values, values + count)));
}

void put_doubles(Imf::Header& to, const std::string& name, const OIIO::ParamValue& from) {
    const std::size_t count = from.type().basevalues();
    if (count == 1) put<double>(to, name, from);
    if (count == 2) put<Imath::V2d>(to, name, from);
    if (count == 3) put<Imath::V3d>(to, name, from);
    if (count == 9) put<Imath::M33d>(to, name, from);
    if (count == 16) put<Imath::M44d>(to, name, from);
}

void put_ints(Imf::Header& to, const std::string& name, const OIIO::ParamValue& from) {
    const TypeDesc& type = from.type();
    const auto* const v = static_cast<const int*>(from.data());
    const std::size_t count = type.basevalues();
    if (type == OIIO::TypeTimeCode) {
        const Imf::TimeCode time(std::bit_cast<unsigned>(v[0]), std::bit_cast<unsigned>(v[1]));
        to.insert(name, Imf::TimeCodeAttribute(time));
    } else if (type == OIIO::TypeKeyCode) {
        to.insert(name, Imf::KeyCodeAttribute(Imf::KeyCode(v[0], v[1], v[2], v[3], v[4], v[5], v[6])));
    } else if (type.vecsemantics == TypeDesc::RATIONAL && count == 2) {
        to.insert(name, Imf::RationalAttribute(Imf::Rational(v[0], std::bit_cast<unsigned>(v[1]))));
    } else if (count == 4 && type.aggregate == TypeDesc::VEC2) {
        put<Imath::Box2i>(to, name, from);
    } else if (count == 1) {
        put<int>(to, name, from);
    } else if (count == 2) {
        put<Imath::V2i>(to, name, from);
    } else if (count == 3) {
        put<Imath::V3i>(to, name, from);
    }
}

void put_attribute(Imf::Header& to, const std::string& name, const OIIO::ParamValue& from) {
    const TypeDesc& type = from.type();
    if (type == OIIO::TypeString) {
        to.insert(name, Imf::StringAttribute(from.get_ustring().string()));
        return;
    }
    switch (type.basetype) {
        case TypeDesc::FLOAT:
            return put_floats(to, name, from);
        case TypeDesc::DOUBLE:
            return put_doubles(to, name, from);
        case TypeDesc::INT:
        case TypeDesc::UINT:
            return put_ints(to, name, from);
        case TypeDesc::INT16:
        case TypeDesc::UINT16:
            if (type.basevalues() == 1) to.insert(name, Imf::IntAttribute(from.get_int()));
            return;
        case TypeDesc::HALF:
            if (type.basevalues() == 1) to.insert(name, Imf::FloatAttribute(from.get_float()));
            return;
        case TypeDesc::STRING: {
            Imf::StringVector texts;
            for (int n = 0; n < static_cast<int>(type.basevalues()); ++n) {
                texts.push_back(from.get_ustring_indexed(n).string());
            }
            to.insert(name, Imf::StringVectorAttribute(texts));
            return;
        }
        default:
            return;
    }
}

}  // namespace

void take_attributes(const Imf::Header& from, Header& to) {
    to.attribute("oiio:ColorSpace", "Linear");
    to.attribute("compression", exr_compression_name(from.compression()));
    for (auto one = from.begin(); one != from.end(); ++one) {
        const std::string name = common_name(one.name());
        if (!name.empty()) take_attribute(one.attribute(), name, to);
    }
    if (const float density = to.get_float_attribute("XResolution"); density != 0.0f) {
        const float aspect = to.get_float_attribute("PixelAspectRatio", 1.0f);
        to.attribute("YResolution", density * (aspect != 0.0f ? aspect : 1.0f));
        to.attribute("ResolutionUnit", "in");
    }
    if (from.hasName()) to.attribute("oiio:subimagename", from.name());
}

Imf::Header exr_header(const Header& from) {
    const auto window = [](int x, int y, int width, int height) {
        return Imath::Box2i({x, y}, {x + width - 1, y + height - 1});
    };
    Imf::Header to(window(from.full_x, from.full_y, from.full_width, from.full_height),
                   window(from.x, from.y, from.width, from.height));
    for (const OIIO::ParamValue& one : from.extra_attribs) {
        const std::string name = exr_name(one.name().string());
        try {
            if (!name.empty()) put_attribute(to, name, one);
        } catch (const std::exception&) {  // OpenEXR knows the name for something else
        }
    }
    return to;
}

}  // namespace veloxa
