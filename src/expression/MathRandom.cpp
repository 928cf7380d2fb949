#include "expression/MathRandom.h"

#include "foundation/OQEngineContext.h"
#include "foundation/OQTruncate.h"

namespace MathRandom {

namespace {

// limit isn't 0. The result is 0 to |limit| - 1, in steps.
double RandomBelow(int32_t limit)
{
    OQSeedRandForEquations();
    const int32_t high = OQRand();
    const int32_t low = OQRand();
    const int32_t random = (high << 15) | low; // 30 bits
    return (random % limit) * (1.0 / steps);
}

}

double Rand(double limit)
{
    const int32_t count = StepsOf(CMathOp::Rand, limit);
    return count == 0 ? limit : RandomBelow(count);
}

double RandN(double limit)
{
    const int32_t count = StepsOf(CMathOp::RandN, limit);
    return count == 0 ? limit : RandomBelow(count) - limit;
}

int32_t StepsOf(CMathOp operation, double limit)
{
    return OQTruncateToInt32((operation == CMathOp::RandN ? limit + limit : limit) * steps);
}

bool DrawsNumber(CMathOp operation, double limit)
{
    return (operation == CMathOp::Rand || operation == CMathOp::RandN)
        && StepsOf(operation, limit) != 0;
}

}
