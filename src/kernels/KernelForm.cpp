#include "kernels/KernelForm.h"

#include <hwy/targets.h>

#include <atomic>
#include <cstdlib>
#include <string_view>

namespace pxvis::kernels {

namespace {

// In Highway a better set has a lower bit.
void DisableBetterThan(int64_t set)
{
    hwy::DisableTargets(set - 1);
}

KernelForm FormOfEnvironment()
{
    const char* variable = std::getenv("PXVIS_KERNELS");
    const std::string_view form = variable ? variable : "";
    if (form == "sse4")
        DisableBetterThan(HWY_SSE4);
    else if (form == "avx2")
        DisableBetterThan(HWY_AVX2);
    else if (form == "avx512")
        DisableBetterThan(HWY_AVX3);
    return form == "scalar" ? KernelForm::Scalar : KernelForm::Auto;
}

std::atomic<KernelForm>& Chosen()
{
    static std::atomic<KernelForm> form { FormOfEnvironment() };
    return form;
}

}

void ChooseKernels(KernelForm form)
{
    Chosen().store(form, std::memory_order_relaxed);
}

KernelForm ChosenKernels()
{
    return Chosen().load(std::memory_order_relaxed);
}

}
