// Exported functions of the menus area and their bodies.
#include "capi/bodies.h"
#include "capi/marshal.h"
#include "ops/menus/menu_ops.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {

const char* getAppMenus(const char* appName) noexcept {
    // The snapshot is finished JSON text already; a failure becomes the error
    // object.
    return runJson("{}", false, [&] { return MenuOps::getAppMenusJSON(decodeString(appName)); });
}

bool menuClick(const char* appName, const char* const* menuPath, std::int32_t menuPathCount) noexcept {
    return runLogged("zeblo_menu_click", [&] {
        MenuOps::menuClick(decodeString(appName), decodeTitles(menuPath, menuPathCount));
    });
}

bool menuItemExists(const char* appName, const char* const* menuPath, std::int32_t menuPathCount) noexcept {
    return runQuiet([&] {
        return MenuOps::menuItemExists(decodeString(appName), decodeTitles(menuPath, menuPathCount));
    });
}

bool menuItemEnabled(const char* appName, const char* const* menuPath, std::int32_t menuPathCount) noexcept {
    return runQuiet([&] {
        return MenuOps::menuItemEnabled(decodeString(appName), decodeTitles(menuPath, menuPathCount));
    });
}

}  // namespace zeblo::capi

extern "C" {

const char* zeblo_get_app_menus(const char* appName) { return zeblo::capi::getAppMenus(appName); }

bool zeblo_menu_click(const char* appName, const char* const* menuPath, int32_t menuPathCount) {
    return zeblo::capi::menuClick(appName, menuPath, menuPathCount) & 1;
}

bool zeblo_menu_item_exists(const char* appName, const char* const* menuPath, int32_t menuPathCount) {
    return zeblo::capi::menuItemExists(appName, menuPath, menuPathCount) & 1;
}

bool zeblo_menu_item_enabled(const char* appName, const char* const* menuPath, int32_t menuPathCount) {
    return zeblo::capi::menuItemEnabled(appName, menuPath, menuPathCount) & 1;
}

}  // extern "C"
