#include "trace/version_text.h"

#include "base/byte_cursor.h"
#include "base/guard.h"
#include "base/identity.h"
#include "base/loader_lock.h"

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <memory>

namespace vxut {
namespace {

const wchar_t* const kVersionType = MAKEINTRESOURCEW(16);
const wchar_t* const kVersionName = MAKEINTRESOURCEW(1);
constexpr const wchar_t* kShownValues[] = {L"FileVersion", L"Build"};
constexpr wchar_t kStringsRoot[] = L"\\StringFileInfo\\";

// A block of version data begins with its length, that of its value and a type, 16 bits each. Its name
// follows.
constexpr size_t kBlockHeadBytes = 6;

// A copy of version data, in which the system's functions find what is asked for.
class VersionData {
public:
    VersionData(const void* data, size_t bytes) : data_(new BYTE[bytes]), bytes_(bytes) {
        std::memcpy(data_.get(), data, bytes);
    }

    // The value at a path; empty if there is none.
    String Text(const String& path) const {
        UINT units = 0;
        const auto* text = static_cast<const wchar_t*>(Find(path.Text(), units));
        String result;
        if (text) result.Append(text, static_cast<int64_t>(wcsnlen(text, units)));
        return result;
    }

    // The path of the strings in the first language, with a backslash at its end. Empty if there are none.
    String StringsPath() const {
        const String path = PathOfTranslation();
        return path.IsEmpty() ? PathOfFirstBlock() : path;
    }

private:
    const void* Find(const wchar_t* path, UINT& size) const {
        void* value = nullptr;
        return VerQueryValueW(data_.get(), path, &value, &size) ? value : nullptr;
    }

    String PathOfTranslation() const {
        UINT bytes = 0;
        const auto* translation = static_cast<const WORD*>(Find(L"\\VarFileInfo\\Translation", bytes));
        String path;
        if (translation && bytes >= 2 * sizeof(WORD))
            path.Format(L"%s%04x%04x\\", kStringsRoot, translation[0], translation[1]);
        return path;
    }

    // The blocks of strings are the children of an entry without a value. Their names are hexadecimal.
    String PathOfFirstBlock() const {
        UINT ignored = 0;
        const auto* const block = static_cast<const BYTE*>(Find(kStringsRoot, ignored));
        String path;
        clsByteCursor head(data_.get(), bytes_);
        wchar_t unit;
        if (!block || block < data_.get() || !head.Seek(static_cast<size_t>(block - data_.get())) ||
            !head.Skip(kBlockHeadBytes) || !head.PeekLittle(unit) || unit == 0 || unit >= L'A')
            return path;
        path = kStringsRoot;
        while (head.ReadLittle(unit) && unit != 0) path.Append(unit);
        path.Append(L'\\');
        return path;
    }

    std::unique_ptr<BYTE[]> data_;
    size_t bytes_;
};

struct ModuleSearch {
    const wchar_t* fileName;
    String text;
};

BOOL CALLBACK TakeLanguage(HMODULE module, LPCWSTR type, LPCWSTR name, WORD language, LONG_PTR parameter) {
    return Guarded(TRUE, [&] {
        auto& search = *reinterpret_cast<ModuleSearch*>(parameter);
        const HRSRC found = FindResourceExW(module, type, name, language);
        const void* data = found ? LockResource(LoadResource(module, found)) : nullptr;
        if (data && search.text.IsEmpty())
            search.text = VersionTextOfData(search.fileName, data, SizeofResource(module, found));
        return TRUE;
    });
}

String TextOfModule(HMODULE module, const wchar_t* fileName) {
    ModuleSearch search = {fileName, {}};
    if (!EnumResourceLanguagesW(module, kVersionType, kVersionName, TakeLanguage,
                                reinterpret_cast<LONG_PTR>(&search))) {
        String report;
        report.Format(L"** EnumResourceTypes: ERROR %s\n", String::FromError(GetLastError()).Text());
        OutputDebugStringW(report.Text());
    }
    return search.text;
}

String TextOfFile(const wchar_t* path, const wchar_t* fileName) {
    const DWORD bytes = GetFileVersionInfoSizeW(path, nullptr);
    if (bytes == 0) return String();
    const std::unique_ptr<BYTE[]> data(new BYTE[bytes]);
    if (!GetFileVersionInfoW(path, 0, bytes, data.get())) return String();
    return VersionTextOfData(fileName, data.get(), bytes);
}

} // namespace

const wchar_t* clsVersionText::Text() {
    if (text_.IsEmpty() && IsLoaderFree())
        text_ = BuildVersionText(Identity().libraryPath, Identity().libraryFileName);
    return text_.Text();
}

String VersionTextOfData(const wchar_t* fileName, const void* data, size_t bytes) {
    const VersionData version(data, bytes);
    const String path = version.StringsPath();
    String text;
    for (const wchar_t* name : kShownValues) {
        const String value = path.IsEmpty() ? path : version.Text(path + name);
        if (value.IsEmpty()) continue;
        if (text.IsEmpty()) text = String(fileName).Upper();
        text += L' ';
        text += value;
    }
    return text;
}

String VersionStringOfModule(HMODULE module, const wchar_t* name) {
    const HRSRC found = FindResourceW(module, kVersionName, kVersionType);
    const void* const data = found ? LockResource(LoadResource(module, found)) : nullptr;
    if (!data) return String();
    const VersionData version(data, SizeofResource(module, found));
    const String path = version.StringsPath();
    return path.IsEmpty() ? path : version.Text(path + name);
}

String BuildVersionText(const wchar_t* libraryPath, const wchar_t* fileName) {
    String text;
    if (const HMODULE module = GetModuleHandleW(libraryPath)) text = TextOfModule(module, fileName);
    if (text.IsEmpty()) text = TextOfFile(libraryPath, fileName);
    return text.IsEmpty() ? String(fileName).Upper() + L"  <no version info>" : text;
}

} // namespace vxut
