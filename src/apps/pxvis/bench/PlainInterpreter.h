#pragma once

#include "expression/CMathEvaluatorOpCode.h"
#include "expression/CVariableTable.h"
#include "foundation/OQArray.h"

namespace pxvis::bench {

// A stack machine with one big switch, which is how such languages are mostly run: the yardstick
// beside the ways that the engine has.
class PlainInterpreter
{
public:
    explicit PlainInterpreter(const OQString& equation);

    double& Variable(const OQChar* name);

    void Run();

private:
    CVariableTable m_variables;
    OQArray<CMathEvaluatorOpCode> m_opcodes;
    double m_stack[512];
};

}
