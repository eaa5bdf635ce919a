#include "host/profile_tree.h"

#include "host/command.h"
#include "host/output.h"
#include "host/text.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vlm {

namespace {

struct Entry {
    std::wstring name;
    std::wstring value;
    HPROFLIST sublist;
};

// The entries of one list, and the number of those already printed.
struct Level {
    std::vector<Entry> entries;
    size_t next = 0;
};

// An exception must not leave the callback: it would pass through the library.
int CALLBACK Collect(HPROF, const wchar_t* name, const wchar_t* value, HPROFLIST sublist,
                     void* user) noexcept {
    try {
        static_cast<std::vector<Entry>*>(user)->push_back({name, value, sublist});
        return 1;
    } catch (...) {
        return 0;
    }
}

Level EntriesOf(HPROF job, HPROFLIST list) {
    Level level;
    if (!ProfEnumW(job, list, Collect, &level.entries)) Fail(L"the list could not be read to its end");
    return level;
}

// The indentation is limited, or the output of a deep tree would grow with the square of its depth.
std::wstring Indentation(size_t depth) {
    constexpr size_t kMaximumDepth = 40;
    return std::wstring(2 * std::min(depth, kMaximumDepth), L' ');
}

void PrintEntry(const Entry& entry, size_t depth, Output& out) {
    out.Write(Indentation(depth));
    if (entry.sublist)
        out.Line(L"[" + Visible(entry.name) + L"]");
    else
        out.Line(Visible(entry.name) + L" = " + Visible(entry.value));
}

} // namespace

// Keeps the open levels in a vector instead of recursing: a tree may be deeper than the thread's stack.
void PrintTree(HPROF job, HPROFLIST list, Output& out) {
    std::vector<Level> levels;
    levels.push_back(EntriesOf(job, list));
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.entries.size()) {
            levels.pop_back();
            continue;
        }
        const Entry& entry = level.entries[level.next++];
        PrintEntry(entry, levels.size() - 1, out);
        if (entry.sublist) levels.push_back(EntriesOf(job, entry.sublist));
    }
}

} // namespace vlm
