#include "base/critical_section.h"
#include "base/debug.h"
#include "base/guard.h"
#include "base/identity.h"
#include "base/path_limits.h"
#include "base/registry.h"
#include "base/shield.h"
#include "crash/crash_log.h"
#include "crash/engine_access.h"
#include "crash/exception_names.h"
#include "crash/frame_lines.h"
#include "crash/gpf_protection.h"
#include "crash/message_box_thread.h"
#include "crash/own_memory.h"
#include "crash/screen_freeze.h"
#include "crash/user_texts.h"
#include "files/path.h"
#include "trace/line_ring.h"
#include "util/environment.h"

#include <windows.h>
// After windows.h, which it needs:
#include <shellapi.h>

#include <cstdio>
#include <cwchar>
#include <optional>

namespace vxut {
namespace {

constexpr scUserText kQuestion = {
    L"This application has caused a problem and needs to close. We're sorry for the inconvenience.\r\n"
    L"Please help to improve the product. An error report with information for the support can be created "
    L"and "
    L"sent afterwards. Do you want to create this report?\r\n",
    L"Diese Anwendung hat ein Problem verursacht und muss beendet werden. Wir bedauern dieses Problem.\r\n"
    L"Bitte helfen Sie uns dabei, das Produkt zu verbessern. Es kann eine Datei mit Informationen f\u00FCr "
    L"den "
    L"Support erstellt werden, die Sie anschlie\u00DFend verschicken k\u00F6nnen. M\u00F6chten Sie "
    L"dies?\r\n"};
constexpr scUserText kClosingWithDump = {
    L"The information for the support was generated.\r\nDo you want to open the containing folder?\r\n",
    L"Die Informationen f\u00FCr den Support wurden erzeugt.\r\n"
    L"Soll das Verzeichnis der Datei ge\u00F6ffnet werden?\r\n"};
constexpr scUserText kClosingWithoutDump = {
    L"The exception information was written to the file '%s'.\r\n",
    L"Die Informationen \u00FCber den Ausnahmefehler wurden in die Datei '%s' geschrieben.\r\n"};

constexpr UINT kQuestionStyle = MB_YESNO | MB_ICONERROR | MB_TASKMODAL | MB_TOPMOST;
static_assert(kQuestionStyle == 0x42014);
constexpr UINT kClosingStyle = MB_ICONERROR | MB_TASKMODAL | MB_TOPMOST;
static_assert(kClosingStyle == 0x42010);

constexpr uint64_t kDumpReach = 64; // bytes before and after the address
constexpr uint64_t kRowBytes = 16;
constexpr size_t kRowUnits = 68;
constexpr uint32_t kNameUnits = 260;

// So that two threads report one after the other. It also guards the static buffers of the report.
clsCriticalSection reportLock;

// The report of one fault.
class ExceptionReport final : private clsDebugOutput {
public:
    ExceptionReport(clsGPFProtection& protection, const scReportedFault& fault, bool createMinidumpOnly)
        : protection_(protection),
          fault_(fault),
          createMinidumpOnly_(createMinidumpOnly),
          title_(fault.title ? fault.title : ExceptionName(Code())) {}

    void Make() {
        isInteractionAllowed_ = UtilGetUIInteractionAllowed() != 0;
        const bool isPresent = engine_.IsPresent();
        DebugWriteIndented(1,
                           L">clsGPFProtection::GenerateExceptionReport(bCreateMinidumpOnly=%d, "
                           L"IsUserInteractionAllowed()=%d): DBGHELP is %s present",
                           createMinidumpOnly_, isInteractionAllowed_, isPresent ? L"" : L"not");
        if (!isPresent)
            createMinidumpOnly_ = false;
        else if (!IsWanted()) {
            DebugWriteIndented(-1, L"<clsGPFProtection::GenerateExceptionReport() -> no GPF info requested");
            return;
        }
        WriteAll();
        DebugWriteIndented(-1, L"<clsGPFProtection::GenerateExceptionReport() -> done");
    }

private:
    DWORD Code() const { return fault_.exception->ExceptionRecord->ExceptionCode; }

    void Line(const wchar_t* format, ...) override {
        static wchar_t text[kReportUnits];
        va_list arguments;
        va_start(arguments, format);
        Shielded([&] { _vsnwprintf(text, kReportUnits - 1, format, arguments); });
        va_end(arguments);
        protection_.Output(protection_.GetOutputMode(), L"%s", text);
    }

    // What the registry says about a full report, and then the user.
    bool IsWanted() const {
        if (!createMinidumpOnly_ && !IsPermittedByRegistry()) return false;
        if (!protection_.MayAskUser() || !isInteractionAllowed_) return true;
        if (AskUser(kQuestion.ForUser(), title_, kQuestionStyle, IDYES) != IDNO) return true;
        DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): user actively suppressed GPFInfo");
        return false;
    }

