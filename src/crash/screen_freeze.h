// Keeps the top window of the calling thread from being drawn, so that it does not change while its process
// is looked at.
#pragma once

namespace vxut {

// One window of the session can be frozen at a time: a scope within another changes nothing.
class clsScreenFreeze {
public:
    clsScreenFreeze();
    ~clsScreenFreeze() { Release(); }
    clsScreenFreeze(const clsScreenFreeze&) = delete;
    clsScreenFreeze& operator=(const clsScreenFreeze&) = delete;

    void Release();

private:
    bool isFrozen_;
};

} // namespace vxut
