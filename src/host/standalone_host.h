// SPDX-License-Identifier: Apache-2.0
// The host of programs that run graphs on their own: it keeps what is reported, hands lines to the
// program, and holds what nodes ask their host for.
//
//     StandaloneHost host;
//     host.setSink([](StandaloneHost::Line, const TM_String& line) { puts(line.c_str()); });
//     bridge::setHost(&host);
#pragma once

#include <atomic>
#include <functional>
#include <mutex>

#include "bridge/host.h"
#include "host/file_gate.h"

namespace tidemark::host {

/// All operations may be called from any thread. While it is installed it must stay alive.
class SLUICE_API StandaloneHost : public bridge::Host {
public:
    /// What a line is.
    enum class Line {
        report,  ///< the text of a posted message
        panel,   ///< a node's message, posted as a line (ids 49 and 2286)
        message, ///< for the message window
        print,   ///< a node prints it for the user
    };
    using Sink = std::function<void(Line, const TM_String&)>;

    /// A posted message with its text.
    struct Report {
        int id;
        TM_String text;
    };

    StandaloneHost();
    ~StandaloneHost() override;

    /// Where lines go; none at first. Calls are serialized; the sink must not call back.
    void setSink(Sink sink);

    /// The messages posted since the last call, in order.
    Array<Report> takeReports();

    /// Threads for nodes without a setting of their own; 0 or less: all processors.
    void setNumberOfThreads(int threads);
    void setAllowsSleep(bool allows) { allowsSleep_ = allows; }
    /// What nodes may reach from now on; everything at first.
    void setFileGate(FileGate gate);

    /// True once a node has asked to stop, until `clearStopRequest`.
    bool isStopRequested() const { return stopRequested_; }
    void clearStopRequest() { stopRequested_ = false; }

    /// The frame that the host stands at; 0 at first.
    int currentFrame() const override { return currentFrame_; }
    void setCurrentFrame(int frame) { currentFrame_ = frame; }
    static constexpr float framesPerSecond = 30.0f;
    float currentTime() const override {
        return static_cast<float>(currentFrame_) / framesPerSecond;
    }

    void post(int id, const Array<TM_String>& arguments) override;
    void message(const TM_String& line) override;
    void print(const TM_String& line) override;
    void stopSimulation() override { stopRequested_ = true; }
    int numberOfThreads() const override;
    bool allowsSleep() const override { return allowsSleep_; }
    bool mayRead(const TM_String& path) const override;
    bool mayWrite(const TM_String& path) const override;

private:
    void hand(Line line, const TM_String& text);
    FileGate fileGate() const;

    mutable std::mutex mutex_; // of the sink, the reports and the gate
    Sink sink_;
    Array<Report> reports_;
    FileGate fileGate_;
    std::atomic<int> numberOfThreads_{0};
    std::atomic<int> currentFrame_{0};
    std::atomic<bool> allowsSleep_{true};
    std::atomic<bool> stopRequested_{false};
};

} // namespace tidemark::host
