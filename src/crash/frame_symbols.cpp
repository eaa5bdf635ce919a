#include "crash/frame_symbols.h"

#include "crash/debug_help_job.h"

#include <windows.h>

#include <cstdint>

namespace vxut {
namespace {

String TextOf(const DBGStackTraceItem& frame, uint64_t displacement) {
    const char* const name = frame.fullName[0] ? frame.fullName : frame.symbol;
    String text;
    if (!name[0]) return text;
    text.Format(L"%hs!%hs + 0x%I64x", frame.module, name, displacement);
    if (frame.file[0]) {
        String place;
        place.Format(L"  (%hs, line %d)", frame.file, frame.line);
        text += place;
    }
    return text;
}

} // namespace

// Looks an address up by a walk of one frame that starts there, on a stack of zeros that leads nowhere.
class clsFrameSymbols::Job final : public clsDBGHelpWrapper {
public:
    Job() : clsDBGHelpWrapper(true, {.loadsLines = true, .readsVersions = false}) { Open(); }
    ~Job() override { Close(); }

    clsAutoRelease<clsDBGStackTraceList*> FrameAt(uint64_t address) {
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_FULL;
        context.Rip = address;
        context.Rsp = context.Rbp = reinterpret_cast<uint64_t>(stack_ + std::size(stack_) / 2);
        return WalkStack(&context);
    }

protected:
    int32_t MostFrames() const override { return 1; }

private:
    uint64_t stack_[2048] = {};
};

clsFrameSymbols::clsFrameSymbols() = default;
clsFrameSymbols::~clsFrameSymbols() = default;

// A return address lies behind its call, which may be the last instruction of a function or a line.
String clsFrameSymbols::TextOf(void* returnAddress) {
    if (!job_) job_ = std::make_unique<Job>();
    const auto frames = job_->FrameAt(reinterpret_cast<uint64_t>(returnAddress) - 1);
    const DBGStackTraceItem* frame = nullptr;
    if (!frames || frames->Next(1, &frame, nullptr) != S_OK) return {};
    return vxut::TextOf(*frame, frame->displacement + 1);
}

} // namespace vxut
