// Attribute values: what an accessibility read hands back, told apart by Core
// Foundation type id and turned into the library's `Value`.
//
//   CFString                         -> text (UTF-8)
//   CFBoolean                        -> boolean
//   CFNumber of an integer type      -> 64-bit integer
//   CFNumber of a floating type      -> a value of another kind
//   AXUIElement                      -> element (retained for its handle)
//   CFArray, every entry an element
//     or null (kCFNull or NULL)      -> array of elements (nulls kept)
//   CFArray, every entry a string    -> array of strings
//   empty CFArray                    -> empty array of elements
//   anything else                    -> a value of another kind

#include "platform/macos/mac_platform.h"

namespace zeblo::platform::macos {

namespace {

// What the entries of an array turned out to be.
enum class ArrayKind { elements, strings, mixed };

bool isNullEntry(CFTypeRef entry) {
    return entry == nullptr || CFGetTypeID(entry) == CFNullGetTypeID();
}

ArrayKind classify(CFArrayRef array) {
    const CFIndex count = CFArrayGetCount(array);
    bool allElements = true;
    bool allStrings = true;
    for (CFIndex i = 0; i < count && (allElements || allStrings); ++i) {
        CFTypeRef entry = CFArrayGetValueAtIndex(array, i);
        if (isNullEntry(entry)) {
            allStrings = false;
            continue;
        }
        const CFTypeID type = CFGetTypeID(entry);
        if (type != AXUIElementGetTypeID()) allElements = false;
        if (type != CFStringGetTypeID()) allStrings = false;
    }
    // An empty array passes both tests and counts as an array of elements.
    if (allElements) return ArrayKind::elements;
    if (allStrings) return ArrayKind::strings;
    return ArrayKind::mixed;
}

Element retainElement(CFTypeRef entry, Platform* owner) {
    // The entry is borrowed from its container: the handle gets a reference
    // of its own.
    ScopedCF<CFTypeRef> held = ScopedCF<CFTypeRef>::retain(entry);
    limitReplies(static_cast<AXUIElementRef>(held.get()));
    return Element::adopt(owner, rawHandle(held.release()));
}

Value valueFromArray(CFArrayRef array, Platform* owner) {
    const CFIndex count = CFArrayGetCount(array);
    switch (classify(array)) {
        case ArrayKind::elements: {
            std::vector<Element> elements;
            elements.reserve(static_cast<std::size_t>(count));
            for (CFIndex i = 0; i < count; ++i) {
                CFTypeRef entry = CFArrayGetValueAtIndex(array, i);
                elements.push_back(isNullEntry(entry) ? Element() : retainElement(entry, owner));
            }
            return elements;
        }
        case ArrayKind::strings: {
            std::vector<std::string> strings;
            strings.reserve(static_cast<std::size_t>(count));
            for (CFIndex i = 0; i < count; ++i) {
                strings.push_back(utf8FromCFString(
                    static_cast<CFStringRef>(CFArrayGetValueAtIndex(array, i))));
            }
            return strings;
        }
        case ArrayKind::mixed:
            break;
    }
    return OtherValue{describeCF(array)};
}

Value valueFromNumber(CFNumberRef number) {
    std::int64_t integer = 0;
    // A floating-point number is a kind the library never reads; an integer
    // that does not fit 64 signed bits (a large unsigned value) neither.
    if (CFNumberIsFloatType(number) || !CFNumberGetValue(number, kCFNumberSInt64Type, &integer)) {
        return OtherValue{describeCF(number)};
    }
    return integer;
}

}  // namespace

Value valueFromCF(CFTypeRef object, Platform* owner) {
    if (object == nullptr) return std::monostate{};
    const CFTypeID type = CFGetTypeID(object);
    if (type == CFStringGetTypeID()) return utf8FromCFString(static_cast<CFStringRef>(object));
    if (type == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0;
    }
    if (type == CFNumberGetTypeID()) return valueFromNumber(static_cast<CFNumberRef>(object));
    if (type == AXUIElementGetTypeID()) return retainElement(object, owner);
    if (type == CFArrayGetTypeID()) return valueFromArray(static_cast<CFArrayRef>(object), owner);
    return OtherValue{describeCF(object)};
}

std::vector<std::string> stringsFromCFArray(CFArrayRef array) {
    std::vector<std::string> strings;
    if (array == nullptr) return strings;
    const CFIndex count = CFArrayGetCount(array);
    for (CFIndex i = 0; i < count; ++i) {
        CFTypeRef entry = CFArrayGetValueAtIndex(array, i);
        if (entry != nullptr && CFGetTypeID(entry) == CFStringGetTypeID()) {
            strings.push_back(utf8FromCFString(static_cast<CFStringRef>(entry)));
        }
    }
    return strings;
}

}  // namespace zeblo::platform::macos
