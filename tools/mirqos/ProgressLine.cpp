#include "tools/mirqos/ProgressLine.h"

#include <algorithm>

#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

constexpr const char* kGap = "  ";
constexpr std::size_t kLongestBar = 30;
constexpr std::size_t kShortestBar = 8;
// a shorter rest of a name says nothing
constexpr std::size_t kShortestName = 8;
// rates of the first moments are noise, and so are far ends computed from them
constexpr double kExperience = 1.0;
constexpr double kFarthestEnd = 99.0 * 3600.0;

bool HasTotal(const ProgressState& state) {
    return state.done && state.total && *state.total > 0;
}

double DoneShare(const ProgressState& state) {
    return std::min(1.0, static_cast<double>(*state.done) / static_cast<double>(*state.total));
}

std::string Figures(const ProgressState& state) {
    const auto elapsed = static_cast<std::uint64_t>(state.seconds);
    if (!state.done) {
        return (state.total ? FormatSize(*state.total) + kGap : "") + FormatDuration(elapsed) +
               " so far";
    }
    std::string text;
    if (HasTotal(state)) {
        // rounded down: 100 % is said only of what is complete
        text += std::to_string(static_cast<int>(DoneShare(state) * 100.0)) + "%" + kGap;
    }
    text += FormatSize(*state.done);
    if (HasTotal(state)) {
        text += " of " + FormatSize(*state.total);
    }
    if (state.seconds < kExperience) {
        return text;
    }
    const double rate = static_cast<double>(*state.done) / state.seconds;
    text += kGap + FormatSize(static_cast<std::uint64_t>(rate)) + "/s";
    if (HasTotal(state) && rate > 0) {
        const double left = (1.0 - DoneShare(state)) * static_cast<double>(*state.total) / rate;
        if (left < kFarthestEnd) {
            text += kGap + FormatDuration(static_cast<std::uint64_t>(left + 0.5)) + " left";
        }
    } else if (!HasTotal(state)) {
        text += kGap + FormatDuration(elapsed);
    }
    return text;
}

std::string Bar(double share, std::size_t length) {
    const auto full = static_cast<std::size_t>(share * static_cast<double>(length));
    return "[" + std::string(full, '#') + std::string(length - full, '-') + "]";
}

/// The first `count` characters.
std::string Cut(const std::string& text, std::size_t count) {
    const std::size_t all = CountCharacters(text);
    if (all <= count) {
        return text;
    }
    return text.substr(0, text.size() - LastCharacters(text, all - count).size());
}

}  // namespace

std::string FormatProgressBar(const ProgressState& state, std::size_t columns) {
    const std::size_t room = columns > 0 ? columns - 1 : 0;
    const std::string figures = kGap + Figures(state);
    std::string name = Printable(state.name);
    const std::size_t fixed = state.phase.size() + 1 + CountCharacters(figures);
    if (fixed + CountCharacters(name) > room) {
        const std::size_t rest = room > fixed + 3 ? room - fixed - 3 : 0;
        name = rest < kShortestName ? "" : "..." + std::string(LastCharacters(name, rest));
    }
    std::string line = state.phase + " " + name;
    const std::size_t used = fixed + CountCharacters(name);
    const std::size_t frame = std::string(kGap).size() + 2;
    if (HasTotal(state) && room >= used + frame + kShortestBar) {
        line += kGap + Bar(DoneShare(state), std::min(kLongestBar, room - used - frame));
    }
    return Cut(line + figures, room);
}

std::string FormatProgressText(const ProgressState& state) {
    return state.phase + " " + Printable(state.name) + kGap + Figures(state);
}

}  // namespace Mirqos::Tool
