#include "apps/player/display/HostConnection.h"

#include "apps/player/display/FolderPictures.h"
#include "apps/player/display/HostAudioData.h"
#include "apps/player/display/HostState.h"
#include "apps/player/display/HostText.h"
#include "apps/player/display/TrackField.h"

#include <algorithm>
#include <utility>

namespace pxvis::player {

HostConnection::HostConnection(std::shared_ptr<HostState> state)
    : m_state(std::move(state))
{
}

HostConnection::~HostConnection() = default;

void HostConnection::Refresh()
{
    m_state->TakeFrame(m_record);
}

const int8_t* HostConnection::GetWaveform()
{
    return m_record.block.waveform[0]; // the right channel's lie behind
}

const uint8_t* HostConnection::GetSpectrum()
{
    return m_record.block.spectrum[0];
}

char16_t* HostConnection::GetProperty(const char16_t* name)
{
    const QString property = name ? QString::fromUtf16(name) : QString();
    const auto is
        = [&](const char* text) { return property.compare(text, Qt::CaseInsensitive) == 0; };
    if (is("Legacy Data Object")) {
        const IVisAudioData* const data = new HostAudioData(m_state); // the caller's
        return HostText("0x" + QString::number(reinterpret_cast<quintptr>(data), 16));
    }
    if (is("File Change Counter"))
        return HostText(QString::number(m_state->TrackNumber()));
    if (is("Impact"))
        return HostText(QString::number(m_state->Level()));
    // Counted from 0 here, and from 1 in the record of play info.
    if (is("Playing Now Position"))
        return HostText(QString::number(std::max(0, m_state->Track().position - 1)));
    if (is("Playing Now File Count"))
        return HostText(QString::number(m_state->Track().count));
    // A list here has songs only, and pictures lie beside them.
    if (is("Playlist Images"))
        return HostText(FolderPictures(m_state->Track().path));
    return HostText(TrackField(m_state->Track(), property));
}

const void* HostConnection::GetCoverImage()
{
    return m_state->CoverPicture();
}

}
