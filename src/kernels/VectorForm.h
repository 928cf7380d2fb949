#pragma once

#include "kernels/KernelForm.h"

// Defines the kernel NAME(args...) over its two forms: scalar::NAME and the NAME that HWY_EXPORT
// named. Highway's own fallback of one lane isn't used: there the definition is as fast.
#define PXVIS_VECTOR_KERNEL(NAME, PARAMETERS, ARGUMENTS)                                           \
    HWY_EXPORT(NAME);                                                                              \
    void NAME PARAMETERS                                                                           \
    {                                                                                              \
        if (ChosenKernels() == KernelForm::Scalar)                                                 \
            scalar::NAME ARGUMENTS;                                                                \
        else                                                                                       \
            HWY_DYNAMIC_DISPATCH(NAME) ARGUMENTS;                                                  \
    }
