// Declarations of exactly the AppKit classes, methods and types that the macOS
// backend uses: the workspace, running applications and the pasteboard. For
// the syntax check only (tests/macos/syntax_check.sh); each declaration has the
// signature of the macOS SDK header named beside it. What the macOS 14.5 SDK
// lacks is declared only for a newer one (__MAC_OS_X_VERSION_MAX_ALLOWED,
// ../Availability.h).
#pragma once

#include <Foundation/Foundation.h>
#include <sys/types.h>

NS_ASSUME_NONNULL_BEGIN

@class NSRunningApplication;

// --- NSWorkspace.h ---------------------------------------------------------------------------
API_AVAILABLE(macos(10.15))
@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(nullable, readonly, strong) NSRunningApplication* frontmostApplication;
- (void)openApplicationAtURL:(NSURL*)applicationURL
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^_Nullable)(NSRunningApplication* _Nullable app,
                                                NSError* _Nullable error))completionHandler
    API_AVAILABLE(macos(10.15));
@end

@interface NSWorkspace (NSDeprecated)
- (nullable NSString*)fullPathForApplication:(NSString*)appName
    API_DEPRECATED("Use -[NSWorkspace URLForApplicationWithBundleIdentifier:] instead.", macos(10.0, 11.0));
@end

// --- NSRunningApplication.h --------------------------------------------------------------------
typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions){
    NSApplicationActivateAllWindows = 1 << 0,
    NSApplicationActivateIgnoringOtherApps API_DEPRECATED(
        "ignoringOtherApps is deprecated in macOS 14 and will have no effect.", macos(10.6, 14.0)) = 1 << 1,
};

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy){
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited,
};

@interface NSRunningApplication : NSObject
@property(readonly, getter=isHidden) BOOL hidden;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@property(nullable, readonly, copy) NSString* localizedName;
@property(readonly) pid_t processIdentifier;
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(nullable, readonly, copy) NSURL* executableURL;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@end

@interface NSWorkspace (NSWorkspaceRunningApplications)
@property(readonly, copy) NSArray<NSRunningApplication*>* runningApplications;
@end

// --- NSApplication.h ---------------------------------------------------------------------------
@interface NSApplication : NSObject
- (void)yieldActivationToApplication:(NSRunningApplication*)application API_AVAILABLE(macos(14.0));
@end

extern "C" __kindof NSApplication* _Null_unspecified NSApp;

// --- NSPasteboard.h ----------------------------------------------------------------------------
typedef NSString* NSPasteboardType NS_TYPED_EXTENSIBLE_ENUM;

#if __MAC_OS_X_VERSION_MAX_ALLOWED >= 150400
typedef NS_ENUM(NSInteger, NSPasteboardAccessBehavior){
    NSPasteboardAccessBehaviorDefault = 0,
    NSPasteboardAccessBehaviorAsk,
    NSPasteboardAccessBehaviorAlwaysAllow,
    NSPasteboardAccessBehaviorAlwaysDeny,
} API_AVAILABLE(macos(15.4));
#endif

@protocol NSPasteboardWriting <NSObject>
@end
@protocol NSPasteboardReading <NSObject>
@end

@class NSPasteboardItem;

@interface NSPasteboard : NSObject
@property(class, readonly, strong) NSPasteboard* generalPasteboard;
- (NSInteger)clearContents;
- (BOOL)writeObjects:(NSArray<id<NSPasteboardWriting>>*)objects;
@property(nullable, readonly, copy) NSArray<NSPasteboardItem*>* pasteboardItems;
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)dataType;
@property(readonly) NSInteger changeCount;
@property(nullable, readonly, copy) NSArray<NSPasteboardType>* types;
#if __MAC_OS_X_VERSION_MAX_ALLOWED >= 150400
@property(readonly) NSPasteboardAccessBehavior accessBehavior API_AVAILABLE(macos(15.4));
#endif
@end

// --- NSPasteboardItem.h ------------------------------------------------------------------------
@interface NSPasteboardItem : NSObject <NSPasteboardWriting, NSPasteboardReading>
@property(readonly, copy) NSArray<NSPasteboardType>* types;
- (BOOL)setData:(NSData*)data forType:(NSPasteboardType)type;
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)type;
- (nullable NSData*)dataForType:(NSPasteboardType)type;
@end

NS_ASSUME_NONNULL_END
