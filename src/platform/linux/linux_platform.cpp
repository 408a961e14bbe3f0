// The backend's connection, handles, workspace, pasteboard, sleeping, clock
// and log.
#include "platform/linux/linux_platform.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>

#include "platform/linux/a11y_switch.h"
#include "platform/linux/app_list.h"
#include "platform/linux/bus_batch.h"
#include "platform/linux/detach.h"
#include "platform/linux/wayland_session.h"
#include "platform/linux/x11_desktop.h"
#include "platform/reply_limit.h"
#include "platform/system_log.h"

namespace zeblo::platform::linux_desktop {

namespace {

bool sessionBusReachable() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0') return true;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr) return false;
    struct stat st {};
    return stat((std::string(runtime) + "/bus").c_str(), &st) == 0;
}

// The GLib context libatspi dispatches on, made once and kept for the
// process's life (libatspi keeps using it).
GMainContext* privateContext() {
    static GMainContext* const context = g_main_context_new();
    return context;
}

// Whether the accessibility registry answers a question.
bool registryAnswers() {
    const AccessibleRef desktop = AccessibleRef::adopt(atspi_get_desktop(0));
    if (!desktop) return false;
    Error error;
    atspi_accessible_get_child_count(desktop.get(), out(error));
    return error == nullptr;
}

}  // namespace

namespace {

bool isSet(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0';
}

// A Wayland session when the session says so (XDG_SESSION_TYPE) or, when it
// does not say, when a compositor is named (WAYLAND_DISPLAY); X11 otherwise,
// and when the compositor cannot be reached.
std::unique_ptr<Session> openSession() {
    const char* type = std::getenv("XDG_SESSION_TYPE");
    const std::string_view kind = type != nullptr ? type : "";
    if (kind == "wayland" || (kind != "x11" && isSet("WAYLAND_DISPLAY"))) {
        if (std::unique_ptr<Session> wayland = WaylandSession::open()) return wayland;
    }
    if (!isSet("DISPLAY")) return nullptr;
    return X11Desktop::open();
}

}  // namespace

std::shared_ptr<LinuxPlatform> LinuxPlatform::connect(std::string* why) {
    const auto fail = [why](const char* reason) -> std::shared_ptr<LinuxPlatform> {
        *why = reason;
        return nullptr;
    };
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY")) return fail("neither DISPLAY nor WAYLAND_DISPLAY is set");
    if (!sessionBusReachable()) return fail("the session bus cannot be reached");
    std::unique_ptr<Session> session = openSession();
    if (!session) return fail("the display cannot be opened");
    if (atspi_init() > 1) return fail("the accessibility library cannot start");
    // Every call into an application waits at most the reply limit, from the
    // first call on (no longer grace period for an application just seen).
    atspi_set_timeout(replyLimitMs(), 0);
    // libatspi's signal handling runs on a context of its own, which only
    // drainEvents() iterates: never the host's default context.
    atspi_set_main_context(privateContext());
    if (!registryAnswers()) return fail("the accessibility bus does not answer");
    auto platform = std::make_shared<LinuxPlatform>(Key());
    platform->session_ = std::move(session);
    // Applications that start from now on join the accessibility bus;
    // Chromium-based ones already running without it never do.
    switchAccessibilityOn();
    std::vector<std::int32_t> registered;
    for (const ListedApp& app : listApplications(nullptr)) registered.push_back(app.pid);
    for (const UnreadableProgram& program : chromiumOutside(registered)) {
        platform->log(program.program + " (process " + std::to_string(program.pid) +
                      ") started while accessibility was off and cannot be read: restart it");
    }
    return platform;
}

LinuxPlatform::LinuxPlatform(Key) {}

LinuxPlatform::~LinuxPlatform() = default;

Element LinuxPlatform::wrap(AccessibleRef object, Node::Kind kind, std::shared_ptr<const Survey> survey,
                            std::optional<Sight> sight) {
    if (!object) return Element();
    auto n = std::make_unique<Node>();
    n->kind = kind;
    n->object = std::move(object);
    n->survey = std::move(survey);
    n->sight = sight;
    return handOut<Element>(std::move(n));
}

Sight LinuxPlatform::sightOf(Node& node) {
    if (!node.sight) node.sight = applicationSight(node.object.get());
    return *node.sight;
}

Sight LinuxPlatform::applicationSight(AtspiAccessible* object) {
    const char* bus = object != nullptr ? busOf(object) : nullptr;
    if (bus == nullptr) return Sight::showing;
    AppMemory::Entry* entry = appMemory_.find(bus);
    if (entry != nullptr && entry->toolkit) return sightOfToolkit(entry->toolkit->first, entry->toolkit->second);
    if (entry != nullptr && entry->silent) return Sight::showing;  // not waited on again
    // Not asked yet (listed since): asked now, and kept while it is listed.
    const std::vector<Message> answers = callAll(atspi_get_a11y_bus(), toolkitCalls(bus));
    const char* name = stringAnswer(answers[0]);
    const char* version = stringAnswer(answers[1]);
    if (name == nullptr) return Sight::showing;
    if (entry != nullptr) entry->toolkit.emplace(name, version != nullptr ? version : "");
    return sightOfToolkit(name, version != nullptr ? version : "");
}

