#include "Kernel.h"

#include <atomic>

namespace Dictionary {

namespace {

Kernel lastThatRunsHere() {
    int kernel = kKernelCount - 1;
    while (!runsHere(static_cast<Kernel>(kernel))) --kernel;
    return static_cast<Kernel>(kernel);
}

std::atomic<Kernel>& inUse() {
    static std::atomic<Kernel> kernel(lastThatRunsHere());
    return kernel;
}

}  // namespace

const char* kernelName(Kernel kernel) {
    static constexpr const char* kNames[kKernelCount] = {"baseline", "avx2", "avx512"};
    return kNames[kernel];
}

bool runsHere(Kernel kernel) {
#ifdef __x86_64__
    if (kernel == kAvx2) return __builtin_cpu_supports("avx2");
    if (kernel == kAvx512) return __builtin_cpu_supports("avx512f");
#endif
    return kernel == kBaseline;
}

Kernel kernelInUse() {
    return inUse().load(std::memory_order_relaxed);
}

bool movesBytesTogether() {
#ifdef __x86_64__
    return kernelInUse() == kAvx512 && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi2");
#else
    return false;
#endif
}

ForcedKernel::ForcedKernel(Kernel kernel) : m_before(inUse().exchange(kernel)) {}

ForcedKernel::~ForcedKernel() {
    inUse().store(m_before);
}

}  // namespace Dictionary
