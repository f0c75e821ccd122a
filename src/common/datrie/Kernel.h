// Helper, not installed: the instruction sets that inner loops are compiled for. Which one is used
// depends on the machine and is decided at run time.

#ifndef DICTIONARY_KERNEL_H
#define DICTIONARY_KERNEL_H

namespace Dictionary {

// In order of register width.
enum Kernel { kBaseline, kAvx2, kAvx512, kKernelCount };

const char* kernelName(Kernel kernel);

// Whether this machine has the instructions of `kernel`. Every machine runs the baseline.
bool runsHere(Kernel kernel);

// The last one that runs here, unless ForcedKernel says otherwise.
Kernel kernelInUse();

// Whether kAvx512 is in use and the machine can also move chosen bytes of a register together. The
// first machines with that kernel cannot.
bool movesBytesTogether();

// The entry of a table for the kernel in use or, where that is null, the nearest one before it.
template <class Function>
Function forThisMachine(const Function (&table)[kKernelCount]) {
    int kernel = kernelInUse();
    while (kernel > kBaseline && table[kernel] == nullptr) --kernel;
    return table[kernel];
}

// Puts `kernel`, which must run here, in use for the lifetime of the object. For tests and
// benchmarks, while no other thread searches or builds.
class ForcedKernel {
public:
    explicit ForcedKernel(Kernel kernel);
    ~ForcedKernel();
    ForcedKernel(const ForcedKernel&) = delete;
    ForcedKernel& operator=(const ForcedKernel&) = delete;

private:
    Kernel m_before;
};

}  // namespace Dictionary

#endif
