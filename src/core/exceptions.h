// SPDX-License-Identifier: Apache-2.0
// The exceptions by which a node ends a running evaluation.
#pragma once

#include <cstdint>
#include <exception>
#include <utility>

#include "core/export.h"
#include "core/text.h"

namespace tidemark {

/// A code and a message.
class SLUICE_API TM_Exception : public std::exception {
public:
    TM_Exception(TM_String message, uint32_t code) : message_(std::move(message)), code_(code) {}
    ~TM_Exception() override;
    const char* what() const noexcept override { return message_.c_str(); }
    const TM_String& message() const { return message_; }
    uint32_t code() const { return code_; }

private:
    TM_String message_;
    uint32_t code_;
};

namespace sluice::graph {

/// Marks an exception that `Node::pushCritical` raised.
constexpr uint32_t criticalExceptionCode = 0x80010001u;
/// Marks a cancellation.
constexpr uint32_t cancelExceptionCode = 0x80010002u;

/// Ends a run. A quiet one is not reported to the host.
class SLUICE_API Exception : public TM_Exception {
public:
    Exception(TM_String message, uint32_t code, bool quiet = false)
        : TM_Exception(std::move(message), code), quiet_(quiet) {}
    ~Exception() override;
    bool isQuiet() const { return quiet_; }

private:
    bool quiet_;
};

class SLUICE_API GenericGraphException : public Exception {
public:
    using Exception::Exception;
    ~GenericGraphException() override;
};

class SLUICE_API CancelGraphException : public GenericGraphException {
public:
    using GenericGraphException::GenericGraphException;
    ~CancelGraphException() override;
};

} // namespace sluice::graph
} // namespace tidemark
