// SPDX-License-Identifier: Apache-2.0
// Files that the command line names, read whole.
#pragma once

#include <string>

#include "tool/json.h"

namespace tidemark::tool {

/// The bytes of the file. Throws `UsageError` when it can not be read.
std::string contentOf(const std::string& file);

/// The file as a JSON document. Throws `UsageError` when it can not be read, and with the place
/// where it stops to be one.
Json jsonOfFile(const std::string& file);

} // namespace tidemark::tool
