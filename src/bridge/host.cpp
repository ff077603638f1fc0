// SPDX-License-Identifier: Apache-2.0
// The host that does nothing, the installed host, and the centre that reports go through.
#include "bridge/host.h"

#include <atomic>

#include "platform/processors.h"

namespace tidemark::bridge {

Host::~Host() = default;

void Host::post(int, const Array<TM_String>&) {}
void Host::message(const TM_String&) {}
void Host::print(const TM_String&) {}
void Host::stopSimulation() {}
int Host::currentFrame() const { return 0; }
float Host::currentTime() const { return 0.0f; }
int Host::numberOfThreads() const { return platform::threadCount(0); }
bool Host::allowsSleep() const { return true; }
bool Host::prefersCurvedConnections() const { return false; }
TM_String Host::graphLibraryPath() const { return {}; }
Array<HostClass> Host::compatibleClasses() const { return {}; }
bool Host::mayRead(const TM_String&) const { return true; }
bool Host::mayWrite(const TM_String&) const { return true; }

namespace {

std::atomic<Host*> installed{nullptr};

// Never destroyed: scenes with static lifetime may report until the process ends.
Host& silentHost() {
    static Host* const silent = new Host;
    return *silent;
}

} // namespace

Host& host() {
    Host* current = installed.load(std::memory_order_acquire);
    return current ? *current : silentHost();
}

void setHost(Host* host) { installed.store(host, std::memory_order_release); }

CCallbackCenter& CCallbackCenter::Instance() {
    static CCallbackCenter center;
    return center;
}

void CCallbackCenter::Post(int id) { host().post(id, Array<TM_String>()); }

void CCallbackCenter::Post(int id, const TM_String& argument) {
    host().post(id, Array<TM_String>{argument});
}

void CCallbackCenter::Post(int id, const TM_String& first, const TM_String& second) {
    host().post(id, Array<TM_String>{first, second});
}

void CCallbackCenter::Post(int id, const Array<TM_String>& arguments) {
    host().post(id, arguments);
}

void CCallbackCenter::Message(const TM_String& line) { host().message(line); }

void CCallbackCenter::StopSimulation() { host().stopSimulation(); }

} // namespace tidemark::bridge
