// The queue between the threads that receive records and the one that shows them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace vlm {

// For all threads. Add() never blocks, since a sender may be waiting for the answer to its record: records
// that find no space are counted and dropped.
class TraceQueue {
public:
    // What has arrived since the previous call of Take().
    struct Batch {
        std::vector<std::string> records;
        size_t bytes = 0; // what the records occupy, about
        size_t lost = 0;  // records that found no space
        bool isLast = false;
    };

    void Add(std::string_view record) noexcept;
    // Marks the end: Take() no longer waits.
    void Close();
    // Returns as soon as there are records, or after the given time.
    Batch Take(std::chrono::milliseconds patience);

private:
    static constexpr size_t kMaxBytes = size_t{2} * 1024 * 1024;

    bool HasAdded(std::string_view record) noexcept;

    std::mutex mutex_;
    std::condition_variable changed_;
    Batch batch_;
};

} // namespace vlm
