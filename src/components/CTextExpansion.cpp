#include "components/CTextExpansion.h"

#include "engine2d/VisLimits.h"
#include "engine2d/VisTextPages.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQFormat.h"
#include "foundation/OQNumberText.h"
#include "kernels/Wrapped.h"

#include <cstring>
#include <memory>
#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>

namespace {

using HostText = std::unique_ptr<char16_t, decltype(&SysFreeString)>;

// As much of a host's text as may be shown.
std::u16string_view ViewOf(const HostText& text)
{
    size_t length = 0;
    while (text && length <= VisLimits::textUnits && text.get()[length])
        ++length;
    return TextStart({ text.get(), length }, VisLimits::textUnits);
}

VisPlayInfo PlayInfo(IVisAudioData& audio)
{
    VisPlayInfo info;
    if (const void* record = audio.GetPlayInfo())
        std::memcpy(&info, record, sizeof info);
    return info;
}

OQString BitRateText(int32_t code)
{
    switch (code) {
    case 0:
        return u"???";
    case 10000:
        return u"Analog (CD)";
    case 10001:
        return u"Digital (CD)";
    default:
        return OQIntToText(code);
    }
}

struct Token
{
    std::u16string_view name;
    int32_t field; // a VisTrackField, or -1: of the play info
    OQString (*text)(const VisPlayInfo& info) = nullptr;
};

constexpr Token tokens[] = {
    { u"ARTIST", VisTrackFieldArtist },
    { u"ALBUM", VisTrackFieldAlbum },
    { u"NAME", VisTrackFieldName },
    { u"PN_POSITION", -1, [](const VisPlayInfo& p) { return OQIntToText(p.playlistPosition); } },
    { u"PN_TRACKS", -1, [](const VisPlayInfo& p) { return OQIntToText(p.playlistLength); } },
    { u"YEAR", VisTrackFieldYear },
    { u"SAMPLE_RATE", -1, [](const VisPlayInfo& p) { return OQIntToText(p.sampleRate); } },
    { u"CHANNELS", -1, [](const VisPlayInfo& p) { return OQIntToText(p.channels); } },
    { u"BITRATE", -1, [](const VisPlayInfo& p) { return BitRateText(p.bitRate); } },
    { u"ELAPSED_TIME", -1, [](const VisPlayInfo& p) { return FormatTrackTime(p.elapsedSeconds); } },
    { u"REMAINING_TIME", -1,
        [](const VisPlayInfo& p) {
            return FormatTrackTime(
                pxvis::kernels::SubtractWrapped(p.totalSeconds, p.elapsedSeconds));
        } },
    { u"TOTAL_TIME", -1, [](const VisPlayInfo& p) { return FormatTrackTime(p.totalSeconds); } },
    { u"LYRICS", VisTrackFieldLyrics },
    { u"NOTES", VisTrackFieldNotes },
    { u"CUSTOM_1", VisTrackFieldCustom1 },
    { u"CUSTOM_2", VisTrackFieldCustom2 },
    { u"CUSTOM_3", VisTrackFieldCustom3 },
};

}

OQString FormatTrackTime(int32_t seconds)
{
    const int32_t hours = seconds / 3600;
    const int32_t minutes = (seconds - 3600 * hours) / 60;
    const int32_t rest = seconds - 3600 * hours - 60 * minutes;
    if (hours >= 1)
        return OQFormat(u"%d:%02d:%02d", { hours, minutes, rest });
    return OQFormat(u"%d:%02d", { minutes, rest });
}

const std::u16string& CTextExpansion::Expand(const OQString& page, IVisAudioData& audio)
{
    TakeHostText(page, audio);
    if (m_isPlain)
        return m_text;
    m_isPlain = true;
    for (const Token& token : tokens) {
        if (m_text.find(token.name) == m_text.npos)
            continue;
        m_isPlain = false;
        if (token.text) {
            Replace(token.name, token.text(PlayInfo(audio)).View());
        } else {
            const HostText value(audio.GetTrackField(token.field), &SysFreeString);
            Replace(token.name, ViewOf(value));
        }
    }
    return m_text;
}

// Leaves m_isPlain as it is if the text is the same again.
void CTextExpansion::TakeHostText(const OQString& page, IVisAudioData& audio)
{
    const HostText answer(audio.ExpandText(page.GetText()), &SysFreeString);
    const std::u16string_view text = ViewOf(answer);
    OQSpendWork(VisLimits::textExpandWork * static_cast<int64_t>(text.size()));
    m_isPlain = m_isPlain && text == m_text;
    if (!m_isPlain)
        m_text = text;
}

void CTextExpansion::Replace(std::u16string_view token, std::u16string_view value)
{
    m_other.clear();
    size_t from = 0;
    while (m_other.size() <= VisLimits::textUnits) {
        const size_t at = m_text.find(token, from);
        m_other.append(m_text, from, at - from);
        if (at == m_text.npos)
            break;
        m_other.append(value);
        from = at + token.size();
    }
    m_other.resize(TextStart(m_other, VisLimits::textUnits).size());
    m_text.swap(m_other);
    OQSpendWork(VisLimits::textExpandWork * static_cast<int64_t>(value.size() + m_text.size()));
}
