/* Interacts: what an effect draws over the host's viewer, and the pen and keys there; and the suite that
 * draws where the host offers it, in whose place an interact draws with OpenGL. */
#pragma once

#include "OfxCore.h"

extern "C" {

typedef struct OfxInteract* OfxInteractHandle;
typedef struct OfxDrawContext* OfxDrawContextHandle;

#define kOfxInteractSuite "OfxInteractSuite"

typedef struct OfxInteractSuiteV1 {
    OfxStatus (*interactSwapBuffers)(OfxInteractHandle interactInstance);
    OfxStatus (*interactRedraw)(OfxInteractHandle interactInstance);
    OfxStatus (*interactGetPropertySet)(OfxInteractHandle interactInstance, OfxPropertySetHandle* property);
} OfxInteractSuiteV1;

/* Of the host: bool. Of the effect's descriptor: pointers to entry points, for interacts that draw with
 * OpenGL and for those that draw with the suite alone. */
#define kOfxImageEffectPropSupportsOverlays "OfxImageEffectPropSupportsOverlays"
#define kOfxImageEffectPluginPropOverlayInteractV1 "OfxImageEffectPluginPropOverlayInteractV1"
#define kOfxImageEffectPluginPropOverlayInteractV2 "OfxImageEffectPluginPropOverlayInteractV2"

/* Actions beside describe, create and destroy. OK keeps the event from everybody else. */
#define kOfxInteractActionDraw "OfxInteractActionDraw"
#define kOfxInteractActionPenMotion "OfxInteractActionPenMotion"
#define kOfxInteractActionPenDown "OfxInteractActionPenDown"
#define kOfxInteractActionPenUp "OfxInteractActionPenUp"
#define kOfxInteractActionKeyDown "OfxInteractActionKeyDown"
#define kOfxInteractActionKeyUp "OfxInteractActionKeyUp"
#define kOfxInteractActionKeyRepeat "OfxInteractActionKeyRepeat"
#define kOfxInteractActionGainFocus "OfxInteractActionGainFocus"
#define kOfxInteractActionLoseFocus "OfxInteractActionLoseFocus"

/* Their arguments. Positions are canonical coordinates. */
#define kOfxPropEffectInstance "OfxPropEffectInstance"             /* pointer */
#define kOfxInteractPropPixelScale "OfxInteractPropPixelScale"     /* double x2: a pixel of the screen */
#define kOfxInteractPropPenPosition "OfxInteractPropPenPosition"   /* double x2 */
#define kOfxInteractPropDrawContext "OfxInteractPropDrawContext"   /* pointer */
#define kOfxInteractPropSlaveToParam "OfxInteractPropSlaveToParam" /* string xN, of the instance */
#define kOfxPropKeySym "kOfxPropKeySym"                            /* int: X11's number */

#define kOfxKey_BackSpace 0xFF08
#define kOfxKey_Escape 0xFF1B
#define kOfxKey_Control_L 0xFFE3
#define kOfxKey_Control_R 0xFFE4
#define kOfxKey_Delete 0xFFFF

#define kOfxDrawSuite "OfxDrawSuite"

typedef enum OfxStandardColour {
    kOfxStandardColourOverlayBackground,
    kOfxStandardColourOverlayActive,
    kOfxStandardColourOverlaySelected,
    kOfxStandardColourOverlayDeselected,
    kOfxStandardColourOverlayMarqueeFG,
    kOfxStandardColourOverlayMarqueeBG,
    kOfxStandardColourOverlayText
} OfxStandardColour;

typedef enum OfxDrawLineStipplePattern {
    kOfxDrawLineStipplePatternSolid,
    kOfxDrawLineStipplePatternDot,
    kOfxDrawLineStipplePatternDash,
    kOfxDrawLineStipplePatternAltDash,
    kOfxDrawLineStipplePatternDotDash
} OfxDrawLineStipplePattern;

typedef enum OfxDrawPrimitive {
    kOfxDrawPrimitiveLines,
    kOfxDrawPrimitiveLineStrip,
    kOfxDrawPrimitiveLineLoop,
    kOfxDrawPrimitiveRectangle, /* filled; two opposite corners */
    kOfxDrawPrimitivePolygon,   /* filled */
    kOfxDrawPrimitiveEllipse    /* outline; two opposite corners */
} OfxDrawPrimitive;

typedef struct OfxRGBAColourF {
    float r, g, b, a;
} OfxRGBAColourF;

/* Within the draw action only. A width of 0 is one pixel of the screen. */
typedef struct OfxDrawSuiteV1 {
    OfxStatus (*getColour)(OfxDrawContextHandle context, OfxStandardColour std_colour,
                           OfxRGBAColourF* colour);
    OfxStatus (*setColour)(OfxDrawContextHandle context, const OfxRGBAColourF* colour);
    OfxStatus (*setLineWidth)(OfxDrawContextHandle context, float width);
    OfxStatus (*setLineStipple)(OfxDrawContextHandle context, OfxDrawLineStipplePattern pattern);
    OfxStatus (*draw)(OfxDrawContextHandle context, OfxDrawPrimitive primitive, const OfxPointD* points,
                      int point_count);
    OfxStatus (*drawText)(OfxDrawContextHandle context, const char* text, const OfxPointD* pos,
                          int alignment);
} OfxDrawSuiteV1;
}
