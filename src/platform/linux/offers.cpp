#include "platform/linux/offers.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>

namespace zeblo::platform::linux_desktop {

namespace {

void putNumber(std::string& out, std::uint64_t n) { out.append(reinterpret_cast<const char*>(&n), sizeof n); }
void putText(std::string& out, std::string_view text) {
    putNumber(out, text.size());
    out.append(text);
}

// Reads what putNumber and putText wrote; fails past the end.
struct Parser {
    std::string_view rest;
    bool number(std::uint64_t& n) {
        if (rest.size() < sizeof n) return false;
        std::memcpy(&n, rest.data(), sizeof n);
        rest.remove_prefix(sizeof n);
        return true;
    }
    bool text(std::string& out) {
        std::uint64_t size = 0;
        if (!number(size) || size > rest.size()) return false;
        out.assign(rest.substr(0, size));
        rest.remove_prefix(size);
        return true;
    }
};

}  // namespace

std::size_t itemSize(int format) { return format == 32 ? 4 : format == 16 ? 2 : 1; }

double monotonicSeconds() {
    using S = std::chrono::duration<double>;
    return std::chrono::duration_cast<S>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Offers textOffers(std::string text) {
    const auto data = std::make_shared<const std::string>(std::move(text));
    Offers offers;
    for (const char* target : {"UTF8_STRING", "text/plain;charset=utf-8", "STRING", "TEXT", "text/plain"}) {
        const std::string_view name = target;
        offers.push_back({target, name == "TEXT" ? "UTF8_STRING" : target, 8, data});
    }
    return offers;
}

std::string entryName(const Offer& offer) {
    if (offer.type == offer.target && offer.format == 8) return offer.target;
    return offer.target + kSeparator + offer.type + kSeparator + std::to_string(offer.format);
}

Offer offerFromEntry(std::string_view name, std::string data) {
    Offer offer{std::string(name), std::string(name), 8, nullptr};
    if (const auto first = name.find(kSeparator); first != std::string_view::npos) {
        const auto second = name.find(kSeparator, first + 1);
        offer.target = name.substr(0, first);
        offer.type = name.substr(first + 1, second - first - 1);
        if (second != std::string_view::npos) {
            const std::string_view format = name.substr(second + 1);
            offer.format = format == "32" ? 32 : format == "16" ? 16 : 8;
        }
    }
    data.resize(data.size() / itemSize(offer.format) * itemSize(offer.format));
    offer.data = std::make_shared<const std::string>(std::move(data));
    return offer;
}

std::string serializeOffers(const Offers& offers) {
    std::string out;
    putNumber(out, offers.size());  // a stream cut short is not taken for a shorter list
    for (const Offer& offer : offers) {
        putText(out, offer.target);
        putText(out, offer.type);
        putNumber(out, static_cast<std::uint64_t>(offer.format));
        putText(out, *offer.data);
    }
    return out;
}

std::optional<Offers> parseOffers(std::string_view bytes) {
    Offers offers;
    Parser in{bytes};
    std::uint64_t count = 0;
    if (!in.number(count)) return std::nullopt;
    for (; count > 0; --count) {
        Offer offer;
        std::uint64_t format = 0;
        std::string data;
        if (!in.text(offer.target) || !in.text(offer.type) || !in.number(format) || !in.text(data)) {
            return std::nullopt;
        }
        if (format != 8 && format != 16 && format != 32) return std::nullopt;
        offer.format = static_cast<int>(format);
        if (data.size() % itemSize(offer.format) != 0) return std::nullopt;
        offer.data = std::make_shared<const std::string>(std::move(data));
        offers.push_back(std::move(offer));
    }
    if (!in.rest.empty()) return std::nullopt;
    return offers;
}

std::optional<std::string> readToEnd(int fd, std::size_t limit, double deadline) {
    std::string out;
    char buffer[1 << 16];
    while (true) {
        const double left = deadline - monotonicSeconds();
        pollfd p{fd, POLLIN, 0};
        if (left <= 0 || poll(&p, 1, static_cast<int>(left * 1000) + 1) <= 0) return std::nullopt;
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n == 0) return out;
        if (n < 0 && errno != EINTR && errno != EAGAIN) return std::nullopt;
        if (n > 0) out.append(buffer, static_cast<std::size_t>(n));
        if (out.size() > limit) return std::nullopt;
    }
}


bool writeAll(int fd, const std::string& data) {
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    std::size_t sent = 0;
    while (sent < data.size()) {
        pollfd p{fd, POLLOUT, 0};
        if (poll(&p, 1, static_cast<int>(kReplySeconds * 1000)) <= 0) return false;
        const ssize_t n = ::write(fd, data.data() + sent, data.size() - sent);
        if (n < 0 && errno != EINTR && errno != EAGAIN) return false;
        if (n > 0) sent += static_cast<std::size_t>(n);
    }
    return true;
}


}  // namespace zeblo::platform::linux_desktop
