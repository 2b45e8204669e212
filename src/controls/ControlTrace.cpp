#include "controls/ControlTrace.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace {

struct TraceLine {
    const char* command;
    std::array<int, 3> controls;  // kNone where it takes fewer values
};

constexpr int kNone = -1;

constexpr TraceLine one(const char* command, int control) {
    return {command, {control, kNone, kNone}};
}

constexpr TraceLine three(const char* command, int a, int b, int c) {
    return {command, {a, b, c}};
}

// The commands in their order. Several print different controls of one name, and some go by another name than
// their control.
constexpr std::array kLines{
    one("setPixMax", 179),
    one("setOutBuff", 160),
    three("setMonoRotoGloss", 25, 27, 42),
    three("setMonoRotoDensity", 26, 28, 44),
    one("setClear", 89),
    one("setSubject", 88),
    three("setTolerance", 37, 38, 39),
    one("setOuterShrink", 40),
    one("setOuterBlackGloss", 30),
    one("setOuterBlackGloss2", 32),
    one("setIslands", 232),
    one("setOuterMatteDensity", 29),
    one("setOuterMatteDensity2", 31),
    one("setOverlayAlpha", 159),
    one("setOuterKernelWidth", 35),
    one("setOuterKernelHeight", 36),
    one("setInnerCoolDensity", 6),
    one("setInnerWarmDensity", 7),
    one("setInnerKernelHeight", 9),
    one("setCompressionCorrection", 92),
    one("setCompressionType", 125),
    one("setWhichSample", 139),
    one("setProgressiveInterlaced", 142),
    one("setYCrCbVal", 132),
    one("setPell", 124),
    one("setCtri", 126),
    one("setCtwo", 127),
    one("setCone", 128),
    one("setMinimumYCrCb", 133),
    one("setCrCbTolerance", 134),
    one("setOffsetX", 140),
    one("setOffsetY", 141),
    one("setSepLevel", 145),
    one("setBlueGreen", 186),
    one("setPellPlus", 146),
    three("setByteC1", 147, 148, 149),
    three("setByteC2", 183, 184, 185),
    one("setRedCorrect", 91),
    one("setTransparency", 34),
    three("setCorrection", 13, 12, 11),
    one("setFCStrength", 10),
    one("setInnerShrink", 8),
    one("setInnerMatteDensity", 4),
    one("setInnerBlackGloss", 5),
    one("setClassicMatteDensity", 72),
    one("setClassicBlackGloss", 73),
    one("setClassicShrink", 104),
    one("setClassicBlur", 108),
    one("setClassicWarmDensity", 74),
    one("setClassicCoolDensity", 78),
    one("setControlsValid", 195),
    one("setMpfg", 95),
    one("setClearFrame", 94),
    one("setInterp", 93),
    one("setScreenCorrect", 123),
    one("setInterlaced", 121),
    one("setCleanPlate", 122),
    one("setBGImageLoaded", 188),
    one("setColorIndex", 120),
    three("setBackingColor", 75, 76, 77),
    one("setMatteDensity", 79),
    one("setBlackGloss", 80),
    one("setKernelRadius", 85),
    one("setWarmDensity", 82),
    one("setCoolDensity", 81),
    one("setDerivativeThreshold", 114),
    one("setKernelHeight", 86),
    one("setInterpolSize", 53),
    three("setMonoGloss", 46, 48, 51),
    three("setMonoDensity", 47, 50, 52),
    one("setFlare", 96),
    one("setGate1", 106),
    one("setGate2", 107),
    one("setGrayBalance", 110),
    one("setWhiteBalance", 111),
    one("setBlackBalance", 105),
    three("setReflected", 115, 116, 117),
    one("setFlareStrength", 118),
    three("setVeiling", 173, 174, 175),
    one("setFlareAlt", 119),
    one("setClassicGate1", 49),
    one("setClassicGate2", 54),
    one("setClassicGrayBalance", 59),
    one("setClassicWhiteBalance", 61),
    one("setClassicBlackBalance", 64),
    three("setClassicReflected", 83, 84, 90),
    three("setClassicVeiling", 100, 101, 102),
    one("setColorConform", 97),
    three("setBlack", 202, 207, 212),
    three("setGamma", 204, 209, 214),
    three("setLevel", 203, 208, 213),
    one("setHue", 234),
    one("setSaturation", 235),
    one("setBrightness", 236),
    three("setFGSample", 200, 205, 210),
    three("setBGSample", 201, 206, 211),
    one("setCleanup", 98),
    one("setCleanUp", 63),
    one("setCUShrink", 55),
    one("setCUBlur", 57),
    one("setCUThreshold", 62),
    one("setCUShrinkV", 56),
    one("setCUBlurV", 58),
    one("setClassicCleanUp", 60),
    one("setClassicCUThreshold", 109),
    one("setShadow", 99),
    one("setShadowHi", 66),
    one("setShadowLo", 67),
    one("setModulate", 65),
    one("setShadowBlur", 68),
    three("setShadowTint", 161, 162, 163),
    one("setShadowBlurV", 69),
    one("setShadowClipH", 70),
    one("setShadowClipV", 71),
    one("setComposite", 199),
    three("setSolidBGColor", 150, 151, 152),
    one("setBGMode", 170),
    three("setOverlayRGB", 153, 154, 155),
    one("setCropLeft", 221),
    one("setCropTop", 222),
    one("setCropRight", 223),
    one("setCropBottom", 224),
    one("setCropLeftPer10K", 246),
    one("setCropTopPer10K", 247),
    one("setCropRightPer10K", 248),
    one("setCropBottomPer10K", 249),
    one("setMattePipe", 112),
    one("setAlgorithm", 0),
    one("setTrimLeft", 220),
    one("setTrimRight", 225),
    one("setTrimTop", 229),
    one("setTrimBottom", 238),
    one("setControlsVersion", 243),
    one("setReferenceWidth", 14),
    one("setReferenceHeight", 15),
    one("setSampleX", 226),
    one("setSampleY", 227),
    one("setMore", 157),
    one("setMono", 24),
    one("setGarbage", 191),
    one("setHoldout", 192),
    one("setInvertMattes", 103),
    one("setNoOutputMatte", 245),
};

// A value takes a blank and at most 11 characters.
constexpr std::size_t kLongest = 64;

// Formats a line with its NUL; returns its length without it.
std::size_t format_line(const ControlBlock& controls, const TraceLine& line, char (&text)[kLongest]) {
    int length = std::snprintf(text, kLongest, "%s", line.command);
    for (const int control : line.controls) {
        if (control == kNone) continue;
        const auto at = static_cast<std::size_t>(length);
        length += std::snprintf(text + at, kLongest - at, " %d", controls.get(control));
    }
    const auto end = static_cast<std::size_t>(length);
    text[end] = '\n';
    text[end + 1] = '\0';
    return end + 1;
}

}  // namespace

std::size_t trace_capacity() {
    return kLines.size() * kLongest;
}

void write_trace(const ControlBlock& controls, char* buffer) {
    write_trace(controls, buffer, std::strlen(buffer) + trace_capacity());
}

bool write_trace(const ControlBlock& controls, char* buffer, std::size_t size) {
    const void* const nul = std::memchr(buffer, '\0', size);
    if (nul == nullptr) return false;
    auto at = static_cast<std::size_t>(static_cast<const char*>(nul) - buffer);
    char text[kLongest];
    for (const TraceLine& line : kLines) {
        const std::size_t length = format_line(controls, line, text);
        if (length >= size - at) return false;
        std::memcpy(buffer + at, text, length + 1);
        at += length;
    }
    return true;
}