    static bool IsPermittedByRegistry() {
        const String key = String(kGpfInfoKey) + Identity().processBaseName;
        uint32_t number = 1;
        if (FindSettingNumber({SettingRoot::kCurrentUser, key.Text(), kGpfInfoValue}, number)) {
            DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): registry explicitly %s GPFInfo ",
                       number ? L"allows" : L"denies");
        }
        return number != 0;
    }

    void WriteAll() {
        DebugWriteIndented(1, L">clsGPFProtection::GenerateExceptionReport(): starting report");
        SetTimeStamp();
        WriteHead();
        if (!createMinidumpOnly_) {
            Guarded([&] { WriteModules(); });
            Guarded([&] { WriteStack(); });
        }
        Line(L"");
        WriteDump();
        Close();
        Line(L"<<<========================= %s", timeStamp_);
        DebugWriteIndented(-1, L"<clsGPFProtection::GenerateExceptionReport(): report finished");
    }

    void SetTimeStamp() {
        wchar_t date[30] = L"";
        wchar_t time[30] = L"";
        GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, nullptr, nullptr, date, std::size(date));
        GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_FORCE24HOURFORMAT, nullptr, nullptr, time, std::size(time));
        _snwprintf(timeStamp_, std::size(timeStamp_) - 1, L"%s, %s", date, time);
    }

    void WriteHead() {
        Line(L">>>========================= %s", timeStamp_);
        Line(L"Exception code: 0x%08x (%s)", Code(), title_);
        if (fault_.detail) Line(L"%s", fault_.detail);
        Line(L"Code environment:");
        WriteCode();
    }

    // Only the low 32 bits of the address are used, also in a 64-bit process: readers of reports know them
    // so.
    void WriteCode() {
        constexpr uint64_t kRow = ~(kRowBytes - 1);
        const uint64_t address = static_cast<uint32_t>(fault_.exception->ContextRecord->Rip);
        const uint64_t end = (address + kDumpReach + 1) & kRow;
        for (uint64_t row = (address - kDumpReach) & kRow; row != end; row += kRowBytes) WriteRow(row);
    }

    void WriteRow(uint64_t start) {
        static wchar_t row[kRowUnits];
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        int length = _snwprintf(row, kRowUnits - 1, L"%#p ", reinterpret_cast<const void*>(start));
        for (uint64_t i = 0; i < kRowBytes; ++i) {
            uint8_t byte;
            wchar_t* const at = row + length;
            const size_t left = kRowUnits - 1 - static_cast<size_t>(length);
            length += ReadOwnMemory(&byte, start + i, 1) ? _snwprintf(at, left, L"%02x ", byte)
                                                         : _snwprintf(at, left, L"-- ");
        }
        Line(L" %s", row);
    }

    void WriteModules() {
        DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): listing modules");
        const auto modules = engine_.ModuleList();
        if (!modules) {
            DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): DBGHELP.GetModuleList() failed");
            return;
        }
        Line(L"List of Modules:");
        for (const DBGModuleItem* module; modules->Next(1, &module, nullptr) == S_OK;)
            WriteModuleLine(*module, *this);
    }

    void WriteStack() {
        DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): issuing stacktrace");
        const auto frames = engine_.StackTrace(fault_.exception->ContextRecord);
        if (!frames) {
            DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): DBGHELP.GetStackTrace() failed");
            return;
        }
        Line(L"Stack Trace:");
        for (const DBGStackTraceItem* frame; frames->Next(1, &frame, nullptr) == S_OK;)
            WriteFrameLines(*frame, AddressForm::kShort, *this);
        Line(L"   =========================");
    }

    void WriteDump() {
        DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): creating minidump");
        if (engine_.WriteMiniDump(dumpName_, kNameUnits, fault_.exception)) return;
        DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): DBGHELP.WriteMiniDump() failed");
        dumpName_[0] = L'\0';
        createMinidumpOnly_ = false;
    }

    // Writes the closing text, and shows it. It is also shown where nobody was asked at first, if the report
    // is a short one with a dump.
    void Close() {
        const bool hasDump = dumpName_[0] != L'\0';
        static wchar_t text[kNameUnits + 160];
        if (hasDump)
            _snwprintf(text, std::size(text) - 1, L"%s", kClosingWithDump.ForUser());
        else
            _snwprintf(text, std::size(text) - 1, kClosingWithoutDump.ForUser(), CrashLogPath());
        Line(L"%s", text);
        if ((createMinidumpOnly_ || protection_.MayAskUser()) && isInteractionAllowed_)
            ShowClosing(text, hasDump);
    }

    void ShowClosing(const wchar_t* text, bool hasDump) {
        if (hasDump) {
            DebugWrite(
                L"clsGPFProtection::GenerateExceptionReport(): asking user to open directory with "
                L"support information");
        } else {
            DebugWrite(
                L"clsGPFProtection::GenerateExceptionReport(): creating minidump failed, informing "
                L"user about that. Greetz to ZT (#6632)");
        }
        const UINT style = kClosingStyle | (hasDump ? MB_YESNO : MB_OK);
        if (AskUser(text, title_, style, hasDump ? IDYES : IDOK) != IDYES || !hasDump) return;
        DebugWrite(L"clsGPFProtection::GenerateExceptionReport(): showing '%s'", dumpName_);
        ShellExecuteW(nullptr, L"open", DirectoryPart(dumpName_).Text(), nullptr, nullptr, SW_SHOWNORMAL);
    }

    clsGPFProtection& protection_;
    const scReportedFault& fault_;
    bool createMinidumpOnly_;
    const wchar_t* const title_;
    bool isInteractionAllowed_ = true;
    clsUtilDebugHelpWrapper engine_;
    wchar_t timeStamp_[64] = L"";
    wchar_t dumpName_[kNameUnits] = L"";
};

} // namespace

void clsGPFProtection::GenerateExceptionReport(const scReportedFault& fault, bool createMinidumpOnly) {
    const clsCriticalSectionScope scope(reportLock);
    const clsTraceRingPause pause;
    const clsScreenFreeze freeze;
    Guarded([&] { ExceptionReport(*this, fault, createMinidumpOnly).Make(); });
}

} // namespace vxut
