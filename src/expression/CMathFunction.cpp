#include "expression/CMathFunction.h"

namespace {

// Ordered by opcode, without a gap, so that an opcode finds its entry.
constexpr CMathFunction kFunctions[] = {
    { u"sin", CMathOp::Sin, 1 },
    { u"cos", CMathOp::Cos, 1 },
    { u"tan", CMathOp::Tan, 1 },
    { u"abs", CMathOp::Abs, 1 },
    { u"atan", CMathOp::Atan, 1 },
    { u"log", CMathOp::Log, 1 },
    { u"log10", CMathOp::Log10, 1 },
    { u"abssin", CMathOp::AbsSin, 1 },
    { u"abscos", CMathOp::AbsCos, 1 },
    { u"rand", CMathOp::Rand, 1 },
    { u"randn", CMathOp::RandN, 1 },
    { u"if", CMathOp::If, 3 },
    { u"sign", CMathOp::Sign, 1 },
    { u"min", CMathOp::Min, 2 },
    { u"max", CMathOp::Max, 2 },
    { u"equal", CMathOp::Equal, 2 },
    { u"below", CMathOp::Below, 2 },
    { u"above", CMathOp::Above, 2 },
    { u"pow", CMathOp::Pow, 2 },
    { u"int", CMathOp::Int, 1 },
    { u"frac", CMathOp::Frac, 1 },
    { u"round", CMathOp::Round, 1 },
    { u"trunc", CMathOp::Trunc, 2 },
};

constexpr uint32_t IndexOf(CMathOp opcode)
{
    return static_cast<uint32_t>(opcode) - static_cast<uint32_t>(CMathOp::Sin);
}

constexpr bool IsOrderedByOpcode()
{
    uint32_t index = 0;
    for (const CMathFunction& function : kFunctions) {
        if (IndexOf(function.opcode) != index++)
            return false;
    }
    return index == IndexOf(CMathOp::Trunc) + 1;
}

static_assert(IsOrderedByOpcode());

}

const CMathFunction* OQFindMathFunction(std::u16string_view name)
{
    for (const CMathFunction& function : kFunctions) {
        if (function.name == name)
            return &function;
    }
    return nullptr;
}

const CMathFunction& OQMathFunction(CMathOp opcode)
{
    return kFunctions[IndexOf(opcode)];
}
