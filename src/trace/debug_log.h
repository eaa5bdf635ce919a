// What the debug channel asks of its log file. The log is written through the file object, which belongs to a
// later layer.
#pragma once

namespace vxut {

// Every function is called by the thread that has the turn at the channel.
struct IclsDebugLog {
    virtual void ReadSettings() = 0; // at load
    virtual bool HasFile() const = 0;
    virtual void Write(const wchar_t* line) = 0;
    virtual void Finish() = 0; // at unload

protected:
    ~IclsDebugLog() = default;
};

// Sets the log of the standard sinks; null, the initial state, means none. The caller keeps the ownership.
void SetDebugLog(IclsDebugLog* log);

} // namespace vxut
