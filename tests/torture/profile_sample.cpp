#include "profile_sample.h"

#include <objbase.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace torture {
namespace {

namespace fs = std::filesystem;

struct Walk {
    Tree tree;
    std::wstring path;
};

int CALLBACK AddEntry(HPROF job, const wchar_t* name, const wchar_t* value, HPROFLIST sublist, void* user) {
    Walk& walk = *static_cast<Walk*>(user);
    if (sublist == nullptr) {
        walk.tree.push_back(walk.path + name + L"=" + value);
        return 1;
    }
    const std::wstring outer = walk.path;
    walk.path += std::wstring(name) + L"/";
    walk.tree.push_back(walk.path);
    ProfEnumW(job, sublist, AddEntry, user);
    walk.path = outer;
    return 1;
}

} // namespace

Tree TreeOf(HPROF job, HPROFLIST list) {
    Walk walk;
    ProfEnumW(job, list, AddEntry, &walk);
    return walk.tree;
}

bool IsStartOf(const Tree& start, const Tree& whole) {
    return start.size() <= whole.size() && std::equal(start.begin(), start.end(), whole.begin());
}

void FillSample(HPROF job, int number) {
    const std::wstring mark = std::to_wstring(number);
    ProfAppendStringW(job, nullptr, L"Number", mark.c_str());
    ProfAppendStringW(job, nullptr, L"A name of more than twenty units", (L"short " + mark).c_str());
    ProfAppendStringW(job, nullptr, L"Long", (std::wstring(300, L'v') + mark).c_str());
    ProfAppendStringW(job, nullptr, L"Outer/Greek", L"\x3B1\x3B2\x3B3 and \x4E2D\x6587");
    ProfAppendStringW(job, nullptr, L"Outer/Inner list with a long name/Deep", mark.c_str());
    ProfAppendStringW(job, nullptr, L"Outer/Inner list with a long name/Lines", L"one\r\ntwo\tthree");
    for (int i = 0; i < 60; ++i)
        ProfAppendStringW(job, nullptr, (L"Many/Item" + std::to_wstring(i)).c_str(),
                          (mark + L" of many").c_str());
    ProfAppendListW(job, nullptr, L"Empty");
}

std::string SampleFile(int number, uint32_t format) {
    const HPROF job = ProfJobOpenW(nullptr);
    FillSample(job, number);
    ProfSaveW(job, L"sample.prf", format);
    ProfJobClose(job);
    std::string bytes = BytesOf(L"sample.prf");
    fs::remove("sample.prf");
    return bytes;
}

std::string BytesOf(const wchar_t* name) {
    std::ifstream file(fs::path(name), std::ios::binary);
    if (!file) return "(no file)";
    return {std::istreambuf_iterator<char>(file), {}};
}

void PutFile(const wchar_t* name, const std::string& bytes) {
    std::ofstream(fs::path(name), std::ios::binary) << bytes;
}

std::string NamesInFolder() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

} // namespace torture
