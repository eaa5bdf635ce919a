// What carries the lines of the debug channel away.
#pragma once

namespace vxut {

// Called by one thread at a time: the one that has the turn at the channel. That thread may hold any lock of
// the library, so an implementation takes none under which others write lines. It may wait for a listener:
// other threads do not wait for it for long. Lines that an implementation writes itself reach it from
// Follow(), Attach() and Detach(); in Send() they are dropped.
struct IclsDebugSinks {
    // Updates the set of listeners. Called before each output.
    virtual void Follow() {}
    virtual bool IsAttached() = 0;
    virtual void Send(const wchar_t* line) = 0;
    virtual void Attach() = 0; // at load
    virtual void Detach() = 0; // at unload

protected:
    ~IclsDebugSinks() = default;
};

// Replaces the sinks of the channel, which starts with the standard ones; null means that nobody listens.
// Returns the previous sinks. The caller keeps the ownership of the new ones, which have to live until they
// are replaced.
IclsDebugSinks* SetDebugSinks(IclsDebugSinks* sinks);

} // namespace vxut
