#pragma once

#include "expression/CMathEvaluatorError.h"
#include "expression/CMathEvaluatorOpCode.h"
#include "expression/CMathTokenizer.h"
#include "expression/CVariableTable.h"
#include "foundation/OQArray.h"

#include <string>
#include <vector>

// Turns the text of an equation into a program for the stack machine. An operator-precedence parser
// with its own stack: a text of a million "(" costs memory in step with its length, not the
// thread's stack.
class CMathCompiler
{
public:
    // Variables are created in the table, operations appended to the empty program, and the first
    // fault is told to error unless that is null.
    CMathCompiler(CVariableTable& variables, OQArray<CMathEvaluatorOpCode>& program,
        CMathEvaluatorError* error);

    // False for a fault and for an empty text. What was created and appended up to a fault stays.
    bool Compile(const OQString& text);

    // True if the last statement is not an assignment.
    bool HasResult() const { return !m_isAssignment; }

private:
    // An operator that waits for its right operand, or a parenthesis that waits to be closed.
    struct Pending
    {
        enum class Kind : uint16_t
        {
            Binary,
            Prefix,
            Parenthesis,
            Call
        };
        Kind kind;
        uint16_t precedence = 0; // of a binary operator; the higher binds first
        CMathOp opcode {}; // of the operator or the called function
        int32_t position = 0;
        int32_t argumentCount = 0; // of a call, so far
    };

    bool CompileStatement(int32_t begin, int32_t end);
    bool CompileAssignmentTarget(int32_t equalPosition);
    bool CompileExpression();
    bool CompileValue();
    bool CompileOperator();
    bool OpenCall();
    bool SeparateArguments();
    bool CloseParenthesis();
    bool CloseCall(const Pending& call);

    bool PushVariable(CMathOp opcode, const CMathToken& name);
    bool Push(const CMathEvaluatorOpCode& step);
    void Emit(const CMathEvaluatorOpCode& step);
    void EmitWaitingPrefixes();
    void EmitWaitingBinaries(int precedence);
    void Advance();

    bool Fail(CMathEvaluatorError::Kind kind, int32_t position, const std::string& reason);
    bool FailBlankStatement(int32_t begin, int32_t end);
    bool FailAssignmentTarget(const CMathToken& first, int32_t equalPosition);
    bool FailMissingValue();
    bool FailMissingOperator();
    bool FailUnclosed();
    std::string TextOf(const CMathToken& token) const;
    std::string WrongOperatorAt(int32_t position) const;

    CVariableTable& m_variables;
    OQArray<CMathEvaluatorOpCode>& m_program;
    CMathEvaluatorError* m_error;

    OQString m_text; // in lower case
    CMathTokenizer m_tokenizer { nullptr, 0, 0 };
    CMathToken m_previous;
    CMathToken m_token; // the next one to compile
    std::vector<Pending> m_pending;
    int32_t m_statement = 0; // from 1
    int32_t m_stackSlots = 0; // in use where the program stands
    bool m_isAssignment = false;
    bool m_valueExpected = true;
};
