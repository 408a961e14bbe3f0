// The trace of a simulated desktop and the encodings it uses: pasteboard data
// as text or base64, and text made well-formed for JSON.
#include <array>

#include "core/unicode.h"
#include "platform/sim/sim_state.h"

namespace zeblo::sim {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int sextet(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    if (c == '/') return 63;
    return -1;
}

}  // namespace

std::string base64Encode(const platform::Bytes& data) {
    std::string out;
    out.reserve((data.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 2 < data.size(); i += 3) {
        std::uint32_t v = (data[i] << 16) | (data[i + 1] << 8) | data[i + 2];
        for (int shift = 18; shift >= 0; shift -= 6) out += kAlphabet[(v >> shift) & 63];
    }
    std::size_t rest = data.size() - i;
    if (rest > 0) {
        std::uint32_t v = data[i] << 16;
        if (rest == 2) v |= data[i + 1] << 8;
        out += kAlphabet[(v >> 18) & 63];
        out += kAlphabet[(v >> 12) & 63];
        out += rest == 2 ? kAlphabet[(v >> 6) & 63] : '=';
        out += '=';
    }
    return out;
}

std::optional<platform::Bytes> base64Decode(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    platform::Bytes out;
    out.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        bool last = i + 4 == text.size();
        int pad = 0;
        std::array<int, 4> s{};
        for (int k = 0; k < 4; ++k) {
            char c = text[i + k];
            if (c == '=' && last && k >= 2) {
                ++pad;
                s[k] = 0;
                continue;
            }
            if (pad > 0) return std::nullopt;  // data after padding
            s[k] = sextet(c);
            if (s[k] < 0) return std::nullopt;
        }
        std::uint32_t v = (s[0] << 18) | (s[1] << 12) | (s[2] << 6) | s[3];
        out.push_back(static_cast<std::uint8_t>(v >> 16));
        if (pad < 2) out.push_back(static_cast<std::uint8_t>(v >> 8));
        if (pad < 1) out.push_back(static_cast<std::uint8_t>(v));
    }
    return out;
}

nlohmann::ordered_json dataJson(const std::optional<platform::Bytes>& data) {
    if (!data) return nullptr;
    std::string_view bytes(reinterpret_cast<const char*>(data->data()), data->size());
    if (text::isValidUtf8(bytes)) return std::string(bytes);
    return nlohmann::ordered_json{{"base64", base64Encode(*data)}};
}

std::string traceText(std::string_view text) { return text::decodeUtf8Lossy(text); }

nlohmann::ordered_json SimDesktop::pasteboardJson(const std::vector<SimPasteboardItem>& items) {
    auto out = nlohmann::ordered_json::array();
    for (const auto& item : items) {
        auto obj = nlohmann::ordered_json::object();
        for (const auto& [type, data] : item.entries) obj[traceText(type)] = dataJson(data);
        out.push_back(std::move(obj));
    }
    return out;
}

std::vector<nlohmann::ordered_json> SimDesktop::trace() const {
    std::lock_guard lock(impl_->mu);
    return impl_->trace;
}

std::vector<std::string> SimDesktop::logLines() const {
    std::lock_guard lock(impl_->mu);
    std::vector<std::string> lines;
    for (const auto& entry : impl_->trace)
        if (auto it = entry.find("log"); it != entry.end()) lines.push_back(it->get<std::string>());
    return lines;
}

void SimDesktop::clearTrace() {
    std::lock_guard lock(impl_->mu);
    impl_->trace.clear();
}

std::vector<SimPasteboardItem> SimDesktop::pasteboard() const {
    std::lock_guard lock(impl_->mu);
    return impl_->pasteboard;
}

nlohmann::ordered_json SimDesktop::endRecord() const {
    std::lock_guard lock(impl_->mu);
    nlohmann::ordered_json end;
    end["clock"] = static_cast<double>(impl_->clockMicros) / 1e6;
    end["liveHandles"] = impl_->liveHandles.load();
    end["pasteboard"] = pasteboardJson(impl_->pasteboard);
    return {{"end", std::move(end)}};
}

}  // namespace zeblo::sim
