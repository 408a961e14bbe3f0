// A platform that passes every operation on to a replaceable simulated
// desktop. Tests derive from it to watch an operation. The fuzzer installs it
// once and points it at a fresh desktop for every input: installed backends
// are kept for the life of the process, so installing one desktop per input
// would grow without bound.
#pragma once

#include <memory>

#include "platform/sim/sim_desktop.h"

namespace zeblo::testing {

class ForwardingPlatform : public platform::Platform {
public:
    explicit ForwardingPlatform(std::shared_ptr<sim::SimDesktop> target = nullptr) : target_(std::move(target)) {}
    void setTarget(std::shared_ptr<sim::SimDesktop> target) { target_ = std::move(target); }
    sim::SimDesktop& target() { return *target_; }

    platform::Element createApplicationElement(std::int32_t pid) override {
        return target_->createApplicationElement(pid);
    }
    platform::Element createSystemWideElement() override { return target_->createSystemWideElement(); }
    platform::AttributeRead copyAttributeValue(const platform::Element& e, std::string_view a) override {
        return target_->copyAttributeValue(e, a);
    }
    platform::NamesRead copyAttributeNames(const platform::Element& e) override {
        return target_->copyAttributeNames(e);
    }
    platform::AXError setAttributeValue(const platform::Element& e, std::string_view a,
                                        const platform::SetValue& v) override {
        return target_->setAttributeValue(e, a, v);
    }
    platform::SettableRead isAttributeSettable(const platform::Element& e, std::string_view a) override {
        return target_->isAttributeSettable(e, a);
    }
    bool sameElement(const platform::Element& a, const platform::Element& b) override {
        return target_->sameElement(a, b);
    }
    platform::AXError performAction(const platform::Element& e, std::string_view a) override {
        return target_->performAction(e, a);
    }
    platform::NamesRead copyActionNames(const platform::Element& e) override { return target_->copyActionNames(e); }
    bool isProcessTrusted(bool prompt) override { return target_->isProcessTrusted(prompt); }
    platform::EventSource createEventSource(std::int32_t stateId) override {
        return target_->createEventSource(stateId);
    }
    platform::Event createKeyboardEvent(const platform::EventSource* s, std::uint16_t code, bool down) override {
        return target_->createKeyboardEvent(s, code, down);
    }
    void setEventFlags(const platform::Event& e, std::uint64_t flags) override { target_->setEventFlags(e, flags); }
    void setEventIntegerField(const platform::Event& e, std::uint32_t field, std::int64_t value) override {
        target_->setEventIntegerField(e, field, value);
    }
    void postEvent(std::uint32_t tap, const platform::Event& e) override { target_->postEvent(tap, e); }
    std::optional<platform::RunningApp> frontmostApplication() override { return target_->frontmostApplication(); }
    std::vector<platform::RunningApp> runningApplications() override { return target_->runningApplications(); }
    bool launchApplication(std::string_view name) override { return target_->launchApplication(name); }
    bool activateApplication(const platform::RunningApp& app, std::uint64_t options) override {
        return target_->activateApplication(app, options);
    }
    std::optional<std::vector<platform::PasteboardItem>> pasteboardItems() override {
        return target_->pasteboardItems();
    }
    void clearPasteboard() override { target_->clearPasteboard(); }
    bool setPasteboardString(std::string_view text, std::string_view type) override {
        return target_->setPasteboardString(text, type);
    }
    bool writePasteboardItems(const std::vector<platform::PasteboardItem>& items) override {
        return target_->writePasteboardItems(items);
    }
    void sleep(double seconds) override { target_->sleep(seconds); }
    double now() override { return target_->now(); }
    void writeLog(std::string_view line) override { target_->writeLog(line); }
    // Handles are owned by the desktop that made them and go back to it
    // directly; these are here only to complete the interface.
    void retainHandle(platform::HandleKind kind, void* raw) noexcept override { target_->retainHandle(kind, raw); }
    void releaseHandle(platform::HandleKind kind, void* raw) noexcept override { target_->releaseHandle(kind, raw); }

private:
    std::shared_ptr<sim::SimDesktop> target_;
};

}  // namespace zeblo::testing
