#include "files/plain_name.h"

#include "base/path_limits.h"
#include "files/path.h"

#include <windows.h>

#include <string_view>

namespace vxut {
namespace {

constexpr std::wstring_view kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
constexpr std::wstring_view kNumberedDevices[] = {L"COM", L"LPT"};
// The system takes the superscript digits of Latin-1 for digits here.
constexpr std::wstring_view kDeviceNumbers = L"123456789\u00B9\u00B2\u00B3";

bool IsEqual(std::wstring_view name, std::wstring_view device) {
    return CompareStringOrdinal(name.data(), static_cast<int>(name.size()), device.data(),
                                static_cast<int>(device.size()), TRUE) == CSTR_EQUAL;
}

// What decides whether a name is a device: all before the first dot, without blanks at its end.
std::wstring_view DeviceWord(std::wstring_view name) {
    const std::wstring_view word = name.substr(0, name.find(L'.'));
    return word.substr(0, word.find_last_not_of(L' ') + 1);
}

bool IsDevice(std::wstring_view name) {
    const std::wstring_view word = DeviceWord(name);
    for (const std::wstring_view device : kDevices)
        if (IsEqual(word, device)) return true;
    if (word.empty() || kDeviceNumbers.find(word.back()) == std::wstring_view::npos) return false;
    for (const std::wstring_view device : kNumberedDevices)
        if (IsEqual(word.substr(0, word.size() - 1), device)) return true;
    return false;
}

} // namespace

// The test for file names is one for names without a folder: it lets a backslash pass.
bool IsPlainFileName(const String& name) {
    const std::wstring_view units(name.Text(), static_cast<size_t>(name.Length()));
    return name.Length() <= kMostNameUnits && units.find_first_of(L"\\/:") == std::wstring_view::npos &&
           IsFileNameAllowed(name) && !IsDevice(units);
}

} // namespace vxut
