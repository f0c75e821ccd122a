// Runs tests with every kernel that this machine has.

#ifndef TESTS_EACH_KERNEL_H
#define TESTS_EACH_KERNEL_H

#include <gtest/gtest.h>

#include "Kernel.h"

// Calls `use()` once with each kernel in use. A failed assertion names the kernel.
template <class Use>
void forEachKernel(const Use& use) {
    for (int i = 0; i < Dictionary::kKernelCount; ++i) {
        const auto kernel = static_cast<Dictionary::Kernel>(i);
        if (!Dictionary::runsHere(kernel)) continue;
        SCOPED_TRACE(kernelName(kernel));
        const Dictionary::ForcedKernel forced(kernel);
        use();
    }
}

#endif
