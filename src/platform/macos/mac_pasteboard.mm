// The general pasteboard (AppKit: NSPasteboard.h, NSPasteboardItem.h).
//
// Saved items are written back as new NSPasteboardItems: an item read from a
// pasteboard belongs to it and cannot be written again.

#include "platform/macos/mac_platform.h"

namespace zeblo::platform::macos {

namespace {

Bytes bytesOf(NSData* data) {
    const auto* first = static_cast<const std::uint8_t*>(data.bytes);
    if (first == nullptr) return {};
    return Bytes(first, first + data.length);
}

PasteboardItem readItem(NSPasteboardItem* item) {
    PasteboardItem read;
    for (NSPasteboardType type in item.types) {
        std::optional<Bytes> bytes;
        // No data: the item could not provide this type any more.
        if (NSData* data = [item dataForType:type]) bytes = bytesOf(data);
        read.entries.emplace_back(utf8FromCFString((__bridge CFStringRef)type), std::move(bytes));
    }
    return read;
}

// A new item holding a copy of every type that has data; nil when none has.
NSPasteboardItem* makeItem(const PasteboardItem& item) {
    NSPasteboardItem* made = [[NSPasteboardItem alloc] init];
    bool filled = false;
    for (const auto& [type, bytes] : item.entries) {
        if (!bytes) continue;
        NSString* typeName = makeNSString(type);
        if (typeName == nil) continue;
        NSData* data = [NSData dataWithBytes:bytes->data() length:bytes->size()];
        if ([made setData:data forType:typeName] != NO) filled = true;
    }
    return filled ? made : nil;
}

}  // namespace

bool MacPlatform::canReadPasteboard() {
    return guarded(false, [&] {
        if (@available(macOS 15.4, *)) {
            @autoreleasepool {
                // The system may ask the user when an application reads the
                // general pasteboard by itself; it does not ask, and lets the
                // read through, only when the user chose "always allow" for
                // the host. "default" (never asked yet) and "ask" would show
                // the alert, "always deny" would give nothing back.
                return NSPasteboard.generalPasteboard.accessBehavior == NSPasteboardAccessBehaviorAlwaysAllow;
            }
        }
        return true;
    });
}

std::optional<std::vector<PasteboardItem>> MacPlatform::pasteboardItems() {
    using Items = std::optional<std::vector<PasteboardItem>>;
    return guarded(Items(), [&]() -> Items {
        @autoreleasepool {
            NSArray<NSPasteboardItem*>* items = NSPasteboard.generalPasteboard.pasteboardItems;
            if (items == nil) return std::nullopt;
            std::vector<PasteboardItem> read;
            read.reserve(items.count);
            for (NSPasteboardItem* item in items) read.push_back(readItem(item));
            return read;
        }
    });
}

void MacPlatform::clearPasteboard() {
    guardedVoid([&] {
        @autoreleasepool {
            [NSPasteboard.generalPasteboard clearContents];
        }
    });
}

bool MacPlatform::setPasteboardString(std::string_view text, std::string_view type) {
    return guarded(false, [&] {
        @autoreleasepool {
            NSString* string = makeNSString(text);
            NSString* typeName = makeNSString(type);
            if (string == nil || typeName == nil) return false;
            // The library passes "public.utf8-plain-text", NSPasteboardTypeString.
            return [NSPasteboard.generalPasteboard setString:string forType:typeName] != NO;
        }
    });
}

bool MacPlatform::writePasteboardItems(const std::vector<PasteboardItem>& items) {
    return guarded(false, [&] {
        @autoreleasepool {
            NSMutableArray<NSPasteboardItem*>* objects =
                [NSMutableArray arrayWithCapacity:items.size()];
            for (const PasteboardItem& item : items) {
                if (NSPasteboardItem* made = makeItem(item)) [objects addObject:made];
            }
            // Nothing with data to put back: the pasteboard stays as it is.
            if (objects.count == 0) return true;
            return [NSPasteboard.generalPasteboard writeObjects:objects] != NO;
        }
    });
}

}  // namespace zeblo::platform::macos
