#include "base/unload_steps.h"

#include <atomic>
#include <cstddef>

namespace vxut {
namespace {

constinit std::atomic<void (*)()> steps[static_cast<size_t>(UnloadStep::kCount)] = {};

} // namespace

void SetUnloadStep(UnloadStep step, void (*shutDown)()) { steps[static_cast<size_t>(step)] = shutDown; }

void RunUnloadSteps() {
    for (const auto& step : steps) {
        if (const auto shutDown = step.load()) shutDown();
    }
}

} // namespace vxut
