#pragma once

#include <string_view>

// What a run of characters at the start of a text is made of: the word splitter of an edit control
// asks which run the caret stands in front of.
class OQStringGetLeadingCharacters
{
public:
    // Whether the character at `position` belongs to the run, which starts with the text.
    // 0 <= position < the text's length.
    virtual bool Belongs(std::u16string_view text, int position) const = 0;

    // Characters of the run; 0 if the text doesn't start with one.
    int CountIn(std::u16string_view text) const;

protected:
    ~OQStringGetLeadingCharacters() = default;
};

class OQStringLeadingWhitespaceCharacters final : public OQStringGetLeadingCharacters
{
public:
    bool Belongs(std::u16string_view text, int position) const override;
};

class OQStringLeadingDigitCharacters final : public OQStringGetLeadingCharacters
{
public:
    bool Belongs(std::u16string_view text, int position) const override;
};

// Letters, and what joins them: "don't" and "well-known" are one word each, "'tis" starts with
// none.
class OQStringLeadingWordCharacters final : public OQStringGetLeadingCharacters
{
public:
    bool Belongs(std::u16string_view text, int position) const override;
};
