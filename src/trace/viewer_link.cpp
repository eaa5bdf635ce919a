#include "trace/viewer_link.h"

#include "base/debug.h"
#include "base/identity.h"
#include "base/text_conversion.h"
#include "base/tick_count.h"
#include "trace/record_splitter.h"

#include <cwchar>

namespace vxut {
namespace {

// One program sends no join and leave lines. Its name is compared by more units at the join than at the
// leave; viewers rely on the difference.
constexpr wchar_t kSilentProgram[] = L"resweaver";
constexpr size_t kUnitsAtJoin = 9;
constexpr size_t kUnitsAtLeave = 8;

// A viewer that answers within this time, in milliseconds, is not late. A late one may cost a process
// UTIL_TRACE_PATIENCE in all; then nobody waits for it for the length of the rest.
constexpr uint64_t kPromptAnswer = 100;
constexpr uint64_t kRest = 10000;

static_assert(sizeof(UtilTraceBlock) == sizeof(LONG64));

bool IsSilent(size_t units) { return _wcsnicmp(Identity().processFileName, kSilentProgram, units) == 0; }

HWND WindowOf(LONG64 value) { return reinterpret_cast<HWND>(static_cast<INT_PTR>(value)); }

} // namespace

clsViewerLink::clsViewerLink(const scViewerNames& names)
    : names_(names), sharedBlock_(names.block, sizeof(UtilTraceBlock)), waits_(UTIL_TRACE_PATIENCE, kRest) {
    named_ = static_cast<volatile LONG64*>(sharedBlock_.View());
    if (named_) return;
    if (sharedBlock_.HasMapping()) {
        OutputDebugStringW(L"_pTRCWINInfo FAIL");
    } else {
        const String error = String::FromError(GetLastError());
        OutputDebugStringW((L"TRCWIN global info struct cannot be created: " + error).Text());
    }
}

HWND clsViewerLink::NamedWindow() const noexcept { return named_ ? WindowOf(*named_) : nullptr; }

// A viewer that starts at this moment may have entered itself already: its entry stays.
void clsViewerLink::FindRunningViewer() {
    if (!named_ || sharedBlock_.WasThere()) return;
    const HWND running = FindWindowW(names_.windowClass, nullptr);
    InterlockedCompareExchange64(named_, reinterpret_cast<INT_PTR>(running), 0);
}

void clsViewerLink::Attach() {
    const HWND named = NamedWindow();
    capability_ = 0;
    mailslot_.Close();
    waits_.Refill();
    window_ = named && IsWindow(named) ? named : nullptr;
    // Set after the window: the link is idle only when both are known.
    seen_ = named;
    if (!window_) return;
    if (!mailslot_.Open(names_.mailslot)) OutputDebugStringW(L"DebugPipe FAIL");
    DWORD_PTR takesUtf8 = 0;
    Ask(UTIL_TRACE_QUERY_UTF8, takesUtf8);
    codePage_ = takesUtf8 ? CP_UTF8 : CP_ACP;
    Greet();
    Ask(UTIL_TRACE_QUERY_CAPABILITY, capability_);
}

void clsViewerLink::Greet() {
    isGreeted_ = true;
    if (IsSilent(kUnitsAtJoin)) return;
    const scProcessIdentity& identity = Identity();
    if (std::wcscmp(identity.processPath, identity.libraryPath) == 0) {
        DebugWriteAs(nullptr, 0, L"++%s [%s]", version_.Text(), identity.processPath);
    } else {
        DebugWriteAs(nullptr, 0, L"++%s [%s] [%s]", version_.Text(), identity.processPath,
                     identity.libraryDirectory);
    }
}

// The window stays the attached one: a process that ends does not attach to viewers that start later.
void clsViewerLink::Detach() {
    if (isGreeted_ && IsWindow(window_) && !IsSilent(kUnitsAtLeave))
        DebugWriteAs(nullptr, 0, L"--%s [%s]", version_.Text(), Identity().processPath);
    isGreeted_ = false;
    mailslot_.Close();
}

void clsViewerLink::Send(const wchar_t* line) {
    if (!window_) return;
    if (NarrowText(codePage_, line, -1, bytes_, sizeof bytes_) == 0) {
        OutputDebugStringW(L"ERR converting TRCWIN output");
        return;
    }
    SplitRecords(bytes_, [this](char* record, size_t bytes) { SendRecord(record, bytes); });
}

void clsViewerLink::SendRecord(char* record, size_t bytes) {
    if (!window_) return;
    if (mailslot_.IsOpen()) {
        SendToMailslot(record, bytes);
    } else {
        SendToWindow(record, bytes);
    }
    if (IsWindow(window_)) return;
    window_ = nullptr;
    isGreeted_ = false;
    mailslot_.Close();
}

// The window may take what the mailslot refuses. If the mailslot is full the viewer does not read, and would
// not answer either.
void clsViewerLink::SendToMailslot(char* record, size_t bytes) {
    record[bytes] = UTIL_TRACE_RECORD_END;
    const uint64_t start = TickCount64();
    const DWORD patience = waits_.MayWait(start) ? UTIL_TRACE_PATIENCE : 0;
    const auto outcome = mailslot_.Write(record, bytes + 1, patience);
    SpendSince(start);
    if (outcome == clsViewerMailslot::Outcome::kWritten) return;
    OutputDebugStringW(L"TRCWIN: cannot write data!");
    if (outcome == clsViewerMailslot::Outcome::kFailed) SendToWindow(record, bytes);
}

void clsViewerLink::SendToWindow(char* record, size_t bytes) {
    record[bytes] = '\0';
    DWORD_PTR answer = 0;
    SendMessageToWindow(UTIL_TRACE_LINE, record, bytes + 1, answer);
}

void clsViewerLink::Ask(DWORD query, DWORD_PTR& answer) { SendMessageToWindow(query, "", 0, answer); }

// Leaves answer unchanged if the viewer does not reply in time.
void clsViewerLink::SendMessageToWindow(DWORD purpose, const char* data, size_t bytes, DWORD_PTR& answer) {
    const uint64_t start = TickCount64();
    if (!waits_.MayWait(start)) return;
    COPYDATASTRUCT copy = {purpose, static_cast<DWORD>(bytes), const_cast<char*>(data)};
    DWORD_PTR given = 0;
    if (SendMessageTimeoutW(window_, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&copy), SMTO_ABORTIFHUNG,
                            UTIL_TRACE_PATIENCE, &given))
        answer = given;
    SpendSince(start);
}

void clsViewerLink::SpendSince(uint64_t start) noexcept {
    const uint64_t now = TickCount64();
    if (now - start > kPromptAnswer) waits_.Spend(now - start, now);
}

} // namespace vxut
