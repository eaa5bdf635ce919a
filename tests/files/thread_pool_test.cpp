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

TEST(ThreadPoolTest, WorkRunsOnceAndMayThrowReleaseOrDestroyItself) {
    clsThreadPool pool;
    clsEvent done(EventReset::kAutomatic);
    std::atomic<int> runs{0};
    TestWorker throwing(pool, [&](TestWorker&) { ++runs, done.Set(), throw 1; });
    TestWorker released(pool, [&](TestWorker& self) { self.Release(), ++runs, done.Set(); });
    auto* const owned = new TestWorker(pool, [&runs, &done](TestWorker& self) {
        clsEvent& isDone = done; // what the work holds goes with the worker
        ++runs;
        delete &self;
        isDone.Set();
    });
    for (TestWorker* worker : {&throwing, &released, owned}) {
        EXPECT_TRUE(worker->Submit());
        EXPECT_EQ(done.Wait(30000), static_cast<DWORD>(WAIT_OBJECT_0));
    }
    EXPECT_FALSE(throwing.Submit());
    EXPECT_FALSE(released.Submit());
    throwing.Release();
    EXPECT_EQ(runs, 3);
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
    }
}

} // namespace
} // namespace vxut
