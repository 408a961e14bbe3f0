#include "ops/windows/window_error.h"

#include <string_view>

namespace zeblo {
namespace {

// A case's text: the words before the name it carries and after it (a case
// without a name has only the first).
struct Text {
    std::string_view before;
    std::string_view after = {};
};

// The descriptions and the short texts, by case number.
struct Texts {
    Text description;
    Text shortText;
};
constexpr Texts kTexts[] = {
    {{"Application '", "' not found. Check if the app is running."}, {"Application '", "' not found"}},
    {{"Window '", "' not found. Check if the window exists and is visible."}, {"Window '", "' not found"}},
    {{"Button '", "' not found in window"}, {"Button '", "' not found"}},
    {{"Checkbox '", "' not found in window"}, {"Checkbox '", "' not found"}},
    {{"No frontmost application"}, {"No frontmost application"}},
    {{"Failed to perform click action"}, {"Click action failed"}},
    {{"Failed to close window"}, {"Close action failed"}},
    {{"Operation timed out"}, {"Operation timed out"}},
};
static_assert(std::size(kTexts) == std::size(kWindowErrorCases));

std::string written(const Text& text, bool named, const std::string& name) {
    std::string out(text.before);
    if (named) {
        out += name;
        out += text.after;
    }
    return out;
}

}  // namespace

std::string WindowError::description() const {
    return written(kTexts[caseNumber()].description, hasPayload(), name());
}

std::string WindowError::shortText() const { return written(kTexts[caseNumber()].shortText, hasPayload(), name()); }

}  // namespace zeblo
