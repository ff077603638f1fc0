// SPDX-License-Identifier: Apache-2.0
// The texts behind the numbers that the library posts to its host (`bridge::message`).
#pragma once

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"

namespace tidemark::host {

/// The text of message `id` with its arguments put in, for people to read. Missing arguments count
/// as empty, and the parts of the text that only speak of them are left out. An id without a text
/// of its own gives "Message <id>" and the arguments.
SLUICE_API TM_String messageText(int id, const Array<TM_String>& arguments);

/// The ids that have a text, rising.
SLUICE_API Array<int> messageIds();

} // namespace tidemark::host
