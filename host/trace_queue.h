// The records between those who receive them and the one who shows them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace vlm {

// For use by all threads. Whoever adds never waits: senders would wait with them.
class clsTraceQueue {
public:
    // What has come since the last time.
    struct Batch {
        std::vector<std::string> records;
        size_t lost = 0; // further records, for which there was no room
        bool isLast = false;
    };

    void Add(std::string_view record) noexcept;
    // Nothing comes any more.
    void Close();
    // Waits for records, or for the end, as long as given.
    Batch Take(std::chrono::milliseconds patience);

private:
    static constexpr size_t kMostRecords = 100'000;

    bool HasAdded(std::string_view record) noexcept;

    std::mutex mutex_;
    std::condition_variable changed_;
    Batch batch_;
};

} // namespace vlm
