// SPDX-License-Identifier: Apache-2.0
// A host that writes down what the library posts to it.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "bridge/host.h"

namespace support {

using tidemark::TM_String;

/// Installed as long as it lives.
class RecordingHost : public tidemark::bridge::Host {
public:
    RecordingHost() { tidemark::bridge::setHost(this); }
    ~RecordingHost() override { tidemark::bridge::setHost(nullptr); }

    void post(int id, const tidemark::Array<TM_String>& arguments) override {
        std::string line = std::to_string(id);
        for (const TM_String& argument : arguments) line += "|" + argument;
        const std::lock_guard<std::mutex> lock(mutex_);
        posts.push_back(line);
    }
    int numberOfThreads() const override { return threads; }

    std::vector<std::string> posts; // "id|first argument|second argument"
    int threads = 6;

private:
    std::mutex mutex_;
};

} // namespace support
