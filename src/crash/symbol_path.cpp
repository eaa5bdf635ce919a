#include "crash/symbol_path.h"

#include "base/grow_buffer.h"
#include "base/identity.h"
#include "checks/validate.h"
#include "containers/list.h"
#include "text/settings.h"

namespace vxut {
namespace {

String CurrentDirectory() {
    clsGrowBuffer<wchar_t, MAX_PATH> path;
    path.Fill([](wchar_t* target, DWORD capacity) { return GetCurrentDirectoryW(capacity, target); });
    return path.Get();
}

String Below(const String& folder, const wchar_t* name) {
    return folder.IsEmpty() ? folder : folder + L"\\" + name;
}

} // namespace

String BuildSymbolPath(const scSymbolPathFacts& facts) {
    String program = facts.programDirectory;
    program.TrimRight(L'\\');
    String path = L".";
    for (const String& part :
         {facts.currentDirectory, program, facts.symbolPath, facts.alternateSymbolPath, facts.systemRoot,
          Below(facts.systemRoot, L"system32"), Below(facts.systemRoot, L"syswow64"),
          facts.isDeveloper ? String(L"d:\\bin") : String()}) {
        if (!part.IsEmpty()) path += L";" + part;
    }
    return path;
}

String SymbolPath() {
    return BuildSymbolPath(
        {CurrentDirectory(), Identity().processDirectory, EnvironmentText(L"_NT_SYMBOL_PATH"),
         EnvironmentText(L"_NT_ALTERNATE_SYMBOL_PATH"), EnvironmentText(L"SYSTEMROOT"), IsDeveloperLogin()});
}

} // namespace vxut
