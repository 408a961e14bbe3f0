// Element identity: whether two handles refer to the same object of another
// application. Two reads of one child give two nodes around two libatspi
// objects, so identity is the object's D-Bus address (its application's
// unique bus name and its object path), not the node or the object pointer.
#include <cstring>

#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

bool LinuxPlatform::sameElement(const Element& a, const Element& b) {
    const auto locked = guard();
    const Node* x = node(a);
    const Node* y = node(b);
    if (x == nullptr || y == nullptr || x->kind != y->kind) return false;
    if (x == y) return true;
    switch (x->kind) {
        case Node::Kind::systemWide: return true;  // there is one
        case Node::Kind::application:
            if (!x->object || !y->object) return !x->object && !y->object && x->pid == y->pid;
            break;
        case Node::Kind::accessible:
        case Node::Kind::closeButton:  // the close buttons of one window are one
            if (!x->object || !y->object) return false;
            break;
    }
    if (x->object.get() == y->object.get()) return true;
    const char* busX = busOf(x->object.get());
    const char* busY = busOf(y->object.get());
    return busX != nullptr && busY != nullptr && std::strcmp(busX, busY) == 0 &&
           pathOf(x->object.get()) == pathOf(y->object.get());
}

}  // namespace zeblo::platform::linux_desktop
