/* The image-effect suite: effects, their clips and images, and the actions of a render.
 *
 * Canonical coordinates are doubles over square pixels at full resolution (regions of definition and
 * interest); pixel coordinates are ints of this render (bounds, render window): x_pixel = x * scale.x /
 * aspect, y_pixel = y * scale.y. */
#pragma once

#include "OfxCore.h"

extern "C" {

typedef struct OfxImageEffectStruct* OfxImageEffectHandle; /* descriptor or instance */
typedef struct OfxImageClipStruct* OfxImageClipHandle;
typedef struct OfxImageMemoryStruct* OfxImageMemoryHandle;

/* Note the string: API in capitals. */
#define kOfxImageEffectPluginApi "OfxImageEffectPluginAPI"
#define kOfxImageEffectPluginApiVersion 1

#define kOfxStatErrImageFormat 1000

#define kOfxImageEffectSuite "OfxImageEffectSuite"

/* clipGetImage: a null region means the region of interest announced before. Failed means no image there, to
 * be taken as transparent black. Every image that was got, input or output, is released once within the same
 * action. abort: 1 = stop soon; an int, no status. */
typedef struct OfxImageEffectSuiteV1 {
    OfxStatus (*getPropertySet)(OfxImageEffectHandle imageEffect, OfxPropertySetHandle* propHandle);
    OfxStatus (*getParamSet)(OfxImageEffectHandle imageEffect, OfxParamSetHandle* paramSet);
    OfxStatus (*clipDefine)(OfxImageEffectHandle imageEffect, const char* name,
                            OfxPropertySetHandle* propertySet);
    OfxStatus (*clipGetHandle)(OfxImageEffectHandle imageEffect, const char* name, OfxImageClipHandle* clip,
                               OfxPropertySetHandle* propertySet);
    OfxStatus (*clipGetPropertySet)(OfxImageClipHandle clip, OfxPropertySetHandle* propHandle);
    OfxStatus (*clipGetImage)(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region,
                              OfxPropertySetHandle* imageHandle);
    OfxStatus (*clipReleaseImage)(OfxPropertySetHandle imageHandle);
    OfxStatus (*clipGetRegionOfDefinition)(OfxImageClipHandle clip, OfxTime time, OfxRectD* bounds);
    int (*abort)(OfxImageEffectHandle imageEffect);
    OfxStatus (*imageMemoryAlloc)(OfxImageEffectHandle instanceHandle, size_t nBytes,
                                  OfxImageMemoryHandle* memoryHandle);
    OfxStatus (*imageMemoryFree)(OfxImageMemoryHandle memoryHandle);
    OfxStatus (*imageMemoryLock)(OfxImageMemoryHandle memoryHandle, void** returnedPtr);
    OfxStatus (*imageMemoryUnlock)(OfxImageMemoryHandle memoryHandle);
} OfxImageEffectSuiteV1;

#define kOfxImageEffectActionDescribeInContext "OfxImageEffectActionDescribeInContext"
#define kOfxImageEffectActionGetClipPreferences "OfxImageEffectActionGetClipPreferences"
#define kOfxImageEffectActionGetRegionOfDefinition "OfxImageEffectActionGetRegionOfDefinition"
#define kOfxImageEffectActionGetRegionsOfInterest "OfxImageEffectActionGetRegionsOfInterest"
#define kOfxImageEffectActionIsIdentity "OfxImageEffectActionIsIdentity"
#define kOfxImageEffectActionBeginSequenceRender "OfxImageEffectActionBeginSequenceRender"
#define kOfxImageEffectActionRender "OfxImageEffectActionRender"
#define kOfxImageEffectActionEndSequenceRender "OfxImageEffectActionEndSequenceRender"

#define kOfxImageEffectContextFilter "OfxImageEffectContextFilter"
#define kOfxImageEffectContextGeneral "OfxImageEffectContextGeneral"
#define kOfxImageEffectSimpleSourceClipName "Source"
#define kOfxImageEffectOutputClipName "Output"

#define kOfxBitDepthNone "OfxBitDepthNone"
#define kOfxBitDepthByte "OfxBitDepthByte"   /* unsigned char, 0..255 */
#define kOfxBitDepthShort "OfxBitDepthShort" /* unsigned short, 0..65535 */
#define kOfxBitDepthHalf "OfxBitDepthHalf"   /* binary16 */
#define kOfxBitDepthFloat "OfxBitDepthFloat" /* float, 0..1, unclipped */

#define kOfxImageComponentNone "OfxImageComponentNone"
#define kOfxImageComponentRGBA "OfxImageComponentRGBA"
#define kOfxImageComponentRGB "OfxImageComponentRGB"
#define kOfxImageComponentAlpha "OfxImageComponentAlpha"

#define kOfxImageOpaque "OfxImageOpaque"
#define kOfxImagePreMultiplied "OfxImageAlphaPremultiplied"
#define kOfxImageUnPreMultiplied "OfxImageAlphaUnPremultiplied"

#define kOfxImageFieldNone "OfxFieldNone"
#define kOfxImageFieldLower "OfxFieldLower"
#define kOfxImageFieldUpper "OfxFieldUpper"
#define kOfxImageFieldDoubled "OfxFieldDoubled"

/* Of the effect's descriptor and, some, of the host. */
#define kOfxImageEffectPluginPropGrouping "OfxImageEffectPluginPropGrouping"             /* string */
#define kOfxImageEffectPluginPropSingleInstance "OfxImageEffectPluginPropSingleInstance" /* bool */
#define kOfxImageEffectPluginRenderThreadSafety "OfxImageEffectPluginRenderThreadSafety" /* string */
#define kOfxImageEffectRenderFullySafe "OfxImageEffectRenderFullySafe"
#define kOfxImageEffectPluginPropHostFrameThreading "OfxImageEffectPluginPropHostFrameThreading" /* bool */
#define kOfxImageEffectPluginPropFieldRenderTwiceAlways "OfxImageEffectPluginPropFieldRenderTwiceAlways"
#define kOfxImageEffectPropSupportedContexts "OfxImageEffectPropSupportedContexts"             /* string xN */
#define kOfxImageEffectPropSupportedPixelDepths "OfxImageEffectPropSupportedPixelDepths"       /* string xN */
#define kOfxImageEffectPropSupportedComponents "OfxImageEffectPropSupportedComponents"         /* string xN */
#define kOfxImageEffectPropSupportsMultiResolution "OfxImageEffectPropSupportsMultiResolution" /* bool */
#define kOfxImageEffectPropSupportsTiles "OfxImageEffectPropSupportsTiles"                     /* bool */
#define kOfxImageEffectPropTemporalClipAccess "OfxImageEffectPropTemporalClipAccess"           /* bool */
#define kOfxImageEffectPropSupportsMultipleClipDepths "OfxImageEffectPropMultipleClipDepths"   /* bool */
#define kOfxImageEffectPropSupportsMultipleClipPARs "OfxImageEffectPropSupportsMultipleClipPARs"   /* bool */
#define kOfxImageEffectPropClipPreferencesSlaveParam "OfxImageEffectPropClipPreferencesSlaveParam" /* xN */

/* Of an instance. */
#define kOfxImageEffectPropContext "OfxImageEffectPropContext" /* string */

/* Of a clip. */
#define kOfxImageClipPropOptional "OfxImageClipPropOptional"               /* bool */
#define kOfxImageClipPropIsMask "OfxImageClipPropIsMask"                   /* bool */
#define kOfxImageClipPropFieldExtraction "OfxImageClipPropFieldExtraction" /* string */
#define kOfxImageClipPropConnected "OfxImageClipPropConnected"             /* bool */

/* Of a clip and of an image. */
#define kOfxImageEffectPropPixelDepth "OfxImageEffectPropPixelDepth"               /* string */
#define kOfxImageEffectPropComponents "OfxImageEffectPropComponents"               /* string */
#define kOfxImageEffectPropPreMultiplication "OfxImageEffectPropPreMultiplication" /* string */
#define kOfxImagePropPixelAspectRatio "OfxImagePropPixelAspectRatio"               /* double */

/* Of an image. Data is the bottom left pixel of the bounds; row bytes lead to the row above, are signed and
 * may hold padding. */
#define kOfxImagePropData "OfxImagePropData"                             /* pointer */
#define kOfxImagePropBounds "OfxImagePropBounds"                         /* int x4, pixels */
#define kOfxImagePropRegionOfDefinition "OfxImagePropRegionOfDefinition" /* int x4, pixels */
#define kOfxImagePropRowBytes "OfxImagePropRowBytes"                     /* int */
#define kOfxImagePropUniqueIdentifier "OfxImagePropUniqueIdentifier" /* string: changes with the picture */

/* Arguments of actions; those that end in an underscore have the clip's name appended. */
#define kOfxImageEffectPropRenderScale "OfxImageEffectPropRenderScale"               /* double x2 */
#define kOfxImageEffectPropRenderWindow "OfxImageEffectPropRenderWindow"             /* int x4, pixels */
#define kOfxImageEffectPropRegionOfDefinition "OfxImageEffectPropRegionOfDefinition" /* double x4 */
#define kOfxImageEffectPropRegionOfInterest "OfxImageEffectPropRegionOfInterest"     /* double x4 */
#define kOfxImageEffectPropFieldToRender "OfxImageEffectPropFieldToRender"           /* string */
#define kOfxImageClipPropRoI_ "OfxImageClipPropRoI_"                                 /* double x4 */
#define kOfxImageClipPropComponents_ "OfxImageClipPropComponents_"                   /* string */
}
