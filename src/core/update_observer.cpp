// SPDX-License-Identifier: Apache-2.0
// Where the observer of computations is kept.
#include "core/update_observer.h"

namespace weft {

UpdateObserver* UpdateObserver::installed_ = nullptr;

UpdateObserver::~UpdateObserver() = default;

UpdateObserver* UpdateObserver::installed() { return installed_; }

void UpdateObserver::install(UpdateObserver* observer) { installed_ = observer; }

} // namespace weft
