// vlm crash: crashes on purpose, and what their archives say.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/crash_show.h"
#include "host/output.h"

#include <util.h>
#include <util/crash_hooks.h>
#include <windows.h>

#include <cstdlib>
#include <exception>
#include <string>

namespace vlm {

namespace {

struct CrashClass {
    const wchar_t* name;
    const wchar_t* help;
    void (*die)();
};

[[gnu::noinline]] int Recurse(int depth) {
    volatile char space[1024];
    for (size_t i = 0; i < sizeof space; i += 64) space[i] = static_cast<char>(depth);
    return depth < 0 ? 0 : Recurse(depth + 1) + space[depth % 1024];
}

unsigned char noCode[16] = {0xC3};

constexpr CrashClass kClasses[] = {
    {L"read", L"read memory that is not there",
     [] { static_cast<void>(*reinterpret_cast<volatile int*>(16)); }},
    {L"write", L"write memory that is not there", [] { *reinterpret_cast<volatile int*>(16) = 1; }},
    {L"execute", L"execute data, for which there is a full report",
     [] { reinterpret_cast<void (*)()>(noCode)(); }},
    {L"divide", L"divide by zero",
     [] {
         __asm__ volatile("xorl %%ecx, %%ecx; xorl %%edx, %%edx; idivl %%ecx" : : : "eax", "ecx", "edx");
     }},
    {L"illegal", L"execute an illegal instruction", [] { __asm__ volatile("ud2"); }},
    {L"privileged", L"execute a privileged instruction", [] { __asm__ volatile("hlt"); }},
    {L"heap", L"raise the code of a corrupted heap", [] { RaiseException(0xC0000374, 0, 0, nullptr); }},
    {L"overflow", L"overflow the stack, with a reserve for the report", [] { Recurse(0); }},
    {L"abort", L"abort, with the hooks set", [] { std::abort(); }},
    {L"terminate", L"terminate, with the hooks set", [] { std::terminate(); }},
    {L"fast-fail", L"fail fast, which no filter sees: try it under 'vlm watch'",
     [] {
         __asm__ volatile("int $0x29" : : "c"(7));
     }},
};

const CrashClass& ClassNamed(const std::wstring& name) {
    for (const CrashClass& each : kClasses)
        if (name == each.name) return each;
    FailUsage(L"unknown class: " + name);
}

std::wstring ClassDetails() {
    std::wstring text = L"Classes:\n";
    for (const CrashClass& each : kClasses) {
        std::wstring name = each.name;
        name.resize(12, L' ');
        text += L"  " + name + each.help + L"\n";
    }
    return text;
}

ExitCode RunCrashDemo(const Arguments& arguments, Output& out) {
    constexpr uint32_t kReserve = 256 * 1024;
    const CrashClass& chosen = ClassNamed(arguments.Operand(0));
    UtilExHandlerSetOption(UTIL_EXHANDLER_STACK_RESERVE, kReserve);
    UtilExHandlerSetOption(UTIL_EXHANDLER_TRACE_LINES, 1000);
    UtilExHandlerSetOption(UTIL_EXHANDLER_PACK_ALWAYS, 1);
    UtilExHandlerJobOpen();
    UtilExHandlerStartProtection(0);
    UtilCrashHooksSet();
    out.Line(L"Dying of: " + std::wstring(chosen.help));
    out.Flush();
    UtilDebug(L"info: vlm crash demo %s", chosen.name);
    chosen.die();
    UtilCrashHooksRemove();
    UtilExHandlerEndProtection(0);
    UtilExHandlerJobClose();
    Fail(L"the process has survived");
}

constexpr Option kShowOptions[] = {{kCrashJson, nullptr, L"write one JSON object"}};

const Command kCommands[] = {
    {
        .name = L"demo",
        .summary = L"Die of a fault under protection",
        .operands = L"CLASS",
        .help =
            L"Writes a report to VELMORA.LOG in the folder of the user's application data, and an archive\n"
            L"to the folder \"Velmora\" of the temp folder. The process ends with the code of the fault.",
        .details = ClassDetails,
        .run = RunCrashDemo,
    },
    {
        .name = L"show",
        .summary = L"Show the exception, registers, stack, modules, threads and logs of a crash archive",
        .operands = L"ARCHIVE",
        .help = L"ARCHIVE is a crash archive or a minidump. Symbols are shown for modules whose files and\n"
                L"symbols are found on this machine, under the paths in the dump.",
        .options = kShowOptions,
        .run = RunCrashShow,
    },
};

} // namespace

Command CrashCommands() {
    return {.name = L"crash", .summary = L"Crash on purpose, and show crash archives", .children = kCommands};
}

} // namespace vlm
