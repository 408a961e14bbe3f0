// Declarations of exactly the ApplicationServices parts that the macOS backend
// uses: accessibility elements and the trust check (HIServices) and keyboard
// events (CoreGraphics). For the syntax check only (tests/macos/syntax_check.sh);
// each declaration has the signature of the macOS SDK header named beside it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

// --- CoreGraphics: CGBase.h ------------------------------------------------------
#define CG_EXTERN extern
#define CG_AVAILABLE_STARTING(...)

CF_IMPLICIT_BRIDGING_ENABLED

// --- HIServices: AXError.h -----------------------------------------------------------
typedef CF_ENUM(SInt32, AXError){
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorIllegalArgument = -25201,
    kAXErrorInvalidUIElement = -25202,
    kAXErrorInvalidUIElementObserver = -25203,
    kAXErrorCannotComplete = -25204,
    kAXErrorAttributeUnsupported = -25205,
    kAXErrorActionUnsupported = -25206,
    kAXErrorNotificationUnsupported = -25207,
    kAXErrorNotImplemented = -25208,
    kAXErrorNotificationAlreadyRegistered = -25209,
    kAXErrorNotificationNotRegistered = -25210,
    kAXErrorAPIDisabled = -25211,
    kAXErrorNoValue = -25212,
    kAXErrorParameterizedAttributeUnsupported = -25213,
    kAXErrorNotEnoughPrecision = -25214,
};

// --- HIServices: AXUIElement.h ---------------------------------------------------------
extern Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options);
extern CFStringRef kAXTrustedCheckOptionPrompt;

typedef const struct CF_BRIDGED_TYPE(id) __AXUIElement* AXUIElementRef;

extern CFTypeID AXUIElementGetTypeID(void);

// --- CoreGraphics geometry and HIServices: AXValue.h ------------------------------------
typedef double CGFloat;
struct CGPoint { CGFloat x; CGFloat y; };
typedef struct CGPoint CGPoint;
struct CGSize { CGFloat width; CGFloat height; };
typedef struct CGSize CGSize;
struct CGRect { CGPoint origin; CGSize size; };
typedef struct CGRect CGRect;
typedef const struct CF_BRIDGED_TYPE(id) __AXValue* AXValueRef;
typedef uint32_t AXValueType;
enum { kAXValueTypeCGPoint = 1, kAXValueTypeCGSize = 2, kAXValueTypeCGRect = 3, kAXValueTypeCFRange = 4,
       kAXValueTypeAXError = 5, kAXValueTypeIllegal = 0 };
extern CFTypeID AXValueGetTypeID(void);
extern AXValueType AXValueGetType(AXValueRef value);
extern Boolean AXValueGetValue(AXValueRef value, AXValueType theType, void* valuePtr);
extern AXError AXUIElementCopyAttributeNames(AXUIElementRef element,
                                             CFArrayRef* CF_RETURNS_RETAINED names);
extern AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                             CFTypeRef* CF_RETURNS_RETAINED value);
extern AXError AXUIElementIsAttributeSettable(AXUIElementRef element, CFStringRef attribute,
                                              Boolean* settable);
extern AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                            CFTypeRef value);
extern AXError AXUIElementCopyActionNames(AXUIElementRef element,
                                          CFArrayRef* CF_RETURNS_RETAINED names);
extern AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action);
extern AXUIElementRef AXUIElementCreateApplication(pid_t pid);
extern AXUIElementRef AXUIElementCreateSystemWide(void);
extern AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds);
extern AXError AXUIElementGetPid(AXUIElementRef element, pid_t* pid);

// --- CoreGraphics: CGRemoteOperation.h ---------------------------------------------------
typedef uint16_t CGKeyCode;

// --- CoreGraphics: CGEventTypes.h ----------------------------------------------------------
typedef struct CF_BRIDGED_TYPE(id) __CGEvent* CGEventRef;

typedef CF_OPTIONS(uint64_t, CGEventFlags){
    kCGEventFlagMaskAlphaShift = 0x00010000,
    kCGEventFlagMaskShift = 0x00020000,
    kCGEventFlagMaskControl = 0x00040000,
    kCGEventFlagMaskAlternate = 0x00080000,
    kCGEventFlagMaskCommand = 0x00100000,
    kCGEventFlagMaskHelp = 0x00400000,
    kCGEventFlagMaskSecondaryFn = 0x00800000,
    kCGEventFlagMaskNumericPad = 0x00200000,
    kCGEventFlagMaskNonCoalesced = 0x00000100,
};

