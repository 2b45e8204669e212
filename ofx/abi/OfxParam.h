/* The parameter suite: the values of an effect that the user edits and the host animates and saves. */
#pragma once

#include "OfxCore.h"

extern "C" {

#define kOfxParameterSuite "OfxParameterSuite"

/* The variable arguments are one per dimension: pointers for the getters, values for the setters. int for
 * Integer, Boolean and Choice; double for Double, RGB and RGBA; char* for String and Custom (owned by the
 * host). Setting is legal while an instance is made or told of a change, never while it renders; at a render,
 * values are read at its time. EditBegin and EditEnd make one undoable step of several sets. */
typedef struct OfxParameterSuiteV1 {
    OfxStatus (*paramDefine)(OfxParamSetHandle paramSet, const char* paramType, const char* name,
                             OfxPropertySetHandle* propertySet);
    OfxStatus (*paramGetHandle)(OfxParamSetHandle paramSet, const char* name, OfxParamHandle* param,
                                OfxPropertySetHandle* propertySet);
    OfxStatus (*paramSetGetPropertySet)(OfxParamSetHandle paramSet, OfxPropertySetHandle* propHandle);
    OfxStatus (*paramGetPropertySet)(OfxParamHandle param, OfxPropertySetHandle* propHandle);
    OfxStatus (*paramGetValue)(OfxParamHandle paramHandle, ...);
    OfxStatus (*paramGetValueAtTime)(OfxParamHandle paramHandle, OfxTime time, ...);
    OfxStatus (*paramGetDerivative)(OfxParamHandle paramHandle, OfxTime time, ...);
    OfxStatus (*paramGetIntegral)(OfxParamHandle paramHandle, OfxTime time1, OfxTime time2, ...);
    OfxStatus (*paramSetValue)(OfxParamHandle paramHandle, ...);
    OfxStatus (*paramSetValueAtTime)(OfxParamHandle paramHandle, OfxTime time, ...);
    OfxStatus (*paramGetNumKeys)(OfxParamHandle paramHandle, unsigned int* numberOfKeys);
    OfxStatus (*paramGetKeyTime)(OfxParamHandle paramHandle, unsigned int nthKey, OfxTime* time);
    OfxStatus (*paramGetKeyIndex)(OfxParamHandle paramHandle, OfxTime time, int direction, int* index);
    OfxStatus (*paramDeleteKey)(OfxParamHandle paramHandle, OfxTime time);
    OfxStatus (*paramDeleteAllKeys)(OfxParamHandle paramHandle);
    OfxStatus (*paramCopy)(OfxParamHandle paramTo, OfxParamHandle paramFrom, OfxTime dstOffset,
                           const OfxRangeD* frameRange);
    OfxStatus (*paramEditBegin)(OfxParamSetHandle paramSet, const char* name);
    OfxStatus (*paramEditEnd)(OfxParamSetHandle paramSet);
} OfxParameterSuiteV1;

#define kOfxParamTypeDouble "OfxParamTypeDouble"
#define kOfxParamTypeDouble2D "OfxParamTypeDouble2D"
#define kOfxParamTypeRGB "OfxParamTypeRGB"
#define kOfxParamTypeRGBA "OfxParamTypeRGBA"
#define kOfxParamTypeBoolean "OfxParamTypeBoolean"
#define kOfxParamTypeChoice "OfxParamTypeChoice"
#define kOfxParamTypeString "OfxParamTypeString"
#define kOfxParamTypePushButton "OfxParamTypePushButton"
#define kOfxParamTypeGroup "OfxParamTypeGroup"
#define kOfxParamTypePage "OfxParamTypePage"

/* Of every parameter. */
#define kOfxParamPropSecret "OfxParamPropSecret"         /* bool: hidden from the user */
#define kOfxParamPropEnabled "OfxParamPropEnabled"       /* bool: 0 is greyed out */
#define kOfxParamPropHint "OfxParamPropHint"             /* string */
#define kOfxParamPropScriptName "OfxParamPropScriptName" /* string */
#define kOfxParamPropParent "OfxParamPropParent"         /* string: a group defined before */

/* Of parameters that hold a value. */
#define kOfxParamPropDefault "OfxParamPropDefault"                   /* as the value */
#define kOfxParamPropAnimates "OfxParamPropAnimates"                 /* bool */
#define kOfxParamPropIsAnimating "OfxParamPropIsAnimating"           /* bool */
#define kOfxParamPropEvaluateOnChange "OfxParamPropEvaluateOnChange" /* bool: a change renders */

#define kOfxParamPropCanUndo "OfxParamPropCanUndo"       /* bool: changes are steps to undo */
#define kOfxParamPropPersistant "OfxParamPropPersistant" /* bool, so spelt: saved with projects */

/* Of strings. A label is text that the user only reads. */
#define kOfxParamPropStringMode "OfxParamPropStringMode"
#define kOfxParamStringIsFilePath "OfxParamStringIsFilePath"
#define kOfxParamStringIsLabel "OfxParamStringIsLabel"
#define kOfxParamPropStringFilePathExists \
    "OfxParamPropStringFilePathExists" /* bool: it names a file that is there */

/* Of numbers. Setting a hard limit resets the display limit of its side: the hard ones come first. */
#define kOfxParamPropMin "OfxParamPropMin"
#define kOfxParamPropMax "OfxParamPropMax"
#define kOfxParamPropDisplayMin "OfxParamPropDisplayMin"
#define kOfxParamPropDisplayMax "OfxParamPropDisplayMax"
#define kOfxParamPropIncrement "OfxParamPropIncrement"                             /* double */
#define kOfxParamPropDigits "OfxParamPropDigits"                                   /* int */
#define kOfxParamPropDimensionLabel "OfxParamPropDimensionLabel"                   /* string x dimensions */
#define kOfxParamPropDoubleType "OfxParamPropDoubleType"                           /* string */
#define kOfxParamPropDefaultCoordinateSystem "OfxParamPropDefaultCoordinateSystem" /* string */
/* bool: the host draws a handle for the point; the string does begin with a k. */
#define kOfxParamPropUseHostOverlayHandle "kOfxParamPropUseHostOverlayHandle"
#define kOfxParamCoordinatesCanonical "OfxParamCoordinatesCanonical"
#define kOfxParamDoubleTypeXYAbsolute "OfxParamDoubleTypeXYAbsolute"

/* Of choices (the value is the index), strings, groups and pages. */
#define kOfxParamPropChoiceOption "OfxParamPropChoiceOption"       /* string xN */
#define kOfxParamPropGroupOpen "OfxParamPropGroupOpen"             /* bool */
#define kOfxParamPropPageChild "OfxParamPropPageChild"             /* string xN */
#define kOfxPluginPropParamPageOrder "OfxPluginPropParamPageOrder" /* string xN, of the parameter set */

/* Of the host. */
#define kOfxParamHostPropSupportsChoiceAnimation "OfxParamHostPropSupportsChoiceAnimation"
#define kOfxParamHostPropSupportsBooleanAnimation "OfxParamHostPropSupportsBooleanAnimation"
}
