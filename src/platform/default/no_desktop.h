// The backend when no desktop can be reached (no display, no session bus, no
// accessibility bus, or a build without a desktop backend): no applications,
// no frontmost application, no elements, no clipboard. Reading finds
// nothing; acting fails, with the reason in one log line where the reason is
// not plain already: a key cannot be sent, an application not launched, so
// typing, a paste, a chord or a launch answers false rather than pretend.
// It keeps nothing and takes no lock; its pauses are real.
#pragma once

#include <string>

#include "platform/platform.h"

namespace zeblo::platform {

class NoDesktop final : public Platform {
public:
    // `why` says why no desktop can be reached ("neither DISPLAY nor
    // WAYLAND_DISPLAY is set").
    explicit NoDesktop(std::string why) : why_(std::move(why)) {}

    Element createApplicationElement(std::int32_t) override { return {}; }
    Element createSystemWideElement() override { return {}; }
    AttributeRead copyAttributeValue(const Element&, std::string_view) override { return {kAXErrorAPIDisabled, {}}; }
    NamesRead copyAttributeNames(const Element&) override { return {kAXErrorAPIDisabled, std::nullopt}; }
    AXError setAttributeValue(const Element&, std::string_view, const SetValue&) override { return kAXErrorAPIDisabled; }
    SettableRead isAttributeSettable(const Element&, std::string_view) override { return {kAXErrorAPIDisabled, false}; }
    bool sameElement(const Element&, const Element&) override { return false; }

    AXError performAction(const Element&, std::string_view) override { return kAXErrorAPIDisabled; }
    NamesRead copyActionNames(const Element&) override { return {kAXErrorAPIDisabled, std::nullopt}; }
    bool isProcessTrusted(bool) override { return false; }

    EventSource createEventSource(std::int32_t) override;
    Event createKeyboardEvent(const EventSource* source, std::uint16_t keyCode, bool keyDown) override;
    void setEventFlags(const Event&, std::uint64_t) override {}
    void setEventIntegerField(const Event&, std::uint32_t, std::int64_t) override {}
    void postEvent(std::uint32_t, const Event&) override {}

    std::optional<RunningApp> frontmostApplication() override { return std::nullopt; }
    std::vector<RunningApp> runningApplications() override { return {}; }
    bool launchApplication(std::string_view name) override;
    bool activateApplication(const RunningApp&, std::uint64_t) override { return false; }

    std::optional<std::vector<PasteboardItem>> pasteboardItems() override { return std::nullopt; }
    void clearPasteboard() override {}
    // Left untouched: the paste then fails at its key.
    bool setPasteboardString(std::string_view, std::string_view) override { return false; }
    bool writePasteboardItems(const std::vector<PasteboardItem>&) override { return false; }

    void sleep(double seconds) override;
    double now() override;
    void writeLog(std::string_view line) override;

    // Nothing is ever handed out.
    void retainHandle(HandleKind, void*) noexcept override {}
    void releaseHandle(HandleKind, void*) noexcept override {}

private:
    // Logs that `what` cannot be done, and why.
    void refuse(std::string_view what);
    std::string why_;
};

}  // namespace zeblo::platform
