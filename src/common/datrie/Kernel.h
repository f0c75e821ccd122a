// Helper, not installed: the sets of instructions that inner loops are compiled for, of which the
// machine at hand decides at run time.

#ifndef DICTIONARY_KERNEL_H
#define DICTIONARY_KERNEL_H

namespace Dictionary {

// The further, the wider its registers.
enum Kernel { kBaseline, kAvx2, kAvx512, kKernelCount };

const char* kernelName(Kernel kernel);

// Whether this machine has the instructions of `kernel`. Every machine runs the baseline.
bool runsHere(Kernel kernel);

// The last one that runs here, unless ForcedKernel says otherwise.
Kernel kernelInUse();

// Whether kAvx512 is in use on a machine that can also move chosen bytes of a register together,
// which the first ones with that kernel cannot.
bool movesBytesTogether();

// What a table has for the kernel in use; where that has nothing of its own, for the next one
// before it.
template <class Function>
Function forThisMachine(const Function (&table)[kKernelCount]) {
    int kernel = kernelInUse();
    while (kernel > kBaseline && table[kernel] == nullptr) --kernel;
    return table[kernel];
}

// Puts `kernel`, which runs here, in use while it lives: for tests and benchmarks, while no other
// thread searches or builds.
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
