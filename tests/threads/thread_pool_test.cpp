#include "threads/thread_pool.h"

#include "threads/event.h"

#include <gtest/gtest.h>

#include <functional>

namespace vxut {
namespace {

struct TestWorker : clsThreadPoolWorkerBaseRunOnce {
    TestWorker(clsThreadPool& pool, std::function<void(TestWorker&)> itsWork)
        : clsThreadPoolWorkerBaseRunOnce(pool), work(std::move(itsWork)) {}
    ~TestWorker() override { Release(); }
    void Work() override { work(*this); }
    const std::function<void(TestWorker&)> work;
};

TEST(ThreadPoolTest, WorkMayDestroyItself) {
    clsThreadPool pool;
    clsEvent done(EventReset::kAutomatic);
    auto* const owned = new TestWorker(pool, [&done](TestWorker& self) {
        clsEvent& isDone = done; // what the work holds goes with the worker
        delete &self;
        isDone.Set();
    });
    EXPECT_TRUE(owned->Submit());
    EXPECT_EQ(done.Wait(30000), static_cast<DWORD>(WAIT_OBJECT_0));
}

// With both sides at it at once too: neither waits for the other for ever.
TEST(ThreadPoolTest, ReleaseWaitsForWorkThatHasBegun) {
    for (const bool releasesItself : {false, true}) {
        clsThreadPool pool;
        clsEvent begun(EventReset::kAutomatic);
        std::atomic<bool> hasRun{false};
        TestWorker worker(pool, [&](TestWorker& self) {
            begun.Set();
            Sleep(50); // the other side waits now
            if (releasesItself) self.Release();
            hasRun = true;
        });
        ASSERT_TRUE(worker.Submit());
        begun.Wait(INFINITE);
        worker.Release();
        EXPECT_TRUE(hasRun);
        EXPECT_FALSE(worker.Submit());
    }
}

} // namespace
} // namespace vxut
