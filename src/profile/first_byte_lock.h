// The lock by which processes that load and save one profile file keep out of each other's way.
#pragma once

#include "files/file.h"

namespace vxut {

// Holds offset 0, length 1 of a file for a scope, after waiting for it for up to 10 s.
class clsFirstByteLock {
public:
    explicit clsFirstByteLock(clsFile& file) : file_(file), token_(file.LockRange(0, 1)) {}
    ~clsFirstByteLock() { file_.UnlockRange(token_); }
    clsFirstByteLock(const clsFirstByteLock&) = delete;
    clsFirstByteLock& operator=(const clsFirstByteLock&) = delete;

    bool IsHeld() const noexcept { return token_ != nullptr; }

private:
    clsFile& file_;
    clsFileLock* const token_;
};

} // namespace vxut
