// SPDX-License-Identifier: Apache-2.0
// Ctrl-C and SIGTERM. While a scene runs, the first signal asks it to end; while a file is written,
// it waits; at any other time it ends the program, and so does every second one.
#pragma once

namespace tidemark::sluice::graph {
class SL_GraphScene;
}

namespace tidemark::tool {

/// Begins to answer signals. Until then they end the program as the system does.
void watchSignals();

/// True once a signal has come.
bool wasSignalled();

/// For a scope: signals go to `scene`, which must outlive the scope.
class RunSection {
public:
    explicit RunSection(sluice::graph::SL_GraphScene& scene);
    ~RunSection();
    RunSection(const RunSection&) = delete;
    RunSection& operator=(const RunSection&) = delete;
};

/// For a scope: a first signal is only noted.
class WriteSection {
public:
    WriteSection();
    ~WriteSection();
    WriteSection(const WriteSection&) = delete;
    WriteSection& operator=(const WriteSection&) = delete;
};

} // namespace tidemark::tool
