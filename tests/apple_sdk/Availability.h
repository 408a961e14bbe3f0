// The SDK's <Availability.h>, for the syntax check only: the newest macOS
// the declarations stand for. The check passes ZEBLO_SDK_VERSION 140500
// (Xcode 15.4, macOS 14.5 SDK) or 150400 (macOS 15.4 SDK); the declarations
// that SDK lacks are left out (see AppKit/AppKit.h).
#pragma once

#ifndef ZEBLO_SDK_VERSION
#define ZEBLO_SDK_VERSION 150400
#endif
#define __MAC_OS_X_VERSION_MAX_ALLOWED ZEBLO_SDK_VERSION
