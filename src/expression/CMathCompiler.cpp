#include "expression/CMathCompiler.h"

#include "expression/CMathEvaluator.h"

namespace {

using Kind = CMathEvaluatorError::Kind;

struct BinaryOperator
{
    OQChar character;
    CMathOp opcode;
    uint16_t precedence;
};

// Comparisons bind last of all, also after "&" and "|": they give differences, not truth values.
// All are left-associative, "^" too.
constexpr BinaryOperator kBinaryOperators[] = {
    { u'<', CMathOp::Less, 1 },
    { u'>', CMathOp::Greater, 1 },
    { u'{', CMathOp::Smaller, 1 },
    { u'}', CMathOp::Larger, 1 },
    { u'|', CMathOp::Or, 2 },
    { u'&', CMathOp::And, 3 },
    { u'+', CMathOp::Add, 4 },
    { u'-', CMathOp::Subtract, 4 },
    { u'*', CMathOp::Multiply, 5 },
    { u'/', CMathOp::Divide, 5 },
    { u'%', CMathOp::Modulo, 5 },
    { u'^', CMathOp::Power, 6 },
};

const BinaryOperator* FindBinaryOperator(const CMathToken& token)
{
    for (const BinaryOperator& candidate : kBinaryOperators) {
        if (token.Is(candidate.character))
            return &candidate;
    }
    return nullptr;
}

// How an operation changes the number of stack slots in use.
int32_t StackEffect(CMathOp opcode)
{
    switch (opcode) {
    case CMathOp::Number:
    case CMathOp::Variable:
    case CMathOp::VariableAddress:
        return 1;
    case CMathOp::Negate:
    case CMathOp::Plus:
    case CMathOp::Not:
        return 0;
    default:
        if (opcode >= CMathOp::Sin && opcode <= CMathOp::Trunc)
            return 1 - OQMathFunction(opcode).argumentCount;
        return -1;
    }
}

std::string CountOf(int32_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}

CMathCompiler::CMathCompiler(
    CVariableTable& variables, OQArray<CMathEvaluatorOpCode>& program, CMathEvaluatorError* error)
    : m_variables(variables)
    , m_program(program)
    , m_error(error)
{
}

bool CMathCompiler::Compile(const OQString& text)
{
    if (m_error)
        *m_error = {};
    m_text = text;
    m_text.MakeLower();
    const int32_t length = m_text.GetLength();
    if (length == 0)
        return Fail(Kind::EmptyText, 0, "the text is empty");

    // Every operation comes from a character of its own, so the program never has to grow.
    m_program.Reserve(length);
    int32_t begin = 0;
    while (begin < length) { // so a ";" at the very end starts no statement
        const int32_t separator = m_text.Find(u';', begin);
        const int32_t end = separator < 0 ? length : separator;
        if (m_statement++ > 0)
            Emit({ .opcode = CMathOp::EndStatement });
        if (!CompileStatement(begin, end))
            return false;
        begin = end + 1;
    }
    return true;
}

bool CMathCompiler::CompileStatement(int32_t begin, int32_t end)
{
    const size_t equal = m_text.View().substr(0, end).find(u'=', begin);
    m_isAssignment = equal != std::u16string_view::npos;
    m_stackSlots = 0;
    m_tokenizer = CMathTokenizer(m_text.GetText(), begin, end);
    Advance();
    if (m_token.type == CMathTokenType::End)
        return FailBlankStatement(begin, end);
    if (!m_isAssignment)
        return CompileExpression();
    if (!CompileAssignmentTarget(static_cast<int32_t>(equal)) || !CompileExpression())
        return false;
    Emit({ .opcode = CMathOp::EndAssignment });
    return true;
}

bool CMathCompiler::CompileAssignmentTarget(int32_t equalPosition)
{
    const CMathToken target = m_token;
    Advance();
    if (target.type != CMathTokenType::Variable || !m_token.Is(u'='))
        return FailAssignmentTarget(target, equalPosition);
    Advance();
    return PushVariable(CMathOp::VariableAddress, target);
}

bool CMathCompiler::CompileExpression()
{
    m_valueExpected = true;
    do {
        if (!(m_valueExpected ? CompileValue() : CompileOperator()))
            return false;
    } while (m_valueExpected || m_token.type != CMathTokenType::End);
    EmitWaitingBinaries(0);
    return m_pending.empty() || FailUnclosed();
}

bool CMathCompiler::CompileValue()
{
    const int32_t position = m_token.position;
    switch (m_token.type) {
    case CMathTokenType::Number:
        if (!Push({ .opcode = CMathOp::Number, .literal = m_token.value }))
            return false;
        break;
    case CMathTokenType::Variable:
        if (!PushVariable(CMathOp::Variable, m_token))
            return false;
        break;
    case CMathTokenType::Function:
        return OpenCall();
    default:
        if (m_token.Is(u'('))
            m_pending.push_back({ .kind = Pending::Kind::Parenthesis, .position = position });
        else if (m_token.Is(u'-'))
            m_pending.push_back({ .kind = Pending::Kind::Prefix, .opcode = CMathOp::Negate });
        else if (m_token.Is(u'+'))
            m_pending.push_back({ .kind = Pending::Kind::Prefix, .opcode = CMathOp::Plus });
        else if (m_token.Is(u'!'))
            m_pending.push_back({ .kind = Pending::Kind::Prefix, .opcode = CMathOp::Not });
        else
            return FailMissingValue();
        Advance();
        return true;
    }
    Advance();
    EmitWaitingPrefixes();
    m_valueExpected = false;
    return true;
}

bool CMathCompiler::CompileOperator()
{
    if (m_token.Is(u')'))
        return CloseParenthesis();
    if (m_token.type == CMathTokenType::Comma)
        return SeparateArguments();
    const BinaryOperator* binary = FindBinaryOperator(m_token);
    if (!binary)
        return FailMissingOperator();
    EmitWaitingBinaries(binary->precedence);
    m_pending.push_back({ .kind = Pending::Kind::Binary,
        .precedence = binary->precedence,
        .opcode = binary->opcode });
    m_valueExpected = true;
    Advance();
    return true;
}

bool CMathCompiler::OpenCall()
{
    const CMathToken function = m_token;
    Advance();
    if (!m_token.Is(u'('))
        return Fail(Kind::FunctionWithoutParenthesis, function.position,
            TextOf(function) + " is a function: \"(\" must follow it");
    m_pending.push_back({ .kind = Pending::Kind::Call,
        .opcode = function.function->opcode,
        .position = function.position,
        .argumentCount = 1 });
    Advance();
    return true;
}

bool CMathCompiler::SeparateArguments()
{
    EmitWaitingBinaries(0);
    if (m_pending.empty() || m_pending.back().kind != Pending::Kind::Call)
        return Fail(
            Kind::MisplacedComma, m_token.position, "a comma stands outside a function call");
    m_pending.back().argumentCount++;
    m_valueExpected = true;
    Advance();
    return true;
}

bool CMathCompiler::CloseParenthesis()
{
    EmitWaitingBinaries(0);
    if (m_pending.empty())
        return Fail(Kind::UnopenedParenthesis, m_token.position, "this \")\" closes nothing");
    const Pending opened = m_pending.back();
    m_pending.pop_back();
    if (opened.kind == Pending::Kind::Call && !CloseCall(opened))
        return false;
    EmitWaitingPrefixes();
    Advance();
    return true;
}

bool CMathCompiler::CloseCall(const Pending& call)
{
    const CMathFunction& function = OQMathFunction(call.opcode);
    const bool tooMany = call.argumentCount > function.argumentCount;
    // Surplus arguments stay below the result. An expression only gives their first one as its own
    // value, but an assignment would take a number for the address to store to.
    if (call.argumentCount < function.argumentCount || (tooMany && m_isAssignment)) {
        const std::u16string name(function.name);
        return Fail(tooMany ? Kind::TooManyArguments : Kind::TooFewArguments, call.position,
            OQString(name.c_str()).ToUtf8() + " needs "
                + CountOf(function.argumentCount, "argument") + ", not "
                + std::to_string(call.argumentCount));
    }
    Emit({ .opcode = call.opcode });
    return true;
}

bool CMathCompiler::PushVariable(CMathOp opcode, const CMathToken& name)
{
    const int32_t index = m_variables.GetVariable(m_text.Mid(name.position, name.length), true);
    return Push({ .opcode = opcode, .variable = &m_variables.Variable(index) });
}

bool CMathCompiler::Push(const CMathEvaluatorOpCode& step)
{
    if (m_stackSlots == CMathEvaluator::kStackSlots)
        return Fail(Kind::StackOverflow, m_token.position,
            "the statement needs more than " + CountOf(CMathEvaluator::kStackSlots, "stack slot"));
    Emit(step);
    return true;
}

void CMathCompiler::Emit(const CMathEvaluatorOpCode& step)
{
    m_program.Add(step);
    m_stackSlots += StackEffect(step.opcode);
}

// "-", "+" and "!" bind before every binary operator: as soon as their value is complete.
void CMathCompiler::EmitWaitingPrefixes()
{
    while (!m_pending.empty() && m_pending.back().kind == Pending::Kind::Prefix) {
        Emit({ .opcode = m_pending.back().opcode });
        m_pending.pop_back();
    }
}

void CMathCompiler::EmitWaitingBinaries(int precedence)
{
    while (!m_pending.empty() && m_pending.back().kind == Pending::Kind::Binary
        && m_pending.back().precedence >= precedence) {
        Emit({ .opcode = m_pending.back().opcode });
        m_pending.pop_back();
    }
}

void CMathCompiler::Advance()
{
    m_previous = m_token;
    m_token = m_tokenizer.Next();
}
