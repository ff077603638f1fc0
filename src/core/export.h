// SPDX-License-Identifier: Apache-2.0
// The one export macro: the library hides every symbol that does not carry it.
#pragma once

#define SLUICE_API __attribute__((visibility("default")))
