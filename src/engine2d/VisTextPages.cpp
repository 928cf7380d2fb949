#include "engine2d/VisTextPages.h"

#include "engine2d/VisLimits.h"
#include "foundation/OQNumberText.h"

namespace {

constexpr std::u16string_view separator = u"\r\n|\r\n";

// Calls `use` for each page until that gives false.
template <typename Use>
void ForEachPage(std::u16string_view text, Use use)
{
    for (;;) {
        const size_t end = text.find(separator);
        if (!use(text.substr(0, end)) || end == text.npos)
            return;
        text.remove_prefix(end + separator.size());
    }
}

}

void CutTextPages(const OQString& text, OQStringArray& pages)
{
    pages.Clear();
    ForEachPage(text.View(), [&](std::u16string_view page) {
        page = TextStart(page, VisLimits::textUnits);
        pages.Add(OQString(page.data(), static_cast<int>(page.size())));
        return pages.GetCount() < VisLimits::textPages;
    });
}

OQString TextPagesFault(const OQString& text)
{
    int32_t count = 0;
    OQString reason;
    ForEachPage(text.View(), [&](std::u16string_view page) {
        if (count == VisLimits::textPages) {
            reason = u"past the limit of " + OQIntToText(VisLimits::textPages)
                + u" pages: further ones are cut off";
            return false;
        }
        ++count;
        if (page.size() > VisLimits::textUnits && reason.IsEmpty())
            reason = u"page " + OQIntToText(count) + u" is past the limit of "
                + OQIntToText(VisLimits::textUnits) + u" characters: its end is cut off";
        return true;
    });
    return reason;
}

std::u16string_view TextStart(std::u16string_view text, size_t units)
{
    if (text.size() <= units)
        return text;
    if (units > 0 && (text[units - 1] & 0xFC00) == 0xD800)
        --units;
    return text.substr(0, units);
}
