#include "host/trace_processes.h"

#include <iterator>
#include <utility>

namespace vlm {

namespace {

constexpr size_t kMaxThreads = 1024;
constexpr size_t kMaxNameUnits = 64;
constexpr wchar_t kUnknownName[] = L"?";

std::wstring NameOf(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1, kMaxNameUnits);
}

std::wstring NameOfProcess(HANDLE process) {
    wchar_t path[MAX_PATH];
    DWORD units = MAX_PATH;
    return process && QueryFullProcessImageNameW(process, 0, path, &units) ? NameOf(path) : kUnknownName;
}

} // namespace

std::wstring TraceProcess::Label() const {
    return name_ + L":" + (id_ ? std::to_wstring(id_) : kUnknownName);
}

int TraceProcess::CountMissing(int digit, size_t strangers) {
    const int last = std::exchange(lastDigit_, digit);
    const size_t newStrangers = strangers - std::exchange(lastStrangers_, strangers);
    const int missing = last < 0 ? 0 : (digit - last - 1 + 10) % 10;
    return newStrangers < static_cast<size_t>(missing) ? missing : 0;
}

TraceProcess* TraceProcesses::OfThread(DWORD thread) {
    const auto known = threads_.find(thread);
    if (known != threads_.end()) return known->second.process.get();
    HandleOwner handle = Own(OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, thread));
    const DWORD id = handle ? GetProcessIdOfThread(handle.get()) : 0;
    if (id == 0) return nullptr;
    return Remember(thread, {std::move(handle), ProcessOf(id)});
}

TraceProcess* TraceProcesses::Remember(DWORD thread, Thread known) {
    if (threads_.size() >= kMaxThreads) {
        threads_.clear();
        processes_.clear();
    }
    return (threads_[thread] = std::move(known)).process.get();
}

std::shared_ptr<TraceProcess> TraceProcesses::ProcessOf(DWORD id) {
    if (auto known = processes_[id].lock()) return known;
    HandleOwner handle = Own(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    std::wstring name = NameOfProcess(handle.get());
    auto process = std::make_shared<TraceProcess>(id, std::move(name), std::move(handle));
    processes_[id] = process;
    return process;
}

// A thread that could not be opened is forgotten first: its id may belong to a new thread by now.
TraceProcess* TraceProcesses::Join(DWORD thread, const std::wstring& path) {
    std::erase_if(threads_, [&](const auto& entry) { return entry.first == thread && !entry.second.handle; });
    if (TraceProcess* process = OfThread(thread)) return process;
    return Remember(thread, {nullptr, std::make_shared<TraceProcess>(0, NameOf(path), nullptr)});
}

void TraceProcesses::Leave(DWORD thread) {
    const auto leaving = threads_.find(thread);
    if (leaving == threads_.end()) return;
    const std::shared_ptr<TraceProcess> process = leaving->second.process;
    std::erase_if(threads_, [&](const auto& entry) { return entry.second.process == process; });
    processes_.erase(process->Id());
}

} // namespace vlm
