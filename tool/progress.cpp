// SPDX-License-Identifier: Apache-2.0
// The forms of progress.
#include "tool/progress.h"

#include "core/text.h"
#include "tool/console.h"
#include "tool/json.h"

namespace tidemark::tool {

namespace {

// What is over sooner is not worth a line on the terminal.
constexpr auto patience = std::chrono::milliseconds(300);
constexpr auto redrawPeriod = std::chrono::milliseconds(200);

void event(const Json& json) { console::line(dumped(json)); }

} // namespace

Progress::Progress(ProgressMode mode, uint64_t frameCount)
    : mode_(mode), frameCount_(frameCount), shownSince_(Clock::now()) {
    if (rewrites()) ticker_ = std::thread([this] { tick(); });
}

Progress::~Progress() {
    if (!ticker_.joinable()) return;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ended_ = true;
    }
    wake_.notify_all();
    ticker_.join();
    console::progressLine("");
}

bool Progress::rewrites() const {
    return mode_ == ProgressMode::automatic && console::hasTerminal();
}

void Progress::tick() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!wake_.wait_for(lock, redrawPeriod, [this] { return ended_; })) {
        const auto age = Clock::now() - shownSince_;
        if (shown_.empty() || age < patience) continue;
        const double seconds = std::chrono::duration<double>(age).count();
        const std::string share = share_ > 0.0 ? text::format(" %.0f %%", share_ * 100.0) : "";
        console::progressLine(shown_ + share + text::format(", %.1f s", seconds));
    }
}

void Progress::show(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    shown_ = text;
    share_ = 0.0;
    // Frames share one clock, so that many short ones show up as well.
    if (framesBegun_ <= 1) shownSince_ = Clock::now();
}

void Progress::step(const std::string& name, const std::string& file) {
    if (rewrites()) show(name + " " + file);
    if (mode_ == ProgressMode::plain) console::line(name + " " + file);
    if (mode_ == ProgressMode::json) event({{"event", name}, {"file", file}});
}

void Progress::share(double part) {
    const std::lock_guard<std::mutex> lock(mutex_);
    share_ = part;
}

void Progress::frameBegins(int frame) {
    ++framesBegun_;
    if (!rewrites()) return;
    show("frame " + std::to_string(frame) + " (" + std::to_string(framesBegun_) + " of " +
         std::to_string(frameCount_) + ")");
}

void Progress::frameEnds(int frame, double seconds, bool good) {
    if (mode_ == ProgressMode::json) {
        event({{"event", "frame"},
               {"frame", frame},
               {"index", framesBegun_},
               {"count", frameCount_},
               {"ok", good},
               {"seconds", seconds}});
    } else if (mode_ == ProgressMode::plain ||
               (mode_ == ProgressMode::automatic && !console::hasTerminal())) {
        console::line(text::format("frame %d (%llu of %llu): %.4f s%s", frame,
                                   static_cast<unsigned long long>(framesBegun_),
                                   static_cast<unsigned long long>(frameCount_), seconds,
                                   good ? "" : ", failed"));
    }
}

void Progress::hide() {
    const std::lock_guard<std::mutex> lock(mutex_);
    shown_.clear();
    console::progressLine("");
}

void Progress::done(int status, double seconds) {
    if (mode_ != ProgressMode::json) return;
    event({{"event", "done"}, {"status", status}, {"seconds", seconds}});
}

} // namespace tidemark::tool
