// SPDX-License-Identifier: Apache-2.0
// What a waiting user sees on stderr while a graph is read, run and written.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace tidemark::tool {

/// How progress is shown.
enum class ProgressMode {
    automatic, ///< one rewritten line on a terminal, else a line per frame
    plain,     ///< a line per step and frame
    json,      ///< one JSON event per line
    none,
};

/// Steps and frames of one command. Used by one thread.
class Progress {
public:
    /// `frameCount` of 0: the run has no frames.
    Progress(ProgressMode mode, uint64_t frameCount);
    /// Takes the rewritten line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// A step begins: "reading", "running" or "writing", and the file concerned.
    void step(const std::string& name, const std::string& file);
    /// Takes the line off the terminal; it comes back with the next step or frame.
    void hide();
    /// How far the step is, of 1; shown on the rewritten line only.
    void share(double part);
    void frameBegins(int frame);
    void frameEnds(int frame, double seconds, bool good);
    void done(int status, double seconds);

private:
    using Clock = std::chrono::steady_clock;

    bool rewrites() const;
    void show(const std::string& text);
    void tick();

    const ProgressMode mode_;
    const uint64_t frameCount_;
    uint64_t framesBegun_ = 0;
    std::mutex mutex_; // of what follows
    std::condition_variable wake_;
    std::string shown_;
    double share_ = 0.0;
    Clock::time_point shownSince_;
    bool ended_ = false;
    std::thread ticker_;
};

} // namespace tidemark::tool