// Only the fields the backend could name; the library writes field 127,
// which has no constant, through a cast.
typedef CF_ENUM(uint32_t, CGEventField){
    kCGKeyboardEventAutorepeat = 8,
    kCGKeyboardEventKeycode = 9,
    kCGKeyboardEventKeyboardType = 10,
    kCGEventSourceUserData = 42,
};

typedef CF_ENUM(uint32_t, CGEventTapLocation){
    kCGHIDEventTap = 0,
    kCGSessionEventTap,
    kCGAnnotatedSessionEventTap,
};

typedef struct CF_BRIDGED_TYPE(id) __CGEventSource* CGEventSourceRef;

// Event taps (the live tests').
typedef CF_ENUM(uint32_t, CGEventType){
    kCGEventNull = 0,
    kCGEventKeyDown = 10,
    kCGEventKeyUp = 11,
    kCGEventFlagsChanged = 12,
    kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
    kCGEventTapDisabledByUserInput = 0xFFFFFFFF,
};
typedef uint64_t CGEventMask;
#define CGEventMaskBit(eventType) ((CGEventMask)1 << (eventType))
typedef CF_ENUM(uint32_t, CGEventTapPlacement){
    kCGHeadInsertEventTap = 0,
    kCGTailAppendEventTap,
};
typedef CF_ENUM(uint32_t, CGEventTapOptions){
    kCGEventTapOptionDefault = 0x00000000,
    kCGEventTapOptionListenOnly = 0x00000001,
};
typedef struct __CGEventTapProxy* CGEventTapProxy;
typedef CGEventRef _Nullable (*CGEventTapCallBack)(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                                   void* _Nullable userInfo);

typedef CF_ENUM(int32_t, CGEventSourceStateID){
    kCGEventSourceStatePrivate = -1,
    kCGEventSourceStateCombinedSessionState = 0,
    kCGEventSourceStateHIDSystemState = 1,
};

typedef uint32_t CGEventSourceKeyboardType;

// --- CoreGraphics: CGEventSource.h ----------------------------------------------------------
CG_EXTERN CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID stateID)
    CG_AVAILABLE_STARTING(10.4);
CG_EXTERN CGEventSourceKeyboardType CGEventSourceGetKeyboardType(CGEventSourceRef source)
    CG_AVAILABLE_STARTING(10.4);

// --- CoreGraphics: CGEvent.h ------------------------------------------------------------------
CG_EXTERN CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode virtualKey,
                                                bool keyDown) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN void CGEventSetFlags(CGEventRef event, CGEventFlags flags) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, int64_t value)
    CG_AVAILABLE_STARTING(10.4);
CG_EXTERN void CGEventPost(CGEventTapLocation tap, CGEventRef event) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN CGEventType CGEventGetType(CGEventRef event) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN CGEventFlags CGEventGetFlags(CGEventRef event) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN CGEventSourceRef CGEventCreateSourceFromEvent(CGEventRef event) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN void CGEventKeyboardSetUnicodeString(CGEventRef event, UniCharCount stringLength,
                                               const UniChar* unicodeString) CG_AVAILABLE_STARTING(10.4);
CG_EXTERN bool CGPreflightPostEventAccess(void) CG_AVAILABLE_STARTING(10.15);
CG_EXTERN int64_t CGEventGetIntegerValueField(CGEventRef _Nullable event, CGEventField field)
    CG_AVAILABLE_STARTING(10.4);
CG_EXTERN CFMachPortRef _Nullable CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place,
                                                   CGEventTapOptions options, CGEventMask eventsOfInterest,
                                                   CGEventTapCallBack callback, void* _Nullable userInfo)
    CG_AVAILABLE_STARTING(10.4);
CG_EXTERN void CGEventTapEnable(CFMachPortRef tap, bool enable) CG_AVAILABLE_STARTING(10.4);

CF_IMPLICIT_BRIDGING_DISABLED

#ifdef __cplusplus
}  // extern "C"
#endif
