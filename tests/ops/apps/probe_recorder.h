// A platform that forwards every operation to a simulated desktop and notes
// the virtual time of each frontmost-application query, so that tests can see
// exactly when a polling loop probed.
#pragma once

#include <vector>

#include "platform/sim/sim_desktop.h"

namespace zeblo::testing {

class ProbeRecorder final : public platform::Platform {
public:
    explicit ProbeRecorder(sim::SimDesktop& desk) : d_(desk) {}

    // Virtual times (seconds) of the frontmost queries, in order.
    const std::vector<double>& probes() const { return probes_; }

    std::optional<platform::RunningApp> frontmostApplication() override {
        probes_.push_back(d_.clock());
        return d_.frontmostApplication();
    }

    platform::Element createApplicationElement(std::int32_t pid) override { return d_.createApplicationElement(pid); }
    platform::Element createSystemWideElement() override { return d_.createSystemWideElement(); }
    platform::AttributeRead copyAttributeValue(const platform::Element& e, std::string_view a) override {
        return d_.copyAttributeValue(e, a);
    }
    platform::NamesRead copyAttributeNames(const platform::Element& e) override { return d_.copyAttributeNames(e); }
    platform::AXError setAttributeValue(const platform::Element& e, std::string_view a,
                                        const platform::SetValue& v) override {
        return d_.setAttributeValue(e, a, v);
    }
    platform::SettableRead isAttributeSettable(const platform::Element& e, std::string_view a) override {
        return d_.isAttributeSettable(e, a);
    }
    bool sameElement(const platform::Element& a, const platform::Element& b) override { return d_.sameElement(a, b); }
    platform::AXError performAction(const platform::Element& e, std::string_view a) override {
        return d_.performAction(e, a);
    }
    platform::NamesRead copyActionNames(const platform::Element& e) override { return d_.copyActionNames(e); }
    bool isProcessTrusted(bool prompt) override { return d_.isProcessTrusted(prompt); }
    platform::EventSource createEventSource(std::int32_t s) override { return d_.createEventSource(s); }
    platform::Event createKeyboardEvent(const platform::EventSource* s, std::uint16_t k, bool down) override {
        return d_.createKeyboardEvent(s, k, down);
    }
    void setEventFlags(const platform::Event& e, std::uint64_t f) override { d_.setEventFlags(e, f); }
    void setEventIntegerField(const platform::Event& e, std::uint32_t f, std::int64_t v) override {
        d_.setEventIntegerField(e, f, v);
    }
    void postEvent(std::uint32_t tap, const platform::Event& e) override { d_.postEvent(tap, e); }
    std::vector<platform::RunningApp> runningApplications() override { return d_.runningApplications(); }
    bool launchApplication(std::string_view name) override { return d_.launchApplication(name); }
    bool activateApplication(const platform::RunningApp& app, std::uint64_t o) override {
        return d_.activateApplication(app, o);
    }
    std::optional<std::vector<platform::PasteboardItem>> pasteboardItems() override { return d_.pasteboardItems(); }
    void clearPasteboard() override { d_.clearPasteboard(); }
    bool setPasteboardString(std::string_view t, std::string_view type) override {
        return d_.setPasteboardString(t, type);
    }
    bool writePasteboardItems(const std::vector<platform::PasteboardItem>& i) override {
        return d_.writePasteboardItems(i);
    }
    void sleep(double s) override { d_.sleep(s); }
    double now() override { return d_.now(); }
    void log(std::string_view line) override { d_.log(line); }
    void retainHandle(platform::HandleKind k, void* raw) noexcept override { d_.retainHandle(k, raw); }
    void releaseHandle(platform::HandleKind k, void* raw) noexcept override { d_.releaseHandle(k, raw); }

private:
    sim::SimDesktop& d_;
    std::vector<double> probes_;
};

}  // namespace zeblo::testing
