/* The binary interface between an OpenFX host and its plug-ins, with C's linkage: handles, status codes, the
 * entry points of a plug-in's binary and the actions every kind of plug-in gets.
 *
 * Strings: names (properties, actions, suites, types) may be kept as pointers by the receiver for as long as
 * the plug-in is loaded, so they are literals. Values belong to whoever passes them and are copied at once; a
 * string that a host returns is good until the next call of any function of the host.
 * Rectangles are half open: x1 <= x < x2, y1 <= y < y2, y grows upward. */
#pragma once

#include <cstddef>

extern "C" {

typedef struct OfxPropertySetStruct* OfxPropertySetHandle;
typedef struct OfxParamStruct* OfxParamHandle;
typedef struct OfxParamSetStruct* OfxParamSetHandle;

typedef int OfxStatus;
typedef double OfxTime; /* frames */

typedef struct OfxRangeD {
    double min, max;
} OfxRangeD;
typedef struct OfxPointD {
    double x, y;
} OfxPointD;
typedef struct OfxRectI {
    int x1, y1, x2, y2;
} OfxRectI;
typedef struct OfxRectD {
    double x1, y1, x2, y2;
} OfxRectD;

/* fetchSuite takes the member `host` of the same struct; null means that the host lacks the suite or that
 * version of it. The tables stay valid until the plug-in is unloaded. */
typedef struct OfxHost {
    OfxPropertySetHandle host;
    const void* (*fetchSuite)(OfxPropertySetHandle host, const char* suiteName, int suiteVersion);
} OfxHost;

/* A function type: `handle` is the effect, null for load and unload. No C++ exception may leave it. */
typedef OfxStatus(OfxPluginEntryPoint)(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                                       OfxPropertySetHandle outArgs);

typedef struct OfxPlugin {
    const char* pluginApi;
    int apiVersion;
    const char* pluginIdentifier;
    unsigned int pluginVersionMajor;
    unsigned int pluginVersionMinor;
    void (*setHost)(OfxHost* host); /* stores the pointer; calls nothing of the host */
    OfxPluginEntryPoint* mainEntry;
} OfxPlugin;

/* What a plug-in's binary exports. GetPlugin: 0 <= nth < number, the same static object each time, null for
 * any other index. SetHost is optional and comes first. */
#define OfxExport __attribute__((visibility("default")))
OfxExport int OfxGetNumberOfPlugins();
OfxExport OfxPlugin* OfxGetPlugin(int nth);
OfxExport OfxStatus OfxSetHost(const OfxHost* host);

#define kOfxStatOK 0
#define kOfxStatFailed 1
#define kOfxStatErrUnknown 3
#define kOfxStatErrMissingHostFeature 4
#define kOfxStatErrUnsupported 5
#define kOfxStatErrExists 6
#define kOfxStatErrMemory 8
#define kOfxStatErrBadHandle 9
#define kOfxStatErrBadIndex 10
#define kOfxStatErrValue 11
#define kOfxStatReplyYes 12
#define kOfxStatReplyNo 13
#define kOfxStatReplyDefault 14

#define kOfxActionLoad "OfxActionLoad"
#define kOfxActionUnload "OfxActionUnload"
#define kOfxActionDescribe "OfxActionDescribe"
#define kOfxActionCreateInstance "OfxActionCreateInstance"
#define kOfxActionDestroyInstance "OfxActionDestroyInstance"
#define kOfxActionBeginInstanceChanged "OfxActionBeginInstanceChanged"
#define kOfxActionInstanceChanged "OfxActionInstanceChanged"
#define kOfxActionEndInstanceChanged "OfxActionEndInstanceChanged"
#define kOfxActionPurgeCaches "OfxActionPurgeCaches"

/* Values of kOfxPropChangeReason. */
#define kOfxChangeUserEdited "OfxChangeUserEdited"
#define kOfxChangePluginEdited "OfxChangePluginEdited"
#define kOfxChangeTime "OfxChangeTime"

/* Values of kOfxPropType. */
#define kOfxTypeParameter "OfxTypeParameter"
#define kOfxTypeClip "OfxTypeClip"

#define kOfxPropType "OfxPropType"                                 /* string */
#define kOfxPropName "OfxPropName"                                 /* string */
#define kOfxPropLabel "OfxPropLabel"                               /* string */
#define kOfxPropShortLabel "OfxPropShortLabel"                     /* string */
#define kOfxPropLongLabel "OfxPropLongLabel"                       /* string */
#define kOfxPropIcon "OfxPropIcon"                                 /* string x2: SVG, PNG */
#define kOfxPropTime "OfxPropTime"                                 /* double */
#define kOfxPropChangeReason "OfxPropChangeReason"                 /* string */
#define kOfxPropInstanceData "OfxPropInstanceData"                 /* pointer */
#define kOfxPropVersion "OfxPropVersion"                           /* int xN, most significant first */
#define kOfxPropVersionLabel "OfxPropVersionLabel"                 /* string */
#define kOfxPropPluginDescription "OfxPropPluginDescription"       /* string */
#define kOfxPropParamSetNeedsSyncing "OfxPropParamSetNeedsSyncing" /* bool */
}
