#include "base/guard.h"
#include "base/shielded_read.h"
#include "crash/abort_dialog.h"
#include "crash/exception_protection.h"
#include "crash/stack_overflow.h"
#include "trace/line_ring.h"
#include "util/exception_handler.h"
#include "util/frame.h"

using namespace vxut;

namespace {

constexpr size_t kDetailUnits = 1024;

struct FatalKind {
    int32_t kind;
    DWORD code;
    const wchar_t* title;
};
constexpr FatalKind kFatalKinds[] = {
    {UTIL_EXHANDLER_ABORT, 0x40000015, L"abort"},
    {UTIL_EXHANDLER_TERMINATE, 0x40000015, L"std::terminate"},
    {UTIL_EXHANDLER_PURE_CALL, 0x40000015, L"Pure virtual call"},
    {UTIL_EXHANDLER_INVALID_PARAMETER, 0xC0000417, L"Invalid parameter"},
};

int32_t SetOption(uint32_t option, uint32_t value) {
    switch (option) {
        case UTIL_EXHANDLER_STACK_RESERVE:
            SetStackReserve(value);
            return UTIL_OK;
        case UTIL_EXHANDLER_TRACE_LINES:
            SetTraceRing(value);
            return UTIL_OK;
        case UTIL_EXHANDLER_PACK_ALWAYS:
            SetPackAlways(value != 0);
            return UTIL_OK;
        default:
            return UTIL_ERR_UNAVAILABLE;
    }
}

} // namespace

int UtilExHandlerJobOpen(void) {
    Guarded([] { clsExceptionProtection::Instance().Open(); });
    return 1;
}

void UtilExHandlerJobClose(void) {
    Guarded([] { clsExceptionProtection::Instance().Close(); });
}

void UtilExHandlerStartProtection(int32_t) {
    Guarded([] { clsExceptionProtection::Instance().Start(); });
}

void UtilExHandlerEndProtection(int32_t) {
    Guarded([] { clsExceptionProtection::Instance().End(); });
}

int32_t UtilExHandlerSetOption(uint32_t option, uint32_t value) {
    return Guarded<int32_t>(UTIL_OK, [&] { return SetOption(option, value); });
}

void UtilExHandlerReportFatal(int32_t kind, const wchar_t* text) {
    for (const FatalKind& fatal : kFatalKinds) {
        if (fatal.kind != kind) continue;
        wchar_t detail[kDetailUnits] = L"";
        const bool hasDetail = text && ReadTextShielded(detail, kDetailUnits, text);
        Guarded([&] {
            clsExceptionProtection::Instance().ReportFatal(fatal.code, fatal.title,
                                                           hasDetail ? detail : nullptr);
        });
    }
}
