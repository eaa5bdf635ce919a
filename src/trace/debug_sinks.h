// What carries the lines of the debug channel away.
#pragma once

namespace vxut {

// Every operation is called under the channel's lock, so an implementation takes no lock of its own that
// anybody may hold while writing a line. Lines that an implementation writes itself reach it from
// IsAttached(), Attach() and Detach(); while it is in Send() they are dropped.
struct IclsDebugSinks {
    // Asked before each output. May look for listeners that have come or gone.
    virtual bool IsAttached() = 0;
    virtual void Send(const wchar_t* line) = 0;
    virtual void Attach() = 0; // at load
    virtual void Detach() = 0; // at unload

protected:
    ~IclsDebugSinks() = default;
};

// Makes sinks the ones of the channel, which starts with the standard ones; null means that nobody listens.
// Gives those before.
IclsDebugSinks* SetDebugSinks(IclsDebugSinks* sinks);

} // namespace vxut
