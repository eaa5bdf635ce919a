// The members of String that build texts: printf formats, message templates, system texts.
#include "text/string.h"

#include "base/debug.h"
#include "base/language.h"
#include "base/owners.h"
#include "checks/validate.h"
#include "text/checked_format.h"

#include <cwchar>

namespace vxut {
namespace {

constexpr wchar_t kFormatError[] = L"<printf format error>";

// Expands a template of the "%1" kind. Returns an empty text, and leaves the last error, if the system
// cannot.
String ExpandTemplate(const wchar_t* text, va_list* arguments) {
    if (text == nullptr || *text == 0) return String(); // an error to the system
    clsAutoLocalFree expanded;
    const DWORD flags = FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ALLOCATE_BUFFER;
    const DWORD length =
        FormatMessageW(flags, text, 0, 0, reinterpret_cast<wchar_t*>(expanded.Receive()), 0, arguments);
    return length ? String(expanded.Get()) : String();
}

String ModuleFileName(HMODULE module) {
    wchar_t name[MAX_PATH] = L"";
    GetModuleFileNameW(module, name, MAX_PATH);
    return name;
}

} // namespace

int64_t String::Format(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int64_t length = FormatV(format, arguments);
    va_end(arguments);
    return length;
}

int64_t String::FormatV(const wchar_t* format, va_list arguments) {
    clsUnitBuffer text;
    if (!FormatChecked(text, format, arguments)) {
        Assign(kFormatError);
        return 0;
    }
    if (text.Length() > 0)
        AssignUnits(text.Text(), text.Length());
    else
        Empty();
    return length_;
}

String String::Message(HMODULE module, uint32_t id, ...) {
    const String text = FromResource(module, id, UserLanguageId());
    if (text.IsEmpty()) {
        const DWORD error = GetLastError();
        if (IsDeveloperLogin()) {
            DebugWrite(L"String::Message(): String ressource %d not found in %s: '%s'", id,
                       ModuleFileName(module).Text(), FromError(error).Text());
        }
        return String();
    }
    va_list arguments;
    va_start(arguments, id);
    String message = ExpandTemplate(text.Text(), &arguments);
    va_end(arguments);
    return message;
}

String String::VMessage(const wchar_t* format, va_list* arguments) {
    SetLastError(ERROR_SUCCESS);
    String message = ExpandTemplate(format, arguments);
    const DWORD error = GetLastError();
    if (message.IsEmpty() && error != ERROR_SUCCESS) {
        message = FromError(error);
        DebugWrite(L"String::VMessage(): FormatMessage() failed: %s", message.Text());
    }
    return message;
}

String String::FromError(DWORD code, DWORD language) {
    constexpr DWORD kCapacity = 264;
    wchar_t text[kCapacity];
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    DWORD length = FormatMessageW(flags, nullptr, code, language, text, kCapacity, nullptr);
    String result;
    if (length == 0) {
        result.Format(L"(error code %#08lx)", code);
        return result;
    }
    while (length > 0 && std::wcschr(L"\r\n ", text[length - 1])) --length;
    text[length] = L'\0';
    result.Format(L"%s (%08lx)", text, code);
    return result;
}

String String::FromLocaleInfo(LCTYPE type) {
    constexpr int kCapacity = 256;
    wchar_t text[kCapacity];
    return GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, kCapacity) > 0 ? String(text) : String();
}

} // namespace vxut
