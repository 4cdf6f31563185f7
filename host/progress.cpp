#include "host/progress.h"

#include "host/numbers.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host
{

namespace
{

constexpr ProgressDuration betweenDrawings{0.1};
constexpr ProgressDuration betweenLines{1};
constexpr ProgressDuration beforeRatesAreTold{0.5};   // earlier they would jump about
constexpr long secondsOfAnHour = 3600;

ProgressDuration steadyTime()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::string amountText(UInt64 amount, ProgressUnit unit)
{
    if (unit == ProgressUnit::bytes)
        return sizeText(amount);
    return grouped(amount) + (amount == 1 ? " object" : " objects");
}

// The first of two amounts of one unit: "12 of 3,400 objects".
std::string firstAmountText(UInt64 amount, ProgressUnit unit)
{
    return unit == ProgressUnit::bytes ? sizeText(amount) : grouped(amount);
}

std::string rateText(double perSecond, ProgressUnit unit)
{
    auto rounded = static_cast<UInt64>(perSecond + 0.5);
    return unit == ProgressUnit::bytes ? sizeText(rounded) + "/s" : grouped(rounded) + " a second";
}

std::size_t columnsOfTerminal(std::FILE *stream)
{
    winsize size = {};
    bool isKnown = ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : 80;
}

}   // namespace

ProgressStyle progressStyle(const ProgressWish &wish)
{
    if (wish.lines)
        return ProgressStyle::lines;
    const char *terminal = std::getenv("TERM");
    bool canRedraw = isatty(STDERR_FILENO) != 0 && terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
    return canRedraw && !wish.quiet ? ProgressStyle::redrawn : ProgressStyle::none;
}

std::string sizeText(UInt64 bytes)
{
    if (bytes < 1000)
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    constexpr const char *units[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
    std::size_t unit = 0;
    double amount = static_cast<double>(bytes) / 1000;
    for (; amount >= 999.5; amount /= 1000)
        ++unit;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", amount < 9.95 ? 1 : 0, amount, units[unit]);
    return text;
}

std::string durationText(ProgressDuration duration)
{
    if (!(duration.count() < 99 * secondsOfAnHour))
        return "99 hours and more";
    long seconds = std::max(0L, static_cast<long>(duration.count() + 0.5));
    if (seconds < 60)
        return std::to_string(seconds) + " s";
    char text[32];
    if (seconds < secondsOfAnHour)
        std::snprintf(text, sizeof text, "%ld:%02ld", seconds / 60, seconds % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", seconds / secondsOfAnHour, seconds / 60 % 60, seconds % 60);
    return text;
}

std::string progressText(const ProgressState &state)
{
    std::string text = state.doing + ": ";
    if (state.total)
        text += firstAmountText(state.done, state.unit) + " of " + amountText(*state.total, state.unit);
    else
        text += amountText(state.done, state.unit);
    if (state.done == 0 || state.elapsed < beforeRatesAreTold)
        return text;
    double perSecond = static_cast<double>(state.done) / state.elapsed.count();
    text += ", " + rateText(perSecond, state.unit);
    if (state.total && *state.total > state.done)
        text += ", " + durationText(ProgressDuration(static_cast<double>(*state.total - state.done) / perSecond)) + " left";
    return text;
}

Progress::Progress(ProgressStyle style, std::string doing, ProgressUnit unit, std::optional<UInt64> total)
    : Progress(style, std::move(doing), unit, total, stderr, steadyTime)
{
}

Progress::Progress(ProgressStyle style, std::string doing, ProgressUnit unit, std::optional<UInt64> total, std::FILE *stream, Clock clock)
    : style_(style), stream_(stream), clock_(std::move(clock)), began_(clock_()), shown_(began_)
{
    state_.doing = std::move(doing);
    state_.unit = unit;
    state_.total = total;
}

Progress::~Progress()
{
    clear();
    state_.elapsed = clock_() - began_;
    if (style_ == ProgressStyle::lines)
        show();
}

void Progress::advance(UInt64 by)
{
    state_.done += by;
    if (style_ != ProgressStyle::none && isDue())
        show();
}

// Work that ends at once shows nothing: the first drawing waits as long as the others.
bool Progress::isDue()
{
    ProgressDuration now = clock_();
    if (now - shown_ < (style_ == ProgressStyle::lines ? betweenLines : betweenDrawings))
        return false;
    shown_ = now;
    state_.elapsed = now - began_;
    return true;
}

void Progress::show()
{
    std::string text = progressText(state_);
    if (style_ == ProgressStyle::lines)
    {
        std::fprintf(stream_, "%s\n", text.c_str());
        return;
    }
    text.resize(std::min(text.size(), columnsOfTerminal(stream_) - 1));   // a line that wraps could not be drawn over
    std::fprintf(stream_, "\r%s\033[K", text.c_str());
    std::fflush(stream_);
    isOnScreen_ = true;
}

void Progress::clear()
{
    if (!isOnScreen_)
        return;
    std::fputs("\r\033[K", stream_);
    std::fflush(stream_);
    isOnScreen_ = false;
}

}   // namespace host
