// The words for what is wrong with an equation. They are read by people who write scripts, so each
// common habit of another language that doesn't hold here gets its own answer.

#include "expression/CMathCompiler.h"

namespace {

using Kind = CMathEvaluatorError::Kind;

constexpr int kLongestQuote = 40; // characters of the text that a reason repeats

struct WrongOperator
{
    std::u16string_view text;
    const char* reason;
};

constexpr WrongOperator kWrongOperators[] = {
    { u"==", "\"==\" is not an operator: compare with equal(a,b)" },
    { u"!=", "\"!=\" is not an operator: compare with !equal(a,b)" },
    { u"<=", "\"<=\" is not an operator: compare with !above(a,b)" },
    { u">=", "\">=\" is not an operator: compare with !below(a,b)" },
    { u"&&", "\"&&\" is not an operator: use one \"&\"" },
    { u"||", "\"||\" is not an operator: use one \"|\"" },
    { u"**", "\"**\" is not an operator: use \"^\"" },
};

}

bool CMathCompiler::Fail(
    CMathEvaluatorError::Kind kind, int32_t position, const std::string& reason)
{
    if (m_error)
        *m_error = { kind, position, m_statement, OQString::FromUtf8(reason) };
    return false;
}

bool CMathCompiler::FailBlankStatement(int32_t begin, int32_t end)
{
    if (end < m_text.GetLength())
        return Fail(Kind::BlankStatement, end, "nothing stands before this \";\"");
    return Fail(Kind::BlankStatement, begin,
        begin == 0 ? "the text is blank"
                   : "the text after the last \";\" is blank: put nothing behind it");
}

bool CMathCompiler::FailAssignmentTarget(const CMathToken& first, int32_t equalPosition)
{
    std::string reason = WrongOperatorAt(equalPosition);
    if (reason.empty()) {
        const bool secondIsEqual = m_token.Is(u'=');
        if (secondIsEqual && first.type == CMathTokenType::Function)
            reason = TextOf(first) + " is a function: it can't be assigned to";
        else if (secondIsEqual || first.Is(u'='))
            reason = "\"=\" has no variable on its left";
        else
            reason = "\"=\" may only follow the first word of a statement: compare with equal(a,b)";
    }
    return Fail(Kind::AssignmentTarget, equalPosition, reason);
}

bool CMathCompiler::FailMissingValue()
{
    const int32_t position = m_token.position;
    if (m_token.type == CMathTokenType::End)
        return Fail(Kind::MissingValue, position,
            m_previous.Is(u'=') ? "nothing follows the \"=\""
                                : "the statement ends where a value is expected");
    std::string reason = WrongOperatorAt(position);
    if (reason.empty())
        reason = "\"" + TextOf(m_token) + "\" stands where a value is expected";
    return Fail(Kind::MissingValue, position, reason);
}

bool CMathCompiler::FailMissingOperator()
{
    const int32_t position = m_token.position;
    std::string reason = WrongOperatorAt(position);
    if (m_token.Is(u'=')) {
        if (reason.empty())
            reason = "\"=\" stands inside an expression: compare with equal(a,b)";
        return Fail(Kind::MisplacedEqual, position, reason);
    }
    if (m_token.Is(u'(') && m_previous.type == CMathTokenType::Variable)
        return Fail(
            Kind::UnknownFunction, m_previous.position, TextOf(m_previous) + " is not a function");
    if (!reason.empty())
        return Fail(Kind::MissingOperator, position, reason);
    reason = "an operator is missing before \"" + TextOf(m_token) + "\"";
    if (position > 0 && m_text[position - 1] == u'_')
        reason += ": a name holds letters and digits only";
    return Fail(Kind::MissingOperator, position, reason);
}

bool CMathCompiler::FailUnclosed()
{
    return Fail(Kind::UnclosedParenthesis, m_pending.back().position,
        m_pending.back().kind == Pending::Kind::Call ? "this call has no \")\""
                                                     : "this \"(\" has no \")\"");
}

std::string CMathCompiler::TextOf(const CMathToken& token) const
{
    if (token.length <= kLongestQuote)
        return m_text.Mid(token.position, token.length).ToUtf8();
    return m_text.Mid(token.position, kLongestQuote).ToUtf8() + "...";
}

// Empty if no operator of another language stands at, or ends at, the position.
std::string CMathCompiler::WrongOperatorAt(int32_t position) const
{
    for (const WrongOperator& wrong : kWrongOperators) {
        for (const int32_t start : { position - 1, position }) {
            if (start >= 0 && m_text.View().substr(start, 2) == wrong.text)
                return wrong.reason;
        }
    }
    return {};
}