const Survey::Item* LinuxPlatform::surveyed(const Node& node) const {
    if (!node.survey || node.survey->generation() != generation_) return nullptr;
    return node.survey->find(node.object.get());
}

const std::shared_ptr<const Survey>& LinuxPlatform::surveyFor(Node& node) {
    if (!node.survey || node.survey->generation() != generation_) {
        node.survey = Survey::take(node.object.get(), generation_);
    }
    return node.survey;
}

Node* LinuxPlatform::node(const Element& element) const noexcept {
    if (!element || element.owner() != this) return nullptr;
    return static_cast<Node*>(element.raw());
}

void LinuxPlatform::drainEvents() {
    for (int i = 0; i < 10000 && g_main_context_iteration(privateContext(), FALSE); ++i) {
    }
}

AccessibleRef LinuxPlatform::findApplication(std::int32_t pid) {
    drainEvents();
    const std::vector<ListedApp> apps = listApplications(nullptr);
    for (std::size_t i = 0; i < apps.size(); ++i) {
        if (apps[i].pid == pid) return applicationObject(apps[i], i);
    }
    return {};
}

Element LinuxPlatform::createApplicationElement(std::int32_t pid) {
    const auto locked = guard();
    auto n = std::make_unique<Node>();
    n->object = findApplication(pid);
    n->kind = n->object ? Node::Kind::accessible : Node::Kind::application;
    if (n->object) n->role = ATSPI_ROLE_APPLICATION;  // known without asking one that may be busy
    n->pid = pid;
    return handOut<Element>(std::move(n));
}

Element LinuxPlatform::createSystemWideElement() {
    const auto locked = guard();
    auto n = std::make_unique<Node>();
    n->kind = Node::Kind::systemWide;
    return handOut<Element>(std::move(n));
}

bool LinuxPlatform::isProcessTrusted(bool /*prompt*/) {
    const auto locked = guard();
    // There is no permission to ask for: the bus either answers or not.
    return registryAnswers();
}

// --- Workspace
// ------------------------------------------------------------------

std::vector<RunningApp> LinuxPlatform::runningApplications() {
    const auto locked = guard();
    drainEvents();
    std::vector<RunningApp> out;
    for (ListedApp& app : listApplications(&appMemory_)) {
        if (app.pid == 0 || !app.name) continue;  // gone meanwhile
        RunningApp r;
        r.pid = app.pid;
        launchNames_.listed(*app.name, app.pid);
        if (!app.name->empty()) r.localizedName = std::move(*app.name);
        // No window: a background helper. One that never answered counts as
        // a regular application.
        r.activationPolicy = app.childCount == 0 ? 1 : 0;
        out.push_back(std::move(r));
    }
    // A Chromium-based application just asked for its content has it a
    // moment later (about 0.1 s): once in its life, the list waits for it.
    if (appMemory_.takeChromiumWoken()) sleep(0.2);
    return out;
}

std::optional<RunningApp> LinuxPlatform::frontmostApplication() {
    const auto locked = guard();
    const std::optional<std::int32_t> pid = session_->activeWindowPid();
    if (!pid) return std::nullopt;
    for (RunningApp& app : runningApplications()) {
        if (app.pid == *pid) return std::move(app);
    }
    // A window of a process that does not take part in accessibility.
    RunningApp app;
    app.pid = *pid;
    std::ifstream comm("/proc/" + std::to_string(*pid) + "/comm");
    std::string name;
    if (std::getline(comm, name) && !name.empty()) app.localizedName = name;
    return app;
}

bool LinuxPlatform::launchApplication(std::string_view name) {
    const auto locked = guard();
    touch();
    const std::string wanted(name);
    if (wanted.empty()) return false;
    for (const RunningApp& app : runningApplications()) {
        if (app.localizedName == wanted) return activateApplication(app, kActivateIgnoringOtherApps);
    }
    std::vector<std::string> command = launchNames_.commandFor(wanted);
    if (!command.empty() && launchDetached(command)) return true;
    return launchDetached({wanted});
}

bool LinuxPlatform::activateApplication(const RunningApp& app, std::uint64_t /*options*/) {
    const auto locked = guard();
    touch();
    return session_->activate(app.pid);
}

// --- Pasteboard: the CLIPBOARD selection
// -------------------------------------------

