#include "apps/player/display/VisualHost.h"

#include "apps/player/display/HostConnection.h"
#include "apps/player/display/HostState.h"

namespace pxvis::player {

VisualHost::VisualHost()
    : m_state(std::make_shared<HostState>())
{
}

// What was given away may live on, the sound not.
VisualHost::~VisualHost()
{
    m_state->SetSound(nullptr);
}

IOQHostConnection* VisualHost::Connect(OQVisualizationBase*)
{
    return new HostConnection(m_state);
}

void VisualHost::SetSound(HeardSound* sound)
{
    m_state->SetSound(sound);
}

void VisualHost::SetTrack(const HostTrack& track)
{
    m_state->SetTrack(track);
}

void VisualHost::SetElapsed(double seconds)
{
    m_state->SetElapsed(seconds);
}

void VisualHost::SetResting(bool resting)
{
    m_state->SetResting(resting);
}

void VisualHost::DrawAwhile()
{
    m_state->DrawAwhile();
}

QString VisualHost::CoverFile() const
{
    return m_state->CoverFile();
}

int VisualHost::Level() const
{
    return m_state->Level();
}

bool VisualHost::TakeBeat()
{
    return m_state->TakeBeat();
}

}
