#include "crash/module_version.h"

#include "base/owners.h"

#include <windows.h>

#include <cwchar>

namespace vxut {
namespace {

// The texts of one language.
class VersionStrings {
public:
    explicit VersionStrings(const String& path) {
        const DWORD bytes = GetFileVersionInfoSizeW(path.Text(), nullptr);
        if (bytes == 0) return;
        data_.reset(new BYTE[bytes]);
        if (!GetFileVersionInfoW(path.Text(), 0, bytes, data_.get())) {
            data_.reset();
            return;
        }
        UINT size = 0;
        const auto* translation = static_cast<const WORD*>(Find(L"\\VarFileInfo\\Translation", size));
        if (translation && size >= 2 * sizeof(WORD))
            block_.Format(L"\\StringFileInfo\\%04x%04x\\", translation[0], translation[1]);
    }

    String Text(const wchar_t* name) const {
        UINT units = 0;
        const auto* text =
            block_.IsEmpty() ? nullptr : static_cast<const wchar_t*>(Find((block_ + name).Text(), units));
        String result;
        if (text) result.Append(text, static_cast<int64_t>(wcsnlen(text, units)));
        return result;
    }

private:
    const void* Find(const wchar_t* path, UINT& size) const {
        void* value = nullptr;
        return VerQueryValueW(data_.get(), path, &value, &size) ? value : nullptr;
    }

    clsAutoDeleteBytes<BYTE> data_;
    String block_;
};

} // namespace

scModuleVersion ReadModuleVersion(const String& path) {
    const VersionStrings strings(path);
    return {strings.Text(L"FileVersion"), strings.Text(L"ProductVersion"), strings.Text(L"CompanyName")};
}

} // namespace vxut
