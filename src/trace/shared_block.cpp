#include "trace/shared_block.h"

namespace vxut {

clsSharedBlock::clsSharedBlock(const wchar_t* name, DWORD bytes) noexcept {
    SECURITY_DESCRIPTOR open;
    InitializeSecurityDescriptor(&open, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&open, TRUE, nullptr, FALSE); // a null list means access for everyone
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, &open, FALSE};
    // The system zeroes new pages.
    mapping_.Reset(
        CreateFileMappingW(INVALID_HANDLE_VALUE, &attributes, PAGE_READWRITE | SEC_COMMIT, 0, bytes, name));
    wasThere_ = GetLastError() == ERROR_ALREADY_EXISTS;
    if (mapping_) view_.Reset(MapViewOfFile(mapping_.Get(), FILE_MAP_WRITE, 0, 0, 0));
}

} // namespace vxut
