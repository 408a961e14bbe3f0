// The contents of a clipboard as a list of offers, each a target (an X
// target or a MIME type) with its bytes, and what every clipboard of the
// backend shares: the limits of a save, the text offers the library makes
// for a paste, the names of pasteboard entries, the bytes the library hands a
// clipboard holder, and moving a clipboard's bytes through a pipe. Needs
// nothing of any window system.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zeblo::platform::linux_desktop {

// One target offered on a selection. Data of format 16 and 32 is kept as
// 2- and 4-byte items in the machine's byte order, as on the wire.
struct Offer {
    std::string target;
    std::string type;  // the property type it is sent with
    int format = 8;
    std::shared_ptr<const std::string> data;
};
using Offers = std::vector<Offer>;

// The limits of one save of a clipboard.
inline constexpr std::size_t kTargetLimit = std::size_t{16} << 20;  // bytes of one target
inline constexpr std::size_t kSaveLimit = std::size_t{64} << 20;    // bytes of all targets
inline constexpr double kReplySeconds = 1.0;  // for each answer (and each piece of an INCR transfer)
inline constexpr double kSaveSeconds = 3.0;   // for the whole save

// Seconds on the steady clock.
double monotonicSeconds();
// Reads `fd` (a pipe from a clipboard's owner) to its end: nothing when the
// writer is late (`deadline`, on monotonicSeconds) or gives more than
// `limit` bytes.
std::optional<std::string> readToEnd(int fd, std::size_t limit, double deadline);
// Writes all of `data` to `fd` (a pipe to a pasting application); false when
// the reader takes nothing for kReplySeconds or the pipe breaks.
bool writeAll(int fd, const std::string& data);
// The bytes of one item of data of `format` (8, 16 or 32 bits).
std::size_t itemSize(int format);

// The targets under which the library offers plain text it sets itself:
// UTF8_STRING, text/plain;charset=utf-8, STRING, TEXT and text/plain.
Offers textOffers(std::string text);

// An offer as the type name of a pasteboard entry, and back: the target, and
// when the property type is not the target or the format not 8, the type
// and the format after U+001F separators ("TEXT\x1fUTF8_STRING\x1f8").
inline constexpr char kSeparator = '\x1f';
std::string entryName(const Offer& offer);
Offer offerFromEntry(std::string_view name, std::string data);

// Offers as the bytes the library sends the clipboard holder (their count,
// then each one), and back (nothing when the bytes are not such a list,
// whole).
std::string serializeOffers(const Offers& offers);
std::optional<Offers> parseOffers(std::string_view bytes);

}  // namespace zeblo::platform::linux_desktop
