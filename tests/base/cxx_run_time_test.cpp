// What the library replaces of the C++ run-time.
#include <gtest/gtest.h>

#include <atomic>
#include <exception>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

#include <windows.h>

namespace vxut {
namespace {

template <size_t kSize>
struct Thrown {
    explicit Thrown(int number) { std::iota(numbers, numbers + kSize, number); }
    int Sum() const { return std::accumulate(numbers, numbers + kSize, 0); }
    alignas(16) int numbers[kSize];
};

template <size_t kSize>
std::exception_ptr Throw(int number) {
    try {
        throw Thrown<kSize>(number);
    } catch (...) {
        return std::current_exception();
    }
}

template <size_t kSize>
int SumOf(const std::exception_ptr& thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const Thrown<kSize>& object) {
        try {
            throw std::length_error("thrown while another one is handled");
        } catch (const std::length_error&) {
            return object.Sum();
        }
    }
}

// More exceptions at once than the module has blocks for, small ones and some that no block holds.
TEST(ExceptionMemory, KeepsManyExceptionsOfAllSizesApart) {
    for (int round = 0; round < 3; ++round) {
        std::vector<std::exception_ptr> small, large;
        for (int i = 0; i < 200; ++i) {
            small.push_back(Throw<4>(i));
            large.push_back(Throw<500>(i));
        }
        std::thread other([&] {
            for (int i = 0; i < 200; i += 2) {
                EXPECT_EQ(SumOf<4>(small[i]), Thrown<4>(i).Sum());
                small[i] = nullptr;
            }
        });
        for (int i = 1; i < 200; i += 2) EXPECT_EQ(SumOf<500>(large[i]), Thrown<500>(i).Sum());
        other.join();
        for (int i = 1; i < 200; i += 2) EXPECT_EQ(SumOf<4>(small[i]), Thrown<4>(i).Sum());
        EXPECT_EQ(std::uncaught_exceptions(), 0);
    }
}

std::atomic<int> attempts{0};

struct Slow {
    Slow() {
        Sleep(20);
        if (++attempts == 1) throw 1;
        value = 7;
    }
    int value = 0;
};

// The thread whose constructor throws leaves the static to the next one.
TEST(StaticGuards, LetOneThreadMakeAStaticAndTheOthersWait) {
    std::atomic<int> failures{0}, sum{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            try {
                static const Slow slow;
                sum += slow.value;
            } catch (int) {
                ++failures;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(attempts, 2);
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(sum, 7 * 7);
}

} // namespace
} // namespace vxut
