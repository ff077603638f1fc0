// SPDX-License-Identifier: Apache-2.0
// Key functions of the exception classes, so that their type information lives in the library.
#include "core/exceptions.h"

namespace tidemark {

TM_Exception::~TM_Exception() = default;

namespace sluice::graph {

Exception::~Exception() = default;
GenericGraphException::~GenericGraphException() = default;
CancelGraphException::~CancelGraphException() = default;

} // namespace sluice::graph
} // namespace tidemark
