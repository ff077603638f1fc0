// SPDX-License-Identifier: Apache-2.0
// The common base of the graph classes.
#pragma once

#include "core/export.h"

namespace tidemark {

/// Lets an object of any graph class be deleted through the base.
class SLUICE_API TM_Class {
public:
    virtual ~TM_Class() = default;

protected:
    TM_Class() = default;
    TM_Class(const TM_Class&) = default;
    TM_Class& operator=(const TM_Class&) = default;
};

} // namespace tidemark
