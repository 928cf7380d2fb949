#pragma once

#include "foundation/OQLog.h"

// Runs what the host called; nothing that is thrown there reaches it.
template <class Result, class Operation>
Result GuardedFromHost(const OQChar* scope, Result onFailure, Operation operation) noexcept
{
    try {
        return operation();
    } catch (...) {
        OQLog(OQLogError, scope,
            u"The operation ended by an exception, most likely for lack of memory");
        return onFailure;
    }
}
