// Reads minidumps of unknown origin.
#pragma once

#include "host/byte_view.h"

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vlm {

struct DumpThread {
    uint32_t id = 0;
    uint64_t stackStart = 0;
    uint32_t stackBytes = 0;
    uint32_t contextBytes = 0;
    uint32_t contextAt = 0; // in the file
};

struct DumpModule {
    uint64_t base = 0;
    uint32_t size = 0;
    uint32_t timeStamp = 0;
    std::wstring path;
    uint16_t version[4] = {}; // of the file
};

struct DumpException {
    uint32_t thread = 0;
    uint32_t code = 0;
    uint32_t flags = 0;
    uint64_t address = 0;
    std::vector<uint64_t> parameters;
    uint32_t contextBytes = 0;
    uint32_t contextAt = 0;
};

// A range of memory whose bytes are in the file.
struct DumpMemory {
    uint64_t start = 0;
    uint64_t bytes = 0;
    uint64_t fileAt = 0;
};

// What a dump says. The bytes of the file must outlive it.
class DumpReader {
public:
    // Returns false if the bytes are no minidump. Streams that are damaged are left out, or end where the
    // damage is.
    bool Read(std::string_view bytes);

    const std::optional<DumpException>& Exception() const { return exception_; }
    const std::vector<DumpThread>& Threads() const { return threads_; }
    const std::vector<DumpModule>& Modules() const { return modules_; }

    // The registers at the fault, else those of the first thread. Returns false if there are none of a 64-bit
    // processor.
    bool Registers(CONTEXT& context) const;
    // Copies memory of the process. Returns how many bytes from the address on the dump has, at most count.
    uint64_t ReadMemory(uint64_t address, void* target, uint64_t count) const;

private:
    void ReadStream(uint32_t type, uint32_t bytes, uint32_t at);
    void ReadException(uint32_t at);
    void ReadThreads(uint32_t at);
    void ReadModules(uint32_t at);
    void ReadMemoryList(uint32_t at);
    void ReadMemory64List(uint32_t at);
    std::wstring ReadText(uint32_t at) const;

    ByteView view_;
    std::optional<DumpException> exception_;
    std::vector<DumpThread> threads_;
    std::vector<DumpModule> modules_;
    std::vector<DumpMemory> memory_;
};

} // namespace vlm
