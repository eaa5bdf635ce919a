#include "host/trace_processes.h"

#include <iterator>
#include <utility>

namespace vlm {

namespace {

// Of so many threads the viewer forgets all, and asks anew.
constexpr size_t kMostThreads = 4096;
constexpr wchar_t kUnknownName[] = L"?";

std::wstring NameOf(const std::wstring& path) { return path.substr(path.find_last_of(L"\\/") + 1); }

std::wstring NameOfProcess(HANDLE process) {
    wchar_t path[MAX_PATH];
    DWORD units = MAX_PATH;
    return process && QueryFullProcessImageNameW(process, 0, path, &units) ? NameOf(path) : kUnknownName;
}

} // namespace

std::wstring clsTraceProcess::Label() const {
    return name_ + L":" + (id_ ? std::to_wstring(id_) : kUnknownName);
}

int clsTraceProcess::CountMissing(int digit, size_t strangers) {
    const int last = std::exchange(lastDigit_, digit);
    const size_t newStrangers = strangers - std::exchange(lastStrangers_, strangers);
    const int missing = last < 0 ? 0 : (digit - last - 1 + 10) % 10;
    return newStrangers < static_cast<size_t>(missing) ? missing : 0;
}

clsTraceProcess* clsTraceProcesses::OfThread(DWORD thread) {
    const auto known = threads_.find(thread);
    if (known != threads_.end()) return known->second.process.get();
    HandleOwner handle = Own(OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, thread));
    const DWORD id = handle ? GetProcessIdOfThread(handle.get()) : 0;
    if (id == 0) return nullptr;
    if (threads_.size() >= kMostThreads) {
        threads_.clear();
        processes_.clear();
    }
    const auto process = ProcessOf(id);
    threads_[thread] = {std::move(handle), process};
    return process.get();
}

std::shared_ptr<clsTraceProcess> clsTraceProcesses::ProcessOf(DWORD id) {
    if (auto known = processes_[id].lock()) return known;
    HandleOwner handle = Own(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    std::wstring name = NameOfProcess(handle.get());
    auto process = std::make_shared<clsTraceProcess>(id, std::move(name), std::move(handle));
    processes_[id] = process;
    return process;
}

// One whose process could not be asked is forgotten: the id may have been given out again.
clsTraceProcess* clsTraceProcesses::Join(DWORD thread, const std::wstring& path) {
    std::erase_if(threads_, [&](const auto& entry) { return entry.first == thread && !entry.second.handle; });
    if (clsTraceProcess* process = OfThread(thread)) return process;
    const auto process = std::make_shared<clsTraceProcess>(0, NameOf(path), nullptr);
    threads_[thread] = {nullptr, process};
    return process.get();
}

void clsTraceProcesses::Leave(DWORD thread) {
    const auto leaving = threads_.find(thread);
    if (leaving == threads_.end()) return;
    const std::shared_ptr<clsTraceProcess> process = leaving->second.process;
    std::erase_if(threads_, [&](const auto& entry) { return entry.second.process == process; });
    processes_.erase(process->Id());
}

} // namespace vlm
