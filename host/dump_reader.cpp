#include "host/dump_reader.h"

#include <algorithm>

namespace vlm {

namespace {

constexpr uint32_t kSignature = 0x504D444D; // "MDMP"
constexpr uint32_t kMostStreams = 1024;
constexpr uint32_t kMostRecords = 1u << 16; // threads, modules, ranges
constexpr uint32_t kMostTextBytes = 2 * 32768;
constexpr uint32_t kMostParameters = 15;

enum StreamType : uint32_t { kThreads = 3, kModules = 4, kMemory = 5, kExceptionStream = 6, kMemory64 = 9 };

constexpr uint64_t kThreadBytes = 48;
constexpr uint64_t kModuleBytes = 108;
constexpr uint64_t kRangeBytes = 16;

// The context of a 64-bit processor, with the flag that says so.
bool IsContext(const CONTEXT& context) { return (context.ContextFlags & CONTEXT_AMD64) != 0; }

} // namespace

bool DumpReader::Read(std::string_view bytes) {
    view_ = ByteView(bytes);
    uint32_t signature, count, directoryAt;
    if (!view_.Read(0, signature) || signature != kSignature || !view_.Read(8, count) ||
        !view_.Read(12, directoryAt))
        return false;
    for (uint64_t i = 0; i < std::min(count, kMostStreams); ++i) {
        uint32_t type, size, at;
        const uint64_t entry = directoryAt + i * 12;
        if (!view_.Read(entry, type) || !view_.Read(entry + 4, size) || !view_.Read(entry + 8, at)) break;
        ReadStream(type, size, at);
    }
    return true;
}

// The first stream of a type counts.
void DumpReader::ReadStream(uint32_t type, uint32_t bytes, uint32_t at) {
    if (!view_.Has(at, bytes)) return;
    switch (type) {
        case kThreads:
            return threads_.empty() ? ReadThreads(at) : void();
        case kModules:
            return modules_.empty() ? ReadModules(at) : void();
        case kMemory:
            return memory_.empty() ? ReadMemoryList(at) : void();
        case kMemory64:
            return memory_.empty() ? ReadMemory64List(at) : void();
        case kExceptionStream:
            return exception_ ? void() : ReadException(at);
        default:
            return;
    }
}

void DumpReader::ReadException(uint32_t at) {
    DumpException exception;
    uint32_t count;
    const uint64_t from = at;
    if (!view_.Read(from, exception.thread) || !view_.Read(from + 8, exception.code) ||
        !view_.Read(from + 12, exception.flags) || !view_.Read(from + 24, exception.address) ||
        !view_.Read(from + 32, count) || !view_.Read(from + 160, exception.contextBytes) ||
        !view_.Read(from + 164, exception.contextAt)) {
        return;
    }
    for (uint64_t i = 0; i < std::min(count, kMostParameters); ++i) {
        uint64_t parameter = 0;
        view_.Read(from + 40 + i * 8, parameter);
        exception.parameters.push_back(parameter);
    }
    exception_ = std::move(exception);
}

void DumpReader::ReadThreads(uint32_t at) {
    uint32_t count;
    if (!view_.Read(at, count)) return;
    for (uint64_t i = 0; i < std::min(count, kMostRecords); ++i) {
        const uint64_t from = at + 4 + i * kThreadBytes;
        DumpThread thread;
        uint32_t stackAt;
        if (!view_.Read(from, thread.id) || !view_.Read(from + 24, thread.stackStart) ||
            !view_.Read(from + 32, thread.stackBytes) || !view_.Read(from + 36, stackAt) ||
            !view_.Read(from + 40, thread.contextBytes) || !view_.Read(from + 44, thread.contextAt)) {
            return;
        }
        threads_.push_back(thread);
    }
}

void DumpReader::ReadModules(uint32_t at) {
    uint32_t count;
    if (!view_.Read(at, count)) return;
    for (uint64_t i = 0; i < std::min(count, kMostRecords); ++i) {
        const uint64_t from = at + 4 + i * kModuleBytes;
        DumpModule module;
        uint32_t nameAt, high, low;
        if (!view_.Read(from, module.base) || !view_.Read(from + 8, module.size) ||
            !view_.Read(from + 16, module.timeStamp) || !view_.Read(from + 20, nameAt) ||
            !view_.Read(from + 32, high) || !view_.Read(from + 36, low) || !view_.Has(from, kModuleBytes)) {
            return;
        }
        module.path = ReadText(nameAt);
        const uint32_t words[] = {high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF};
        std::copy(std::begin(words), std::end(words), module.version);
        modules_.push_back(std::move(module));
    }
}

void DumpReader::ReadMemoryList(uint32_t at) {
    uint32_t count;
    if (!view_.Read(at, count)) return;
    for (uint64_t i = 0; i < std::min(count, kMostRecords); ++i) {
        const uint64_t from = at + 4 + i * kRangeBytes;
        DumpMemory range;
        uint32_t size, fileAt;
        if (!view_.Read(from, range.start) || !view_.Read(from + 8, size) || !view_.Read(from + 12, fileAt))
            return;
        range.bytes = size;
        range.fileAt = fileAt;
        if (view_.Has(range.fileAt, range.bytes)) memory_.push_back(range);
    }
}

// The bytes of all ranges follow each other.
void DumpReader::ReadMemory64List(uint32_t at) {
    uint64_t count, fileAt;
    if (!view_.Read(at, count) || !view_.Read(at + uint64_t{8}, fileAt)) return;
    for (uint64_t i = 0; i < std::min<uint64_t>(count, kMostRecords); ++i) {
        const uint64_t from = at + 16 + i * kRangeBytes;
        DumpMemory range;
        if (!view_.Read(from, range.start) || !view_.Read(from + 8, range.bytes)) return;
        range.fileAt = fileAt;
        if (!view_.Has(range.fileAt, range.bytes)) return;
        fileAt += range.bytes;
        memory_.push_back(range);
    }
}

std::wstring DumpReader::ReadText(uint32_t at) const {
    uint32_t bytes = 0;
    view_.Read(at, bytes);
    const std::string_view piece = view_.Piece(at + uint64_t{4}, std::min(bytes, kMostTextBytes));
    std::wstring text(piece.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), piece.data(), text.size() * sizeof(wchar_t));
    return text;
}

bool DumpReader::Registers(CONTEXT& context) const {
    if (exception_ && exception_->contextBytes >= sizeof context &&
        view_.Read(exception_->contextAt, context) && IsContext(context))
        return true;
    return !threads_.empty() && threads_[0].contextBytes >= sizeof context &&
           view_.Read(threads_[0].contextAt, context) && IsContext(context);
}

uint64_t DumpReader::ReadMemory(uint64_t address, void* target, uint64_t count) const {
    for (const DumpMemory& range : memory_) {
        const uint64_t offset = address - range.start;
        if (address < range.start || offset >= range.bytes) continue;
        const std::string_view piece =
            view_.Piece(range.fileAt + offset, std::min(count, range.bytes - offset));
        std::memcpy(target, piece.data(), piece.size());
        return piece.size();
    }
    return 0;
}

} // namespace vlm
