// SPDX-License-Identifier: Apache-2.0
// The one interface through which the library reaches the application it runs in. An application
// derives from `Host` and installs its object with `setHost`; without one the library is silent.
#pragma once

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"
#include "core/types.h"

namespace tidemark::bridge {

/// Numbers of the messages that the library posts. The texts are the host's.
namespace message {
constexpr int panelDetail = 49;            ///< a node's message of level 4 or above, as a line
constexpr int outOfMemory = 2083;          ///< a run ended for lack of memory; no text
constexpr int unknownNodeType = 2255;      ///< reading: the type
constexpr int interfaceAtRoot = 2256;      ///< reading: an interface node outside a compound
constexpr int unknownConnectionPin = 2260; ///< reading: the full pin name
constexpr int unknownPin = 2261;           ///< reading: node and pin
constexpr int runException = 2262;         ///< a run ended: the exception's text
constexpr int xmlError = 2263;             ///< the file, the parser's message and the line
constexpr int unknownPinType = 2264;       ///< reading: node and pin, and the type text
constexpr int badLayoutValueOf = 2266;     ///< reading: a name and the key
constexpr int badLayoutValue = 2267;       ///< reading: the key
constexpr int duplicateNodeType = 2275;    ///< registering: the type and the category in use
constexpr int panelLine = 2286;            ///< a node's message below level 4 as a line, or what()
} // namespace message

/// A class of host objects that may flow along pins.
struct HostClass {
    TM_String specialization; ///< the class's type name, such as "Object"
    Color4<float> color;      ///< how the host paints objects of the class
    uint32_t bit = 0;         ///< its bit in host class masks
};

/// Services of the application. All calls may come from any thread; implementations guard
/// themselves. The base answers as an application without scene would.
class SLUICE_API Host {
public:
    virtual ~Host();

    /// A report by number. `arguments` are the pieces that the number's text speaks of, in order.
    virtual void post(int id, const Array<TM_String>& arguments);
    /// A line for the application's message window.
    virtual void message(const TM_String& line);
    /// A line that a message-printing node prints for the user.
    virtual void print(const TM_String& line);
    /// A node asks to stop the running simulation.
    virtual void stopSimulation();
    /// Where the application's scene stands: the frame's number, and the same in seconds.
    virtual int currentFrame() const;
    virtual float currentTime() const;
    /// Threads that a node without a setting of its own uses; at least 1.
    virtual int numberOfThreads() const;
    /// False: sleeping nodes return at once.
    virtual bool allowsSleep() const;
    /// The editor's preference that `GraphSettings` takes over.
    virtual bool prefersCurvedConnections() const;
    /// The folder below which compound files become node types.
    virtual TM_String graphLibraryPath() const;
    /// Classes of host objects that graphs may carry.
    virtual Array<HostClass> compatibleClasses() const;
    /// Whether a node may open `path`; the answer is the node's own "cannot open" error.
    virtual bool mayRead(const TM_String& path) const;
    virtual bool mayWrite(const TM_String& path) const;
};

/// The installed host; never null. Without one, a host that does nothing.
SLUICE_API Host& host();

/// Installs `host`, which the caller keeps alive until it installs another; null for none. To be
/// called while no graph runs.
SLUICE_API void setHost(Host* host);

/// What the layers below use to report.
class SLUICE_API CCallbackCenter {
public:
    static CCallbackCenter& Instance();
    void Post(int id);
    void Post(int id, const TM_String& argument);
    void Post(int id, const TM_String& first, const TM_String& second);
    void Post(int id, const Array<TM_String>& arguments);
    void Message(const TM_String& line);
    void StopSimulation();
};

} // namespace tidemark::bridge
