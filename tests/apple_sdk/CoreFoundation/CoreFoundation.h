// Declarations of exactly the Core Foundation types, functions and constants
// that the macOS backend (src/platform/macos) uses, so that its sources can be
// parsed on a machine without the Apple SDK (tests/macos/syntax_check.sh).
// Each declaration has the signature of the macOS SDK header named beside it;
// nothing here is ever linked or run. Add a declaration here only together
// with the backend code that needs it, checked against the SDK header.
#pragma once

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// --- MacTypes.h -------------------------------------------------------------
typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef uint16_t UInt16;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef UInt16 UniChar;
typedef unsigned long UniCharCount;
typedef SInt32 OSStatus;
typedef UInt32 OptionBits;

// --- CFAvailability.h (the enum and option macros, C++ forms) ---------------
#define __CF_ENUM_ATTRIBUTES __attribute__((enum_extensibility(open)))
#define __CF_OPTIONS_ATTRIBUTES __attribute__((flag_enum, enum_extensibility(open)))
#define CF_ENUM(_type, _name) enum __CF_ENUM_ATTRIBUTES _name : _type _name; enum _name : _type
#ifdef __cplusplus
#define CF_OPTIONS(_type, _name) \
    __attribute__((availability(swift, unavailable))) _type _name; enum __CF_OPTIONS_ATTRIBUTES : _name
#else
#define CF_OPTIONS(_type, _name) enum __CF_OPTIONS_ATTRIBUTES _name : _type _name; enum _name : _type
#endif

// --- CFBase.h ----------------------------------------------------------------
#define CF_EXPORT extern
#define CF_INLINE static __inline__ __attribute__((always_inline))
#define CF_BRIDGED_TYPE(T) __attribute__((objc_bridge(T)))
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))
#define CF_CONSUMED __attribute__((cf_consumed))
#define CF_IMPLICIT_BRIDGING_ENABLED _Pragma("clang arc_cf_code_audited begin")
#define CF_IMPLICIT_BRIDGING_DISABLED _Pragma("clang arc_cf_code_audited end")

typedef unsigned long CFTypeID;
typedef signed long CFIndex;
typedef unsigned long CFHashCode;
typedef const void* CFTypeRef;
typedef const struct CF_BRIDGED_TYPE(NSString) __CFString* CFStringRef;
typedef const struct CF_BRIDGED_TYPE(id) __CFAllocator* CFAllocatorRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

CF_INLINE CFRange CFRangeMake(CFIndex loc, CFIndex len) {
    CFRange range;
    range.location = loc;
    range.length = len;
    return range;
}

CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;

CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef cf);
CF_EXPORT CFTypeRef CFRetain(CFTypeRef cf);
CF_EXPORT void CFRelease(CFTypeRef cf);
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef cf);
CF_EXPORT Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2);

CF_EXPORT CFTypeID CFNullGetTypeID(void);

// --- CFString.h ----------------------------------------------------------------
CF_EXPORT CFTypeID CFStringGetTypeID(void);
CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef alloc, const UniChar* chars,
                                                   CFIndex numChars);
CF_EXPORT CFIndex CFStringGetLength(CFStringRef theString);
CF_EXPORT void CFStringGetCharacters(CFStringRef theString, CFRange range, UniChar* buffer);

// --- CFNumber.h ----------------------------------------------------------------
typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFBoolean* CFBooleanRef;
CF_EXPORT const CFBooleanRef kCFBooleanTrue;
CF_EXPORT const CFBooleanRef kCFBooleanFalse;
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);

typedef CF_ENUM(CFIndex, CFNumberType){
    kCFNumberSInt8Type = 1,     kCFNumberSInt16Type = 2,     kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,    kCFNumberFloat32Type = 5,    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,      kCFNumberShortType = 8,      kCFNumberIntType = 9,
    kCFNumberLongType = 10,     kCFNumberLongLongType = 11,  kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,   kCFNumberCFIndexType = 14,   kCFNumberNSIntegerType = 15,
    kCFNumberCGFloatType = 16,  kCFNumberMaxType = 16,
};

typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFNumber* CFNumberRef;
CF_EXPORT CFTypeID CFNumberGetTypeID(void);
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType theType,
                                     const void* valuePtr);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType theType, void* valuePtr);

// --- CFData.h --------------------------------------------------------------------
typedef const struct CF_BRIDGED_TYPE(NSData) __CFData* CFDataRef;
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef theData);

// --- CFArray.h -------------------------------------------------------------------
typedef const struct CF_BRIDGED_TYPE(NSArray) __CFArray* CFArrayRef;
CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef theArray);
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef theArray, CFIndex idx);

// --- CFDictionary.h --------------------------------------------------------------
typedef const void* (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* value1, const void* value2);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void* value);

typedef struct {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
    CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

typedef struct {
    CFIndex version;
    CFDictionaryRetainCallBack retain;
    CFDictionaryReleaseCallBack release;
    CFDictionaryCopyDescriptionCallBack copyDescription;
    CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

typedef const struct CF_BRIDGED_TYPE(NSDictionary) __CFDictionary* CFDictionaryRef;
CF_EXPORT CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys,
                                             const void** values, CFIndex numValues,
                                             const CFDictionaryKeyCallBacks* keyCallBacks,
                                             const CFDictionaryValueCallBacks* valueCallBacks);

// --- CFDate.h ------------------------------------------------------------------------------
typedef double CFTimeInterval;

// --- CFRunLoop.h (the live tests' event tap) ---------------------------------------------------
typedef struct CF_BRIDGED_TYPE(id) __CFRunLoop* CFRunLoopRef;
typedef struct CF_BRIDGED_TYPE(id) __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;
CF_EXPORT const CFRunLoopMode kCFRunLoopDefaultMode;
CF_EXPORT const CFRunLoopMode kCFRunLoopCommonModes;
typedef CF_ENUM(SInt32, CFRunLoopRunResult){
    kCFRunLoopRunFinished = 1,
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4,
};
CF_EXPORT CFRunLoopRef CFRunLoopGetCurrent(void);
CF_EXPORT void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
CF_EXPORT CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                                Boolean returnAfterSourceHandled);

// --- CFMachPort.h ------------------------------------------------------------------------------
typedef struct CF_BRIDGED_TYPE(NSMachPort) __CFMachPort* CFMachPortRef;
CF_EXPORT CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port,
                                                           CFIndex order);

#ifdef __cplusplus
}  // extern "C"
#endif
