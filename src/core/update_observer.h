// SPDX-License-Identifier: Apache-2.0
// The hook of profilers and traces: which node computes when, on which thread.
#pragma once

#include "core/export.h"

namespace weft {

class Node;

/// Hears of every computation of every node of the process, private networks on worker threads
/// included. Calls come on the thread that computes and are nested there: what a node pulls comes
/// between the two calls of the node itself, also when an exception or an interrupt ends it.
///
/// Without an observer a computation pays one test.
class SLUICE_API UpdateObserver {
public:
    virtual ~UpdateObserver();

    /// A node begins to compute an attribute, or, as an iterator, to repeat others.
    virtual void updateBegins(const Node& node) noexcept = 0;
    /// The computation that began last on this thread has ended. Its node may be gone.
    virtual void updateEnds() noexcept = 0;
    /// The node that computes on this thread waits for workers of its own.
    virtual void waitBegins() noexcept = 0;
    virtual void waitEnds() noexcept = 0;

    /// Null when there is none.
    static UpdateObserver* installed();
    /// The caller keeps `observer` alive until it installs another, or null. To be called while
    /// nothing computes.
    static void install(UpdateObserver* observer);

    /// For a scope: the thread waits for workers.
    class Waiting {
    public:
        Waiting() : observer_(installed()) {
            if (observer_) observer_->waitBegins();
        }
        ~Waiting() {
            if (observer_) observer_->waitEnds();
        }
        Waiting(const Waiting&) = delete;
        Waiting& operator=(const Waiting&) = delete;

    private:
        UpdateObserver* const observer_;
    };

private:
    friend class Node;

    // Read by every computation, which happens inside of the library only.
    __attribute__((visibility("hidden"))) static UpdateObserver* installed_;
};

} // namespace weft
