#pragma once

#include "expression/CMathFunction.h"
#include "foundation/OQChar.h"

enum class CMathTokenType : uint32_t
{
    End = 0, // of the statement
    Operator = 1, // also a parenthesis
    Number = 2,
    Variable = 3,
    Function = 4,
    Comma = 5,
};

struct CMathToken
{
    CMathTokenType type = CMathTokenType::End;
    OQChar character = 0; // of an operator or comma
    double value = 0.0; // of a number
    const CMathFunction* function = nullptr;
    int32_t position = 0; // in the whole text
    int32_t length = 0;

    bool Is(OQChar operatorCharacter) const
    {
        return type == CMathTokenType::Operator && character == operatorCharacter;
    }
};

// Cuts one statement of an equation into tokens, one a call, so that the length of a text costs no
// memory. Characters that mean nothing, blanks and "_" among them, are skipped and end a name or
// number. The text must be in lower case and must outlive the tokenizer.
class CMathTokenizer
{
public:
    // The statement is text[begin] to text[end - 1].
    CMathTokenizer(const OQChar* text, int32_t begin, int32_t end);

    // At the end: a token of type End at the statement's end, as often as asked.
    CMathToken Next();

private:
    CMathToken Number();
    CMathToken Name();

    const OQChar* m_text;
    int32_t m_position;
    int32_t m_end;
};
