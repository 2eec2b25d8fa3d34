// SPDX-License-Identifier: MIT
#pragma once

#include "toolbox/files/FileDescriptor.h"

#include <string>
#include <sys/types.h>

namespace toolbox
{

// A private directory of this process for files that nobody needs after it. While the process
// lives it holds a lock on the directory, by which others can tell that it is in use; the lock
// ends with the process, however that ends.
class TemporaryFolder
{
public:
    // Makes one in the directory `parent`, with mode 0700. Throws OSErr.
    explicit TemporaryFolder(const std::string& parent);

    // Removes its plain files, and then itself if nothing else is in it. A forked child does
    // nothing here: the folder is its parent's.
    void Remove();

    // Open on the directory for as long as this object lives.
    int Descriptor() const { return folder_.Get(); }
    // Somebody has removed the directory.
    bool IsGone() const;

private:
    void Make(const std::string& parent);

    FileDescriptor parent_;
    std::string name_;
    FileDescriptor folder_;
    pid_t owner_;
};

// Removes from `parent` what processes that have died left of their temporary folders: folders of
// this user that nobody has locked. Links are not followed, and what cannot be removed stays.
void RemoveFoldersOfDeadProcesses(const std::string& parent);

} // namespace toolbox
