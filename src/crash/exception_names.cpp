#include "crash/exception_names.h"

#include "base/loader_lock.h"

#include <cwchar>
#include <iterator>

namespace vxut {
namespace {

struct CodeName {
    DWORD code;
    const wchar_t* name;
};
constexpr CodeName kNames[] = {
    {0x80000002, L"Misalignment"},
    {0x80000003, L"Breakpoint"},
    {0x80000004, L"SingleStep"},
    {0xC0000005, L"Access Violation"},
    {0xC0000006, L"Paging error"},
    {0xC000001D, L"Illegal Instruction Encountered"},
    {0xC0000025, L"Noncontinuable Exception"},
    {0xC0000026, L"Invalid Disposition"},
    {0xC000008C, L"Bounds Exceeded"},
    {0xC000008D, L"Float: Denormal Operand"},
    {0xC000008E, L"Float: Division by Zero"},
    {0xC000008F, L"Float: Inexact Result"},
    {0xC0000090, L"Float: Invalid Operation"},
    {0xC0000091, L"Float: Overflow"},
    {0xC0000092, L"Float: StackCheck"},
    {0xC0000093, L"Float: Underflow"},
    {0xC0000094, L"Integer Division by Zero"},
    {0xC0000095, L"Integer: Overflow"},
    {0xC0000096, L"Privileged Instruction Encountered"},
    {0xC00000FD, L"Stack Overflow"},
};

// The heap may be what is damaged.
wchar_t systemText[200];

// The name is a title too: the line end of the system's text does not belong to it.
const wchar_t* SystemText(DWORD code) {
    systemText[0] = L'\0';
    if (!IsLoaderFree()) return systemText;
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  GetModuleHandleW(L"NTDLL.DLL"), code, 0, systemText,
                                  static_cast<DWORD>(std::size(systemText)), nullptr);
    while (length > 0 && std::wcschr(L"\r\n ", systemText[length - 1])) --length;
    systemText[length] = L'\0';
    return systemText;
}

} // namespace

const wchar_t* ExceptionName(DWORD code) {
    for (const CodeName& entry : kNames)
        if (entry.code == code) return entry.name;
    return SystemText(code);
}

} // namespace vxut
