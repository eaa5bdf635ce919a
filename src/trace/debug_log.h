// What the debug channel's log file does for the channel. It lives behind the file object, which the channel
// cannot see.
#pragma once

namespace vxut {

// Every operation is called under the channel's lock.
struct IclsDebugLog {
    virtual void ReadSettings() = 0; // at load
    virtual bool HasFile() const = 0;
    virtual void Write(const wchar_t* line) = 0;
    virtual void Finish() = 0; // at unload

protected:
    ~IclsDebugLog() = default;
};

// Makes log the one of the standard sinks; null, as at the start, means that there is none.
void SetDebugLog(IclsDebugLog* log);

} // namespace vxut
