#include "kernels/KernelForm.h"

#include <atomic>
#include <cstdlib>
#include <string_view>

namespace pxvis::kernels {

namespace {

KernelForm FormOfEnvironment()
{
    const char* form = std::getenv("PXVIS_KERNELS");
    return form && std::string_view(form) == "scalar" ? KernelForm::Scalar : KernelForm::Auto;
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
