// The log file of the debug channel, which several processes may share.
#pragma once

#include "text/string.h"
#include "trace/debug_log.h"

namespace vxut {

class clsDebugLogFile final : public IclsDebugLog {
public:
    clsDebugLogFile() = default;
    // An empty name is no file. Flush makes each line reach the disk before the next.
    clsDebugLogFile(const String& name, bool flush) : name_(name), flush_(flush) {}

    // A name without directory is one in the temp directory.
    void ReadSettings() override;
    bool HasFile() const override { return !name_.IsEmpty(); }
    // Opens the file anew for each line, so that processes take turns, and waits 100 ms at most for its turn.
    // A line that finds none is kept and written with the next.
    void Write(const wchar_t* line) override;
    // Writes what is still kept.
    void Finish() override;

    const String& Name() const noexcept { return name_; }
    bool IsFlushed() const noexcept { return flush_; }

private:
    bool AppendKept() const;

    String name_;
    bool flush_ = false;
    String kept_; // whole lines that are not in the file yet
};

// Makes the log file of this process the debug channel's.
void InstallDebugLogFile();

} // namespace vxut
