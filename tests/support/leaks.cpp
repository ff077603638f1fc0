// SPDX-License-Identifier: Apache-2.0
// Leaks that are not ours, by the function that allocates.

/// Asked by the leak checker of instrumented builds. The C library keeps the folders of LOCPATH,
/// which `setlocale` takes apart at its first call.
extern "C" const char* __lsan_default_suppressions() { return "leak:__argz_add_sep\n"; }