// Every target of CLIPBOARD is one entry of one item, named by entryName
// (x11_selection.h). Plain text the library sets ("public.utf8-plain-text")
// is offered under the usual text targets.
// A session that can send keys but reach no clipboard leaves it untouched:
// the paste would otherwise press Control-V on whatever the clipboard holds.
bool LinuxPlatform::canReadPasteboard() {
    const auto locked = guard();
    const std::string missing = session_->clipboardMissing();
    if (!missing.empty()) log(missing);
    return missing.empty();
}

std::optional<std::vector<PasteboardItem>> LinuxPlatform::pasteboardItems() {
    const auto locked = guard();
    std::vector<PasteboardItem> items;
    const Offers offers = session_->readClipboard();
    if (offers.empty()) return items;
    PasteboardItem& item = items.emplace_back();
    for (const Offer& offer : offers) {
        item.entries.emplace_back(entryName(offer), Bytes(offer.data->begin(), offer.data->end()));
    }
    return items;
}

void LinuxPlatform::clearPasteboard() {
    const auto locked = guard();
    awaitPaste();
    session_->disown();
}

// A paste sets the text, presses the paste key, pauses and restores the
// clipboard. An application takes the text when it gets to the key event,
// which may be after the pause (GTK 4 asks for it later than GTK 3): the
// clipboard is given up only once a request for its data came after the
// key, or the reply limit has passed since the key.
void LinuxPlatform::awaitPaste() {
    const std::optional<Paste> paste = std::exchange(paste_, std::nullopt);
    if (!paste || !paste->answeredAtKey || !session_->ownsClipboard()) return;
    const double deadline = paste->keyTime + replyLimitMs() / 1000.0;
    constexpr double kSlice = 0.005;
    while (session_->clipboardDataAnswered() == *paste->answeredAtKey) {
        if (now() >= deadline) {
            log("Paste: no application asked for the pasted text within " + std::to_string(replyLimitMs()) +
                " ms of the paste key; the clipboard is restored all the same");
            return;
        }
        session_->serve(kSlice);
    }
    // Some ask for more than one type in a row: a moment more for those.
    session_->serve(0.02);
}

namespace {

// The offers for one entry written to the pasteboard.
void addOffers(Offers& offers, std::string_view type, std::string data) {
    if (type == kPasteboardTypeString) {
        for (Offer& offer : textOffers(std::move(data))) offers.push_back(std::move(offer));
    } else {
        offers.push_back(offerFromEntry(type, std::move(data)));
    }
}

}  // namespace

bool LinuxPlatform::setPasteboardString(std::string_view text, std::string_view type) {
    const auto locked = guard();
    Offers offers;
    addOffers(offers, type, std::string(text));
    const bool owned = session_->own(std::move(offers));
    if (owned) paste_.emplace();
    return owned;
}

bool LinuxPlatform::writePasteboardItems(const std::vector<PasteboardItem>& items) {
    const auto locked = guard();
    Offers offers;
    for (const PasteboardItem& item : items) {
        for (const auto& [type, data] : item.entries) {
            if (data) addOffers(offers, type, std::string(data->begin(), data->end()));
        }
    }
    if (offers.empty()) return true;
    // Served from here at once, and by the holder once it has them.
    if (!session_->own(std::move(offers))) return false;
    return session_->handToHolder();
}

// --- Sleeping, clock, log, handles
// --------------------------------------------------

void LinuxPlatform::sleep(double seconds) {
    if (!(seconds > 0) || seconds > 1e6) return;
    // CLIPBOARD requests are answered while waiting, in slices, so that other
    // threads' operations are not held up for the whole pause.
    constexpr double kSlice = 0.01;
    const double end = now() + seconds;
    for (double left = seconds; left > 0; left = end - now()) {
        const auto locked = guard();
        touch();
        session_->serve(std::min(left, kSlice));
    }
}

double LinuxPlatform::now() {
    using Seconds = std::chrono::duration<double>;
    return std::chrono::duration_cast<Seconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void LinuxPlatform::writeLog(std::string_view line) {
    const auto locked = guard();
    writeSystemLog(line);
}

void LinuxPlatform::retainHandle(HandleKind kind, void* raw) noexcept {
    if (raw == nullptr) return;
    if (kind == HandleKind::element) {
        static_cast<Node*>(raw)->refs.fetch_add(1);
    } else {
        static_cast<KeyEvent*>(raw)->refs.fetch_add(1);
    }
}

void LinuxPlatform::releaseHandle(HandleKind kind, void* raw) noexcept {
    if (raw == nullptr) return;
    // The last release deletes the payload through its owning type.
    if (kind == HandleKind::element) {
        auto* n = static_cast<Node*>(raw);
        if (n->refs.fetch_sub(1) == 1) {
            const auto locked = guard();  // the last reference goes back to libatspi
            const std::unique_ptr<Node> last(n);
        }
    } else {
        auto* e = static_cast<KeyEvent*>(raw);
        if (e->refs.fetch_sub(1) == 1) const std::unique_ptr<KeyEvent> last(e);
    }
}

}  // namespace zeblo::platform::linux_desktop
