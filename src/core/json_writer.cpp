#include "core/json_writer.h"

namespace zeblo::json {

void appendEscaped(std::string& out, std::string_view s) {
    static constexpr char kHex[] = "0123456789abcdef";
    for (char ch : s) {
        const auto c = static_cast<unsigned char>(ch);
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '/': out += "\\/"; break;
            case '\b': out += "\\b"; break;
            case '\f': out += "\\f"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (c < 0x20) {
                    out += "\\u00";
                    out += kHex[c >> 4];
                    out += kHex[c & 0xF];
                } else {
                    out += ch;  // ASCII and UTF-8 bytes as they are
                }
        }
    }
}

void Writer::newline() {
    out_ += '\n';
    out_.append(2 * counts_.size(), ' ');
}

void Writer::beforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (counts_.empty()) return;
    if (counts_.back()++ > 0) out_ += ',';
    if (layout_ == Layout::pretty) newline();
}

void Writer::beginObject() {
    beforeValue();
    out_ += '{';
    counts_.push_back(0);
}

void Writer::beginArray() {
    beforeValue();
    out_ += '[';
    counts_.push_back(0);
}

void Writer::endObject() {
    const bool empty = counts_.back() == 0;
    counts_.pop_back();
    if (layout_ == Layout::pretty && !empty) newline();
    out_ += '}';
}

void Writer::endArray() {
    const bool empty = counts_.back() == 0;
    counts_.pop_back();
    if (layout_ == Layout::pretty && !empty) newline();
    out_ += ']';
}

void Writer::key(std::string_view k) {
    beforeValue();
    out_ += '"';
    appendEscaped(out_, k);
    out_ += layout_ == Layout::pretty ? "\" : " : "\":";
    afterKey_ = true;
}

void Writer::string(std::string_view s) {
    beforeValue();
    out_ += '"';
    appendEscaped(out_, s);
    out_ += '"';
}

void Writer::boolean(bool b) {
    beforeValue();
    out_ += b ? "true" : "false";
}

void Writer::integer(std::int64_t n) {
    beforeValue();
    out_ += std::to_string(n);
}

std::string Writer::take() {
    std::string out = std::move(out_);
    out_.clear();
    counts_.clear();
    afterKey_ = false;
    return out;
}

std::string stringArray(const std::vector<std::string>& items) {
    Writer w;
    w.beginArray();
    for (const auto& item : items) w.string(item);
    w.endArray();
    return w.take();
}

std::string stringObject(const std::vector<std::pair<std::string, std::string>>& members) {
    Writer w;
    w.beginObject();
    for (const auto& [k, v] : members) {
        w.key(k);
        w.string(v);
    }
    w.endObject();
    return w.take();
}

std::string errorObject(std::string_view description) {
    std::string out = "{\"error\": \"";
    appendEscaped(out, description);
    out += "\"}";
    return out;
}

}  // namespace zeblo::json
