// The log file of the debug channel, which several processes may share.
#pragma once

#include "files/file.h"
#include "text/string.h"
#include "trace/debug_log.h"
#include "trace/wait_budget.h"

namespace vxut {

// Used by one thread at a time: the one that has the turn at the channel.
//
// The file is opened anew for each line, so that processes take turns. A line waits at most 100 ms for its
// turn; one that does not get it is kept in memory and written before the next line. When five lines in a row
// have waited in vain, lines are kept without waiting for 5 s; each of them still tries once.
class clsDebugLogFile final : public IclsDebugLog {
public:
    clsDebugLogFile() = default;
    // An empty name means that there is no file. With flush, each line reaches the disk before the next.
    clsDebugLogFile(const String& name, bool flush) : name_(name), flush_(flush) {}

    // A name without a directory is one in the temp directory.
    void ReadSettings() override;
    bool HasFile() const override { return !name_.IsEmpty(); }
    // Keeps at most 256 K units; further lines are lost until the file can be written.
    void Write(const wchar_t* line) override;
    // Writes the lines that are still kept, for which it waits up to a second.
    void Finish() override;

    const String& Name() const noexcept { return name_; }
    bool IsFlushed() const noexcept { return flush_; }

private:
    static constexpr uint64_t kPatience = 100; // milliseconds

    bool WriteKept(uint64_t patience);
    bool AppendKept();
    void UndoInterruptedAppend();
    void CloseFile();

    String name_;
    bool flush_ = false;
    String kept_;           // whole lines that are not in the file yet
    clsFile file_;          // open during a write only
    int64_t appendAt_ = -1; // where the kept lines begin in the open file; -1 before it is known
    clsWaitBudget waits_{5 * kPatience, 5000};
};

// Creates the log file of this process and makes it the debug channel's.
void InstallDebugLogFile();

} // namespace vxut
