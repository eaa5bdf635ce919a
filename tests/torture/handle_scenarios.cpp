#include "scenario.h"
#include "util.h"

#include <windows.h>

namespace torture {
namespace {

constexpr uint32_t kType = OBJ_REGION;
constexpr uintptr_t kHandles = 20;

uint64_t Call(uint32_t command, uintptr_t handle = 0) {
    return UtilHandleListMgr(kType, command, reinterpret_cast<void*>(handle));
}

// Each handle is live or not, as its count says; none is missing without a reason.
class Handles : public Scenario {
public:
    void Prepare() override {
        Forget();
        Call(UTIL_HANDLES_COMPARE_SNAPSHOTS); // those of a run that could push two and compare none
    }
    void Run() override {
        for (uintptr_t handle = 1; handle <= kHandles; ++handle) Call(UTIL_HANDLES_ADD, handle);
        Call(UTIL_HANDLES_PUSH_SNAPSHOT);
        Call(UTIL_HANDLES_REMOVE, 1);
        Call(UTIL_HANDLES_PUSH_SNAPSHOT);
        Call(UTIL_HANDLES_COMPARE_SNAPSHOTS);
        Call(UTIL_HANDLES_LIST);
    }
    void Check(Verdict& verdict) override {
        uint64_t live = 0;
        for (uintptr_t handle = 1; handle <= kHandles; ++handle) live += Call(UTIL_HANDLES_IS_LIVE, handle);
        const uint64_t count = Call(UTIL_HANDLES_COUNT);
        verdict.Expect(live == count, "%d of %d handles are live", static_cast<int>(live),
                       static_cast<int>(count));
        verdict.Expect(verdict.AnyFailed() || count == kHandles - 1, "%d handles", static_cast<int>(count));
        verdict.Expect(Call(UTIL_HANDLES_IS_LIVE, 1) == 0, "a removed handle is live");
        Forget();
        verdict.Expect(Call(UTIL_HANDLES_COUNT) == 0, "handles are left");
    }

private:
    static void Forget() {
        for (uintptr_t handle = 1; handle <= kHandles; ++handle) Call(UTIL_HANDLES_REMOVE, handle);
    }
};

const AddScenario<Handles> handles("handles");

} // namespace
} // namespace torture
