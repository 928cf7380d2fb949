#include "expression/CMathTokenizer.h"

#include "foundation/OQNumberText.h"

namespace {

constexpr OQChar kFigureDash = 0x2012; // what word processors make of a minus

bool IsDigit(OQChar character)
{
    return character >= u'0' && character <= u'9';
}

bool IsLetter(OQChar character)
{
    return character >= u'a' && character <= u'z';
}

bool IsOperator(OQChar character)
{
    return std::u16string_view(u"!%&()*+-/<=>^{|}").find(character) != std::u16string_view::npos;
}

}

CMathTokenizer::CMathTokenizer(const OQChar* text, int32_t begin, int32_t end)
    : m_text(text)
    , m_position(begin)
    , m_end(end)
{
}

CMathToken CMathTokenizer::Next()
{
    for (; m_position < m_end; m_position++) {
        const OQChar character = m_text[m_position];
        if (IsDigit(character) || character == u'.')
            return Number();
        if (IsLetter(character))
            return Name();
        CMathToken token { .character = character, .position = m_position, .length = 1 };
        if (character == u',') {
            token.type = CMathTokenType::Comma;
        } else if (character == kFigureDash) {
            token.type = CMathTokenType::Operator;
            token.character = u'-';
        } else if (IsOperator(character)) {
            token.type = CMathTokenType::Operator;
        } else {
            continue;
        }
        m_position++;
        return token;
    }
    return { .position = m_end };
}

CMathToken CMathTokenizer::Number()
{
    CMathToken token { .type = CMathTokenType::Number, .position = m_position };
    int consumed = 0;
    token.value = OQTextToDouble(m_text + m_position, m_end - m_position, &consumed);
    token.length = consumed;
    m_position += consumed;
    return token;
}

CMathToken CMathTokenizer::Name()
{
    CMathToken token { .type = CMathTokenType::Variable, .position = m_position };
    while (m_position < m_end && (IsLetter(m_text[m_position]) || IsDigit(m_text[m_position])))
        m_position++;
    token.length = m_position - token.position;
    token.function
        = OQFindMathFunction({ m_text + token.position, static_cast<size_t>(token.length) });
    if (token.function)
        token.type = CMathTokenType::Function;
    return token;
}
