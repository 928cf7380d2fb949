#pragma once

namespace pxvis::kernels {

// Every kernel that gains by it has two forms: the scalar one, in namespace `scalar`, which is its
// definition and plain, and one over vectors (Highway), compiled for several instruction sets, of
// which the best that the processor has runs. Both give the same bits. The function without a
// namespace takes the form that is chosen for the process. The environment's PXVIS_KERNELS chooses
// at the start, for tests and for doubt: "scalar", or "sse4", "avx2" or "avx512" as the best set
// that may be taken.
enum class KernelForm
{
    Auto,
    Scalar,
};

// May be called by any thread; a pass that is under way goes on as it will.
void ChooseKernels(KernelForm form);

KernelForm ChosenKernels();

}
