// SPDX-License-Identifier: Apache-2.0
// The node types of the elements of the tests, registered as those of the library are.
#pragma once

#include <memory>

namespace sluice_tests {

/// While it lives, for the words Tag (held by value) and Anchor (held by pointers): the sixteen
/// array operations, TagCopy, SetTagGlobalVariable and GetTagGlobalVariable.
class TrialTypes {
public:
    TrialTypes();
    ~TrialTypes();

private:
    struct Private;
    std::unique_ptr<Private> private_;
};

} // namespace sluice_tests
