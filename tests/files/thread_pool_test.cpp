#include "files/thread_pool.h"

#include "files/event.h"

#include <gtest/gtest.h>

#include <functional>

namespace vxut {
namespace {

class TestWorker : public clsThreadPoolWorkerBaseRunOnce {
public:
    TestWorker(clsThreadPool& pool, std::function<void(TestWorker&)> work)
        : clsThreadPoolWorkerBaseRunOnce(pool), work_(std::move(work)) {}
    ~TestWorker() override { Release(); }

    void Work() override { work_(*this); }

private:
    std::function<void(TestWorker&)> work_;
};

class ThreadPoolTest : public testing::Test {
protected:
    clsThreadPool pool;
    clsEvent begun{EventReset::kManual}, go{EventReset::kManual}, done{EventReset::kManual};
    std::atomic<int> runs{0};
};

TEST_F(ThreadPoolTest, RunsWorkOnceOnAThreadOfItsOwn) {
    ASSERT_TRUE(pool.IsThere());
    std::atomic<DWORD> threadId{0};
    TestWorker worker(pool, [&](TestWorker&) {
        threadId = GetCurrentThreadId();
        ++runs;
        done.Set();
    });
    EXPECT_TRUE(worker.Submit());
    EXPECT_FALSE(worker.Submit());
    EXPECT_EQ(done.Wait(30000), static_cast<DWORD>(WAIT_OBJECT_0));
    EXPECT_NE(threadId, GetCurrentThreadId());
    worker.Release();
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(worker.Submit());
}

TEST_F(ThreadPoolTest, ReleaseWaitsForWorkThatHasBegun) {
    TestWorker worker(pool, [&](TestWorker&) {
        begun.Set();
        go.Wait(50);
        ++runs;
    });
    ASSERT_TRUE(worker.Submit());
    begun.Wait(INFINITE);
    worker.Release();
    EXPECT_EQ(runs, 1);
}

TEST_F(ThreadPoolTest, WorkMayReleaseOrDestroyItself) {
    TestWorker released(pool, [&](TestWorker& self) {
        self.Release();
        ++runs;
        done.Set();
    });
    ASSERT_TRUE(released.Submit());
    EXPECT_EQ(done.Wait(30000), static_cast<DWORD>(WAIT_OBJECT_0));
    done.Reset();
    auto* const owned = new TestWorker(pool, [&](TestWorker& self) {
        clsEvent& isDone = done;
        delete &self;
        isDone.Set();
    });
    ASSERT_TRUE(owned->Submit());
    EXPECT_EQ(done.Wait(30000), static_cast<DWORD>(WAIT_OBJECT_0));
}

// Both sides release at once: neither waits for the other for ever.
TEST_F(ThreadPoolTest, ReleasesOfBothSidesDoNotLock) {
    TestWorker worker(pool, [&](TestWorker& self) {
        begun.Set();
        go.Wait(30); // the other side holds the lock now, and waits
        self.Release();
        ++runs;
    });
    ASSERT_TRUE(worker.Submit());
    begun.Wait(INFINITE);
    worker.Release();
    EXPECT_EQ(runs, 1);
}

TEST_F(ThreadPoolTest, AnExceptionStaysInside) {
    TestWorker worker(pool, [&](TestWorker&) {
        done.Set();
        throw 1;
    });
    ASSERT_TRUE(worker.Submit());
    EXPECT_EQ(done.Wait(30000), static_cast<DWORD>(WAIT_OBJECT_0));
}

} // namespace
} // namespace vxut
