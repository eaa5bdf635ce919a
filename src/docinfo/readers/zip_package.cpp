// Office documents that are ZIP packages: OpenDocument and Office Open XML.
#include "base/debug.h"
#include "docinfo/readers/package_patterns.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/zip_member.h"

#include <cstring>
#include <string>
#include <vector>

namespace vxut {
namespace {

constexpr int64_t kLeastBytes = 22;

struct Member {
    const char* name;
    void (*read)(clsDocu& document, const String& text);
};
constexpr Member kMembers[] = {
    {"meta.xml", ReadOpenDocumentProperties},
    {"docProps/core.xml", ReadCoreProperties},
};

// Returns null for a member without properties.
const Member* MemberOf(const std::string& name) {
    for (const Member& member : kMembers)
        if (_stricmp(member.name, name.c_str()) == 0) return &member;
    return nullptr;
}

int Fail(const wchar_t* report) {
    DebugWrite(report);
    return -1;
}

// The patterns look for bytes: a value is converted after it was found.
String WidenBytes(const std::vector<uint8_t>& bytes) {
    return clsCHARString(reinterpret_cast<const char*>(bytes.data()), static_cast<int64_t>(bytes.size()))
        .ToString(0);
}

} // namespace

int ReadZipPackage(clsDocu& document, clsDocFile& file) {
    const int64_t size = file.GetSize();
    if (size < kLeastBytes) return Fail(L"WRN: GetZIPFilenames: file has bad format (no finalizer)");
    scZipDirectoryEnd end;
    if (!ReadZipDirectoryEnd(file, size, end))
        return Fail(L"WRN: GetZIPFilenames: read error (no finalizer found)");
    if (file.SetPosition(end.offset) != end.offset)
        return Fail(L"WRN: GetZIPFilenames: file has bad format (2)");
    clsZipDirectory directory(file, size, end.offset);
    for (int i = 0; i < end.entries; ++i) {
        scZipDirectoryEntry entry;
        if (!directory.Next(entry)) return Fail(L"WRN: GetZIPFilenames: file has bad format");
        const Member* const member = MemberOf(entry.name);
        if (!member) continue;
        const std::vector<uint8_t> text = ZipMemberText(file, entry);
        if (!text.empty()) member->read(document, WidenBytes(text));
        return 0;
    }
    return -1;
}

} // namespace vxut
