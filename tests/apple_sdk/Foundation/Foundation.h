// Declarations of exactly the Foundation classes, functions and types that the
// macOS backend uses. For the syntax check only (tests/macos/syntax_check.sh);
// each declaration has the signature of the macOS SDK header named beside it.
#pragma once

#include <Availability.h>
#include <CoreFoundation/CoreFoundation.h>

// --- objc/objc.h, NSObjCRuntime.h ----------------------------------------------------
// ZEBLO_SDK_BOOL_IS_BOOL gives Apple silicon's BOOL on any target.
#if defined(__arm64__) || defined(__aarch64__) || defined(ZEBLO_SDK_BOOL_IS_BOOL)
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES ((BOOL)1)
#define NO ((BOOL)0)
#define nil nullptr

typedef long NSInteger;
typedef unsigned long NSUInteger;

#define FOUNDATION_EXPORT extern "C"
#define NS_INLINE static __inline__ __attribute__((always_inline))
#define NS_FORMAT_FUNCTION(F, A) __attribute__((format(__NSString__, F, A)))
#define NS_NO_TAIL_CALL __attribute__((not_tail_called))
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))
#define NS_ENUM(_type, _name) CF_ENUM(_type, _name)
#define NS_OPTIONS(_type, _name) CF_OPTIONS(_type, _name)
#define NS_TYPED_EXTENSIBLE_ENUM __attribute__((swift_wrapper(struct)))
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

// --- os/availability.h: API_AVAILABLE(macos(V)), API_DEPRECATED(MESSAGE, macos(FROM, TO)) -------
#define __API_AVAILABLE_PLATFORM_macos(introduced_) macos, introduced = introduced_
#define __API_DEPRECATED_PLATFORM_macos(introduced_, deprecated_) \
    macos, introduced = introduced_, deprecated = deprecated_
#define API_AVAILABLE(platform_) __attribute__((availability(__API_AVAILABLE_PLATFORM_##platform_)))
#define API_DEPRECATED(message_, platform_) \
    __attribute__((availability(__API_DEPRECATED_PLATFORM_##platform_, message = message_)))

NS_ASSUME_NONNULL_BEGIN

@class NSString;

// --- NSObject.h ---------------------------------------------------------------------------
@protocol NSObject
@end

__attribute__((objc_root_class))
@interface NSObject <NSObject>
+ (instancetype)new;
+ (instancetype)alloc;
- (instancetype)init;
@end

NS_INLINE id _Nullable CFBridgingRelease(CFTypeRef CF_CONSUMED _Nullable X) {
    return (__bridge_transfer id)X;
}

// --- NSObjCRuntime.h ----------------------------------------------------------------------
FOUNDATION_EXPORT void NSLog(NSString* format, ...) NS_FORMAT_FUNCTION(1, 2) NS_NO_TAIL_CALL;

// --- NSEnumerator.h -----------------------------------------------------------------------
typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable* _Nullable itemsPtr;
    unsigned long* _Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)len;
@end

// --- NSString.h ----------------------------------------------------------------------------
@interface NSString : NSObject
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@property(nullable, readonly) const char* UTF8String NS_RETURNS_INNER_POINTER;
@property(readonly) NSUInteger length;
- (BOOL)isEqualToString:(NSString*)aString;
- (BOOL)hasPrefix:(NSString*)str;
- (BOOL)hasSuffix:(NSString*)str;
- (NSString*)stringByAppendingString:(NSString*)aString;
@end

// --- NSPathUtilities.h -----------------------------------------------------------------------
@interface NSString (NSStringPathExtensions)
@property(readonly, copy) NSString* lastPathComponent;
@property(readonly, copy) NSString* stringByDeletingPathExtension;
@property(readonly, copy) NSString* stringByExpandingTildeInPath;
- (NSString*)stringByAppendingPathComponent:(NSString*)str;
@end

// --- NSData.h --------------------------------------------------------------------------------
@interface NSData : NSObject
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes NS_RETURNS_INNER_POINTER;
+ (instancetype)data;
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
@end

// --- NSArray.h -------------------------------------------------------------------------------
@interface NSArray<__covariant ObjectType> : NSObject <NSFastEnumeration>
@property(readonly) NSUInteger count;
// What an array literal @[...] calls.
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)cnt;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)anObject;
+ (instancetype)arrayWithCapacity:(NSUInteger)numItems;
@end

// --- NSException.h ---------------------------------------------------------------------------
@interface NSException : NSObject
@end

// --- NSError.h -------------------------------------------------------------------------------
@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

// --- NSURL.h ---------------------------------------------------------------------------------
@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property(nullable, readonly, copy) NSString* path;
@property(nullable, readonly, copy) NSString* lastPathComponent;
@end

// --- NSFileManager.h -------------------------------------------------------------------------
@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (nullable NSArray<NSString*>*)contentsOfDirectoryAtPath:(NSString*)path error:(NSError**)error;
- (NSString*)displayNameAtPath:(NSString*)path;
@end

// --- NSThread.h ------------------------------------------------------------------------------
@interface NSThread : NSObject
@property(class, readonly) BOOL isMainThread API_AVAILABLE(macos(10.5));
@end

NS_ASSUME_NONNULL_END

// --- dispatch/dispatch.h (which Foundation brings in) ----------------------------------------
#include <dispatch/dispatch.h>
