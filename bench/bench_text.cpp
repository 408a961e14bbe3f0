// The loose name match that picks applications and recognises window titles:
// short application names and 200-character window titles, ASCII and not.
// A focus wait runs it twice per probe, twenty probes a second; the window
// lookup runs it once per window.
#include <benchmark/benchmark.h>

#include <string>

#include "core/unicode.h"

namespace {

// Unicode scalars in UTF-8 text (every byte that is not a continuation byte).
std::size_t scalars(const std::string& s) {
    std::size_t n = 0;
    for (unsigned char c : s) n += (c & 0xC0) != 0x80;
    return n;
}

// A title of exactly `length` characters made by repeating `unit`, then `tail`.
std::string title(const std::string& unit, std::size_t length, const std::string& tail) {
    std::string s;
    while (scalars(s) + scalars(unit) + scalars(tail) <= length) s += unit;
    s += tail;
    while (scalars(s) < length) s += ' ';
    return s;
}

void runMatch(benchmark::State& state, const std::string& candidate, const std::string& wanted, bool expected) {
    if (zeblo::text::looseMatch(candidate, wanted) != expected) {
        state.SkipWithError("unexpected match result");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(zeblo::text::looseMatch(candidate, wanted));
    state.SetLabel(std::to_string(scalars(candidate)) + " chars");
}

void BM_SoftMatch_ShortAscii(benchmark::State& state) { runMatch(state, "Activity Monitor", "activity mon", true); }

void BM_SoftMatch_ShortAsciiMiss(benchmark::State& state) { runMatch(state, "Mail", "Mailbox", false); }

void BM_SoftMatch_ShortUnicode(benchmark::State& state) {
    // Composed candidate, decomposed wanted text, a no-break space between.
    runMatch(state, "Caf\xc3\xa9\xc2\xa0" "Cr\xc3\xa8me", "cafe\xcc\x81" "cre\xcc\x80me", true);
}

void BM_SoftMatch_LongAscii(benchmark::State& state) {
    // The wanted text sits at the very end of a 200-character title.
    runMatch(state, title("Quarterly Report Draft ", 200, "Inbox - 3 unread"), "inbox - 3 UNREAD", true);
}

void BM_SoftMatch_LongAsciiMiss(benchmark::State& state) {
    runMatch(state, title("Quarterly Report Draft ", 200, ""), "weekly summary", false);
}

void BM_SoftMatch_LongUnicode(benchmark::State& state) {
    // Accented Latin, Greek and CJK with ideographic spaces.
    runMatch(state, title("R\xc3\xa9sum\xc3\xa9 \xce\x9b\xce\xbf\xce\xb3\xce\xb9\xcf\x83\xcf\x84\xce\xae\xcf\x82\xe3\x80\x80\xe6\x96\x87\xe6\x9b\xb8 ", 200, "Bo\xc3\xaete"),
             "boi\xcc\x82te", true);
}

void BM_SoftMatch_LongUnicodeMiss(benchmark::State& state) {
    runMatch(state, title("R\xc3\xa9sum\xc3\xa9 \xce\x9b\xce\xbf\xce\xb3\xce\xb9\xcf\x83\xcf\x84\xce\xae\xcf\x82\xe3\x80\x80\xe6\x96\x87\xe6\x9b\xb8 ", 200, ""),
             "r\xc3\xa9sum\xc3\xa9s", false);
}

}  // namespace

BENCHMARK(BM_SoftMatch_ShortAscii);
BENCHMARK(BM_SoftMatch_ShortAsciiMiss);
BENCHMARK(BM_SoftMatch_ShortUnicode);
BENCHMARK(BM_SoftMatch_LongAscii);
BENCHMARK(BM_SoftMatch_LongAsciiMiss);
BENCHMARK(BM_SoftMatch_LongUnicode);
BENCHMARK(BM_SoftMatch_LongUnicodeMiss);
