#include "foundation/OQStringLeadingCharacters.h"

#include "foundation/OQCharacters.h"

namespace {

bool HasClass(std::u16string_view text, int position, OQCharacterClass wanted)
{
    const auto index = static_cast<size_t>(position);
    return index < text.size() && (OQGetCharacterClass(text[index]) & wanted);
}

}

int OQStringGetLeadingCharacters::CountIn(std::u16string_view text) const
{
    const int length = static_cast<int>(text.size());
    int count = 0;
    while (count < length && Belongs(text, count))
        ++count;
    return count;
}

bool OQStringLeadingWhitespaceCharacters::Belongs(std::u16string_view text, int position) const
{
    return HasClass(text, position, OQClassSpace);
}

bool OQStringLeadingDigitCharacters::Belongs(std::u16string_view text, int position) const
{
    return HasClass(text, position, OQClassDigit);
}

bool OQStringLeadingWordCharacters::Belongs(std::u16string_view text, int position) const
{
    const auto index = static_cast<size_t>(position);
    if (index >= text.size())
        return false;
    switch (text[index]) {
    case u'\'':
        return position > 0 && HasClass(text, position + 1, OQClassLetter);
    case u'-':
        return HasClass(text, position + 1, OQClassLetter);
    default:
        return HasClass(text, position, OQClassLetter);
    }
}
