// Declarations of exactly the Carbon parts that the macOS backend and its
// live tests use: keyboard layouts through the input source manager
// (HIToolbox) and UCKeyTranslate (CoreServices). For the syntax check only
// (tests/macos/syntax_check.sh); each declaration has the signature of the
// macOS SDK header named beside it.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#ifdef __cplusplus
extern "C" {
#endif

// --- MacErrors.h ----------------------------------------------------------------------
enum { noErr = 0 };

// --- CoreServices: UnicodeUtilities.h --------------------------------------------------
typedef struct UCKeyboardLayout UCKeyboardLayout;
enum { kUCKeyActionDown = 0, kUCKeyActionUp = 1, kUCKeyActionAutoKey = 2, kUCKeyActionDisplay = 3 };
enum { kUCKeyTranslateNoDeadKeysBit = 0 };
enum { kUCKeyTranslateNoDeadKeysMask = 1L << kUCKeyTranslateNoDeadKeysBit };
extern OSStatus UCKeyTranslate(const UCKeyboardLayout* keyLayoutPtr, UInt16 virtualKeyCode, UInt16 keyAction,
                               UInt32 modifierKeyState, UInt32 keyboardType, OptionBits keyTranslateOptions,
                               UInt32* deadKeyState, UniCharCount maxStringLength,
                               UniCharCount* actualStringLength, UniChar unicodeString[]);

// --- HIToolbox: TextInputSources.h ----------------------------------------------------
typedef struct __TISInputSource* TISInputSourceRef;
extern const CFStringRef kTISPropertyInputSourceID;
extern const CFStringRef kTISPropertyUnicodeKeyLayoutData;
extern void* TISGetInputSourceProperty(TISInputSourceRef inputSource, CFStringRef propertyKey);
extern TISInputSourceRef TISCopyCurrentKeyboardLayoutInputSource(void);
// The live tests' layout switch.
extern const CFStringRef kTISPropertyInputSourceIsEnabled;
extern TISInputSourceRef TISCopyCurrentKeyboardInputSource(void);
extern CFArrayRef TISCreateInputSourceList(CFDictionaryRef properties, Boolean includeAllInstalled);
extern OSStatus TISSelectInputSource(TISInputSourceRef inputSource);
extern OSStatus TISEnableInputSource(TISInputSourceRef inputSource);
extern OSStatus TISDisableInputSource(TISInputSourceRef inputSource);

#ifdef __cplusplus
}  // extern "C"
#endif
