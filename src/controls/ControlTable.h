// The one list of the controls: name, category and stored default of each, by index.
//
// Names are text that listings print as they stand; many end in a blank that belongs to them, and the
// components of a group share one name. The category names the stage whose result depends on the control;
// 100 is none. A negated control's default is given as it is stored.
#pragma once

#include <array>
#include <cstdint>

struct ControlEntry {
    const char* name;
    std::int32_t category;
    std::int32_t stored_default;
    bool negated = false;
};

inline constexpr std::array<ControlEntry, 250> kControlTable{{
    {"Algorithm", 16, 0},                   // 0
    {"DynaProxy", 101, 1},                  // 1
    {"ClassicAutoDensityColor", 16, 255},   // 2
    {"ClassicAutoDensityColor", 16, 255},   // 3
    {"Film Brights ", 7, 200},              // 4
    {"Film Darks ", 7, -5, true},           // 5
    {"InnerCoolDensity", 100, 0},           // 6
    {"InnerWarmDensity", 100, 0},           // 7
    {"Shrink Subject Overlay ", 7, 2},      // 8
    {"InnerKernelHeight", 100, 0},          // 9
    {"Film Strength ", 5, 0},               // 10
    {"Film Correnction ", 5, 0},            // 11
    {"Film Correnction ", 5, 0},            // 12
    {"Film Correnction ", 5, 50},           // 13
    {"ReferenceWidth", 100, 0},             // 14
    {"ReferenceHeight", 100, 0},            // 15
    {"DisplayChannel", 100, 4},             // 16
    {"PushBuffer", 100, 0},                 // 17
    {"EndianTest", 100, 1234},              // 18
    {"Virgin", 100, 1},                     // 19
    {"SnailTrail", 100, 0},                 // 20
    {"Proxy", 101, 1},                      // 21
    {"Abort", 100, 0},                      // 22
    {"OK", 100, 0},                         // 23
    {"Mono", 100, 0},                       // 24
    {"Roto Density Subject ", 8, 100},      // 25
    {"Roto Density Screen ", 8, 100},       // 26
    {"Roto Density Subject ", 8, 100},      // 27
    {"Roto Density Screen ", 8, 100},       // 28
    {"Roto Brights (G>R) ", 8, 100},        // 29
    {"Roto Darks (G>R) ", 8, 0, true},      // 30
    {"Roto Brights (R>G) ", 8, 100},        // 31
    {"Roto Darks (R>G) ", 8, 0, true},      // 32
    {"SliderBank", 100, 1},                 // 33
    {"Pink Correction ", 16, 100},          // 34
    {"OuterKernelWidth", 100, 0},           // 35
    {"OuterKernelHeight", 100, 0},          // 36
    {"Screen Tolerance ", 8, 5},            // 37
    {"Screen Tolerance ", 8, 5},            // 38
    {"Screen Tolerance ", 8, 10},           // 39
    {"Screen Overlay Shrink ", 8, 2},       // 40
    {"", 100, 0},                           // 41
    {"Roto Density Subject ", 8, 100},      // 42
    {"SuspendRendering", 100, 0},           // 43
    {"Roto Density Screen ", 8, 100},       // 44
    {"Frame Offset ", 8, 0},                // 45
    {"Matte Density Subject ", 8, 100},     // 46
    {"Matte Density Screen ", 8, 100},      // 47
    {"Matte Density Subject ", 8, 100},     // 48
    {"Spill Suppress Cool ", 16, -300},     // 49
    {"Matte Density Screen ", 8, 100},      // 50
    {"Matte Density Subject ", 8, 100},     // 51
    {"Matte Density Screen ", 8, 100},      // 52
    {"InterpolSize", 16, 0},                // 53
    {"Spill Suppress Warm ", 16, 300},      // 54
    {"Clean-up Shrink ", 20, 0},            // 55
    {"CUShrinkV", 20, 0},                   // 56
    {"Clean-up Blur ", 20, 0},              // 57
    {"CUBlurV", 100, 0},                    // 58
    {"Spill Suppress Mid-Tones ", 16, 0},   // 59
    {"Clean-up ", 16, 100},                 // 60
    {"Spill Suppress Brights ", 16, 125},   // 61
    {"Clean-up Recover ", 20, 0},           // 62
    {"Clean-up ", 20, 100},                 // 63
    {"Spill Suppress Darks ", 16, 0},       // 64
    {"Shadow Density ", 22, 100},           // 65
    {"Shadow High ", 22, 255},              // 66
    {"Shadow Low ", 22, 0},                 // 67
    {"Shadow Blur ", 22, 0},                // 68
    {"ShadowBlurV", 100, 0},                // 69
    {"ShadowClipH", 22, 0},                 // 70
    {"ShadowClipV", 22, 0},                 // 71
    {"Matte Density Brights ", 16, 100},    // 72
    {"Matte Density Darks ", 16, 0, true},  // 73
    {"Matte Density Warm ", 16, 100},       // 74
    {"Backing Color ", 16, -1},             // 75
    {"Backing Color ", 16, -1},             // 76
    {"Backing Color ", 16, -1},             // 77
    {"Matte Density Cool ", 16, 100},       // 78
    {"Matte Density Brights ", 16, 100},    // 79
    {"Matte Density Darks ", 16, 0, true},  // 80
    {"Matte Density Cool ", 16, 0},         // 81
    {"Matte Density Warm ", 16, 0},         // 82
    {"Ambiance ", 16, 128},                 // 83
    {"Ambiance ", 16, 128},                 // 84
    {"Edge Kernel ", 16, 2},                // 85
    {"KernelHeight", 100, 0},               // 86
    {"ShadowResume", 100, 0},               // 87
    {"Subject", 7, 0},                      // 88
    {"Clear", 8, 1},                        // 89
    {"Ambiance ", 16, 128},                 // 90
    {"RedCorrect", 101, 0},                 // 91
    {"CompressionCorrection", 101, 0},      // 92
    {"Interp", 11, 0},                      // 93
    {"ClearFrame", 13, 0},                  // 94
    {"Mpfg", 16, 1},                        // 95
    {"Flare", 17, 1},                       // 96
    {"ColorConform", 17, 0},                // 97
    {"Cleanup", 17, 0},                     // 98
    {"Shadow", 17, 0},                      // 99
    {"BG Veiling ", 16, 100},               // 100
    {"BG Veiling ", 16, 100},               // 101
    {"BG Veiling ", 16, 100},               // 102
    {"InvertMattes", 100, 0},               // 103
    {"Matte Shrink ", 16, 0},               // 104
    {"Spill Suppress Darks ", 17, 0},       // 105
    {"Spill Suppress Cool ", 17, 50},       // 106
    {"Spill Suppress Warm ", 17, 100},      // 107
    {"Matte Blur ", 16, 0},                 // 108
    {"Clean-up Threshold ", 16, 0},         // 109
    {"Spill Suppress Mid-Tones ", 17, 0},   // 110
    {"Spill Suppress Brights ", 17, 100},   // 111
    {"MattePipe", 100, 0},                  // 112
    {"ClassicAutoDensityColor", 16, 255},   // 113
    {"DerivativeThreshold ", 16, 20},       // 114
    {"Ambiance ", 17, 128},                 // 115
    {"Ambiance ", 17, 128},                 // 116
    {"Ambiance ", 17, 128},                 // 117
    {"Strength ", 17, 50},                  // 118
    {"FlareAlt", 17, 0},                    // 119
    {"ColorIndex", 100, 0},                 // 120
    {"Interlaced", 100, 0},                 // 121
    {"CleanPlate", 101, 0},                 // 122
    {"ScreenCorrect", 8, 0},                // 123
    {"ScreenType", 100, 0},                 // 124
    {"Video Correct Type ", 5, 100},        // 125
    {"Ctri", 5, 0},                         // 126
    {"Ctwo", 5, 0},                         // 127
    {"Cone", 5, 0},                         // 128
    {"CurrBuff2", 100, 16},                 // 129
    {"Logging", 100, 0},                    // 130
    {"Cancel", 100, 0},                     // 131
    {"Low-Luma Noise ", 5, 30},             // 132
    {"MinimumYCrCb", 5, 95},                // 133
    {"CrCbTolerance", 5, 2},                // 134
    {"Guides ", 100, 1},                    // 135
    {"ClassicAutoGlossColor", 16, 0},       // 136
    {"ClassicAutoGlossColor", 16, 0},       // 137
    {"ClassicAutoGlossColor", 16, 0},       // 138
    {"Video Correct Sample Pixel ", 5, 1},  // 139
    {"OffsetX", 5, 0},                      // 140
    {"OffsetY", 5, 0},                      // 141
    {"Video Correct ", 5, 1},               // 142
    {"InvertOverlay", 10, 0},               // 143
    {"MiniGUI", 100, 0},                    // 144
    {"SepLevel", 5, 0},                     // 145
    {"PellPlus", 5, 0},                     // 146
    {"ByteC1", 7, 0},                       // 147
    {"ByteC1", 7, 0},                       // 148
    {"ByteC1", 7, 0},                       // 149
    {"SolidBG ", 23, 128},                  // 150
    {"SolidBG ", 23, 128},                  // 151
    {"SolidBG ", 23, 128},                  // 152
    {"Overlay Color ", 10, 179},            // 153
    {"Overlay Color ", 10, 51},             // 154
    {"Overlay Color ", 10, 77},             // 155
    {"CurrBuff", 100, 23},                  // 156
    {"More", 100, 0},                       // 157
    {"UpdateThumbs", 100, 0},               // 158
    {"Overlay Alpha ", 10, 132},            // 159
    {"Output", 100, 15},                    // 160
    {"Shadow Tint ", 21, 0},                // 161
    {"Shadow Tint ", 21, 0},                // 162
    {"Shadow Tint ", 21, 0},                // 163
    {"Alt", 100, 0},                        // 164
    {"InvertDisplay", 101, 0},              // 165
    {"PixelOrder", 100, 0},                 // 166
    {"", 100, 0},                           // 167
    {"DetailRectW", 100, 30000},            // 168
    {"DetailRectH", 100, 30000},            // 169
    {"BGMode", 23, 1},                      // 170
    {"MouseTool", 100, 0},                  // 171
    {"OverlayMode", 10, 0},                 // 172
    {"BG Veiling ", 16, 100},               // 173
    {"BG Veiling ", 16, 100},               // 174
    {"BG Veiling ", 16, 100},               // 175
    {"unpublished", 100, 0},                // 176
    {"SplitScreen", 100, 0},                // 177
    {"SplitPercent", 100, 5000},            // 178
    {"PixMax", 100, 255},                   // 179
    {"DetailRect", 100, 1},                 // 180
    {"DetailRectX", 100, 0},                // 181
    {"DetailRectY", 100, 0},                // 182
    {"ByteC2", 7, 0},                       // 183
    {"ByteC2", 7, 0},                       // 184
    {"ByteC2", 7, 0},                       // 185
    {"BlueGreen", 5, 1},                    // 186
    {"OutlineView", 100, 0},                // 187
    {"BGImageLoaded", 100, 0},              // 188
    {"Dirty", 100, 100},                    // 189
    {"SampleRect", 100, 0},                 // 190
    {"Garbage", 101, 0},                    // 191
    {"Holdout", 101, 0},                    // 192
    {"HideDisplay", 100, 0},                // 193
    {"ForegroundView", 100, 0},             // 194
    {"ControlsValid", 100, 0},              // 195
    {"OverlayView", 100, 10},               // 196
    {"Nothing", 100, 0},                    // 197
    {"MatteView", 100, 16},                 // 198
    {"Composite", 23, 1},                   // 199
    {"FGSample", 18, -1},                   // 200
    {"BGSample", 18, -1},                   // 201
    {"Color Conform Darks ", 18, 0},        // 202
    {"Color Conform Brights ", 18, 100},    // 203
    {"Color Conform Mid-tones ", 18, 0},    // 204
    {"FGSample", 18, -1},                   // 205
    {"BGSample", 18, -1},                   // 206
    {"Color Conform Darks ", 18, 0},        // 207
    {"Color Conform Brights ", 18, 100},    // 208
    {"Color Conform Mid-tones ", 18, 0},    // 209
    {"FGSample", 18, -1},                   // 210
    {"BGSample", 18, -1},                   // 211
    {"Color Conform Darks ", 18, 0},        // 212
    {"Color Conform Brights ", 18, 100},    // 213
    {"Color Conform Mid-tones ", 18, 0},    // 214
    {"CompositeView", 100, 23},             // 215
    {"FlareYesPoints", 100, 0},             // 216
    {"FlareNoPoints", 100, 0},              // 217
    {"RotoYesPoints", 100, 0},              // 218
    {"RotoNoPoints", 100, 0},               // 219
    {"TrimLeft", 16, 1},                    // 220
    {"CropLeft", 100, 0},                   // 221
    {"CropTop", 100, 0},                    // 222
    {"CropRight", 100, 0},                  // 223
    {"CropBottom", 100, 0},                 // 224
    {"TrimRight", 16, 1},                   // 225
    {"SampleX", 100, 0},                    // 226
    {"SampleY", 100, 0},                    // 227
    {"SampleDot", 100, 1},                  // 228
    {"TrimTop", 16, 1},                     // 229
    {"FrameStart", 100, 0},                 // 230
    {"FrameCurrent", 100, 0},               // 231
    {"Roto Orphans ", 8, 6},                // 232
    {"AutoCC", 100, 0},                     // 233
    {"Hue ", 18, 0},                        // 234
    {"Saturation ", 18, 0},                 // 235
    {"Brightness ", 18, 0},                 // 236
    {"FrameFinish", 100, 1},                // 237
    {"TrimBottom", 16, 1},                  // 238
    {"ShowVTR", 100, 0},                    // 239
    {"NodeView", 100, 0},                   // 240
    {"Event", 100, 0},                      // 241
    {"InputFlagBits", 100, 0},              // 242
    {"ControlsVersion", 100, 150},          // 243
    {"GUI", 100, 1},                        // 244
    {"NoOutputMatte", 100, 0},              // 245
    {"CropLeftPer10K", 100, 0},             // 246
    {"CropTopPer10K", 100, 0},              // 247
    {"CropRightPer10K", 100, 0},            // 248
    {"CropBottomPer10K", 100, 0},           // 249
}};
