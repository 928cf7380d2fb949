#include "host/RecordAudioData.h"

#include <pxvis/SysString.h>

#include <glib.h>

#include <algorithm>
#include <utility>

namespace pxvis::host {

namespace {

std::u16string ToUtf16(const std::string& text)
{
    char* valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
    glong length = 0;
    gunichar2* units = g_utf8_to_utf16(valid, -1, nullptr, &length, nullptr);
    std::u16string result(units, units + length);
    g_free(units);
    g_free(valid);
    return result;
}

}

int32_t AudioValue(const AudioRecord& record, int32_t frameRate, int32_t which)
{
    switch (which) {
    case VisAudioValueLevel:
        return record.level;
    case VisAudioValueBeat:
        return record.beat;
    case VisAudioValueFrameRate:
        return frameRate;
    case VisAudioValueChange:
        return record.change;
    default:
        return 0;
    }
}

void RecordAudioState::SetSong(const SongInfo& info, const std::string& coverFile)
{
    fields[VisTrackFieldArtist] = ToUtf16(info.tags.artist);
    fields[VisTrackFieldAlbum] = ToUtf16(info.tags.album);
    fields[VisTrackFieldName] = ToUtf16(info.tags.title);
    fields[VisTrackFieldYear] = ToUtf16(info.tags.year);
    fields[VisTrackFieldCoverFile] = ToUtf16(coverFile);
    fields[VisTrackFieldNotes] = ToUtf16(info.tags.notes);
    fields[VisTrackFieldLyrics] = ToUtf16(info.tags.lyrics);
    playInfo.totalSeconds = static_cast<int32_t>(std::clamp(info.durationSeconds, 0.0, 2e9));
    playInfo.bitRate = (info.bitRate + 500) / 1000;
    playInfo.channels = info.channels;
    playInfo.sampleRate = info.sampleRate;
}

RecordAudioData::RecordAudioData(std::shared_ptr<const RecordAudioState> state)
    : m_state(std::move(state))
{
}

int32_t RecordAudioData::Refresh()
{
    if (!m_state->ready)
        return -1;
    m_record = m_state->record;
    return 0;
}

const VisAudioBlock* RecordAudioData::GetData()
{
    return &m_record.block;
}

int32_t RecordAudioData::GetValue(int32_t which)
{
    return AudioValue(m_record, m_state->frameRate, which);
}

const void* RecordAudioData::GetPlayInfo()
{
    return &m_state->playInfo;
}

char16_t* RecordAudioData::GetTrackField(int32_t which)
{
    if (which < 0 || static_cast<size_t>(which) >= m_state->fields.size())
        return nullptr;
    const std::u16string& field = m_state->fields[static_cast<size_t>(which)];
    return field.empty() ? nullptr : SysAllocString(field.c_str());
}

char16_t* RecordAudioData::ExpandText(const char16_t* text)
{
    return SysAllocString(text);
}

}
