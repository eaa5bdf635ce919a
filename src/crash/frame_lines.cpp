#include "crash/frame_lines.h"

#include "base/debug.h"
#include "crash/debug_help_job.h"
#include "crash/value_text.h"

#include <cstdio>
#include <span>

namespace vxut {
namespace {

// The forms of a frame. The line end at the end of some goes in front of that of the line.
struct FrameFormats {
    const wchar_t* callDisplaced;
    const wchar_t* callSymbol;
    const wchar_t* callBare;
    const wchar_t* symbol;
    const wchar_t* bare;
};
constexpr FrameFormats kFormats[] = {
    {L"   CALL [0x%08I64x] %hs!%hs + 0x%08I64x %s", L"   CALL [0x%08I64x] %hs!%hs %s",
     L"   CALL [0x%08I64x] %hs!0x%08I64x %s", L"[0x%08I64x] %hs!%hs + 0x%08I64x %s\n",
     L"[0x%08I64x] %hs!+0x%08I64x %s\n"},
    {L"   CALL [0x%016I64x] %hs!%hs + 0x%016I64x %s", L"   CALL [0x%016I64x] %hs!%hs %s",
     L"   CALL [0x%016I64x] %hs!0x%016I64x %s", L"[0x%016I64x] %hs!%hs + 0x%016I64x %s\n",
     L"[0x%016I64x] %hs!+0x%016I64x %s\n"},
};

const char* BestSymbol(const DBGStackTraceItem& frame) {
    if (frame.fullName[0]) return frame.fullName;
    return frame.name[0] ? frame.name : frame.symbol;
}

// A frame that was taken without symbols.
void WriteCall(const DBGStackTraceItem& frame, const FrameFormats& formats, const wchar_t* source,
               clsDebugOutput& output) {
    const char* const symbol = BestSymbol(frame);
    if (!symbol[0])
        output.Line(formats.callBare, frame.address, frame.module, frame.address, source);
    else if (frame.displacement != 0)
        output.Line(formats.callDisplaced, frame.address, frame.module, symbol, frame.displacement, source);
    else
        output.Line(formats.callSymbol, frame.address, frame.module, symbol, source);
}

void WriteValues(const DBGStackTraceItem& frame, clsDebugOutput& output) {
    const uint32_t count = frame.valueCount < kMostValues ? frame.valueCount : kMostValues;
    for (const DBGStackTraceValue& value : std::span(frame.values, count)) {
        wchar_t text[kValueTextUnits];
        FormatValue(value, text);
        output.Line(L"        %s(%hs)=%s", value.isLocal ? L"local" : L"param", value.name, text);
    }
}

// A job with a depth and a mode of its own. Developers see source lines and no versions.
class DumpJob final : public clsDBGHelpWrapper {
public:
    DumpJob(int32_t depth, uint32_t mode)
        : clsDBGHelpWrapper(true, {.loadsLines = true, .readsVersions = false}), depth_(depth), mode_(mode) {}
    ~DumpJob() override { Close(); }

protected:
    int32_t MostFrames() const override { return depth_; }
    uint32_t FrameMode() const override { return mode_; }

private:
    const int32_t depth_;
    const uint32_t mode_;
};

} // namespace

void WriteModuleLine(const DBGModuleItem& module, clsDebugOutput& output) {
    if (module.size != sizeof module) {
        DebugWrite(L"bad size of DBGModuleItem* structure...");
        return;
    }
    output.Line(L"0x%08x: %-20hs %-45hs %-30hs '%hs'  [%hs]", static_cast<uint32_t>(module.base), module.name,
                module.fileVersion, module.company, module.productVersion, module.path);
}

void WriteFrameLines(const DBGStackTraceItem& frame, AddressForm form, clsDebugOutput& output) {
    if (frame.size != sizeof frame) {
        DebugWrite(L"bad size of DBGStackTraceItem* structure...");
        return;
    }
    wchar_t source[sizeof frame.file + 32] = L"";
    if (frame.file[0]) _snwprintf(source, std::size(source) - 1, L"  (%hs, line %d)", frame.file, frame.line);
    const FrameFormats& formats = kFormats[static_cast<int>(form)];
    if (frame.isCall) return WriteCall(frame, formats, source, output);
    const char* const symbol = BestSymbol(frame);
    if (symbol[0])
        output.Line(formats.symbol, frame.address, frame.module, symbol, frame.displacement, source);
    else
        output.Line(formats.bare, frame.address, frame.module, frame.address - frame.moduleBase, source);
    WriteValues(frame, output);
}

void DumpStackTraceEx(int32_t depth, uint32_t frameMode, clsDebugOutput& output) {
    DumpJob job(depth, frameMode);
    job.Open();
    const auto frames = job.WalkStack(nullptr);
    if (!frames) return;
    for (const DBGStackTraceItem* frame; frames->Next(1, &frame, nullptr) == S_OK;)
        WriteFrameLines(*frame, AddressForm::kLong, output);
}

} // namespace vxut
