// Names for the controls that the keyer's stages read: indices into the ControlBlock, and the groups of
// three. Colour groups are in role order: role 0, role 1, primary (see ChannelRoles.h).
#pragma once

#include "controls/ControlBlock.h"

namespace controls {

// Matte density
inline constexpr int kMatteDensityBrights = 79;
inline constexpr int kMatteDensityDarks = 80;
inline constexpr int kMatteDensityCool = 81;
inline constexpr int kMatteDensityWarm = 82;
inline constexpr int kEdgeKernel = 85;
inline constexpr int kKernelHeight = 86;

// Backing
inline constexpr ControlGroup kBackingColor{75, 76, 77};
inline constexpr int kColorIndex = 120;  // 0 blue, 1 green, 2 red backing
inline constexpr int kCleanPlate = 122;
inline constexpr int kScreenCorrect = 123;
inline constexpr int kGarbage = 191;
inline constexpr int kHoldout = 192;
inline constexpr ControlGroup kBgVeiling{173, 174, 175};

// Screen correction
inline constexpr ControlGroup kScreenTolerance{37, 38, 39};
inline constexpr int kRotoBrightsGR = 29;
inline constexpr int kRotoDarksGR = 30;
inline constexpr int kRotoBrightsRG = 31;
inline constexpr int kRotoDarksRG = 32;
inline constexpr int kRotoOrphans = 232;
inline constexpr int kScreenOverlayShrink = 40;

// Film
inline constexpr int kFilmBrights = 4;
inline constexpr int kFilmDarks = 5;
inline constexpr int kInnerCoolDensity = 6;
inline constexpr int kInnerWarmDensity = 7;
inline constexpr int kShrinkSubjectOverlay = 8;
inline constexpr int kFilmStrength = 10;
inline constexpr int kFilmCorrectionRed = 11;
inline constexpr int kFilmCorrectionGreen = 12;
inline constexpr int kFilmCorrectionBlue = 13;

// Spill
inline constexpr int kSpillDarks = 105;
inline constexpr int kSpillCool = 106;
inline constexpr int kSpillWarm = 107;
inline constexpr int kSpillMidTones = 110;
inline constexpr int kSpillBrights = 111;
inline constexpr ControlGroup kAmbiance{115, 116, 117};
inline constexpr int kStrength = 118;

// Colour conformance
inline constexpr ControlGroup kFgSample{200, 205, 210};
inline constexpr ControlGroup kBgSample{201, 206, 211};
inline constexpr ControlGroup kColorConformDarks{202, 207, 212};
inline constexpr ControlGroup kColorConformBrights{203, 208, 213};
inline constexpr ControlGroup kColorConformMidTones{204, 209, 214};
inline constexpr int kHue = 234;
inline constexpr int kSaturation = 235;
inline constexpr int kBrightness = 236;

// Clean-up; the shrink radii are in tenths of a pixel
inline constexpr int kCleanUpShrink = 55;
inline constexpr int kCUShrinkV = 56;
inline constexpr int kCleanUpBlur = 57;
inline constexpr int kCUBlurV = 58;
inline constexpr int kCleanUpRecover = 62;
inline constexpr int kCleanUp = 63;

// Shadows
inline constexpr int kShadowDensity = 65;
inline constexpr int kShadowHigh = 66;
inline constexpr int kShadowLow = 67;
inline constexpr int kShadowBlur = 68;
inline constexpr int kShadowBlurV = 69;
inline constexpr ControlGroup kShadowTint{161, 162, 163};

// Housekeeping
inline constexpr int kDirty = 189;

}  // namespace controls
