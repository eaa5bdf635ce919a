// Replaces the sinks of the debug channel during its lifetime and collects the lines.
#pragma once

#include "trace/debug_sinks.h"

#include <functional>
#include <string>
#include <vector>

namespace vxut {

class DebugListener final : public IclsDebugSinks {
public:
    DebugListener() : previous_(SetDebugSinks(this)) {}
    ~DebugListener() { SetDebugSinks(previous_); }
    DebugListener(const DebugListener&) = delete;
    DebugListener& operator=(const DebugListener&) = delete;

    const std::vector<std::wstring>& Lines() const { return lines_; }
    // The last line; empty if there is none.
    std::wstring Last() const { return lines_.empty() ? std::wstring() : lines_.back(); }
    // Whether a line has the text in it.
    bool Heard(const wchar_t* text) const {
        for (const std::wstring& line : lines_) {
            if (line.find(text) != std::wstring::npos) return true;
        }
        return false;
    }

    bool isAttached = true;
    std::function<void()> whileSending; // runs before a line is kept

    bool IsAttached() override { return isAttached; }
    void Send(const wchar_t* line) override {
        if (whileSending) whileSending();
        lines_.emplace_back(line);
    }
    void Attach() override {}
    void Detach() override {}

private:
    IclsDebugSinks* previous_;
    std::vector<std::wstring> lines_;
};

} // namespace vxut
