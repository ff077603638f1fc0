// SPDX-License-Identifier: Apache-2.0
// Replacing a file without ever leaving a damaged one: the new content goes to a temporary file in
// the same folder, to the disk, and then takes the name in one step.
#pragma once

#include <string_view>

#include "core/export.h"
#include "core/text.h"

namespace tidemark::sluice::graph {

/// A symbolic link keeps standing and its target is replaced. The new file has the permissions of
/// the old one, and its owner and group where the process may give them. Only regular files that
/// the process may write to are replaced.
///
/// Until `commit` succeeds the old file is untouched; the destructor removes the temporary file of
/// a save that did not get that far. A process that is killed leaves it behind, named
/// ".sluice-save-<process>-<number>".
class SLUICE_API FileSave {
public:
    explicit FileSave(const TM_String& path);
    FileSave(const FileSave&) = delete;
    FileSave& operator=(const FileSave&) = delete;
    ~FileSave();

    /// False, also after an earlier failure, with the cause in `reason`.
    bool write(std::string_view piece);
    bool commit();

    /// Empty as long as nothing failed.
    const TM_String& reason() const { return reason_; }

private:
    bool resolveTarget(const TM_String& path);
    bool openTemporary();
    void takeOverPermissions();
    bool fail(const TM_String& reason);
    bool fail(int error);

    TM_String target_;
    TM_String temporary_;
    TM_String reason_;
    int descriptor_ = -1;
};

} // namespace tidemark::sluice::graph
