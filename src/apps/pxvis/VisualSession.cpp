#include "apps/pxvis/VisualSession.h"

#include "apps/pxvis/ScriptText.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQTruncate.h"
#include "foundation/OQXmlDocument.h"

namespace pxvis {

VisualSession::VisualSession(const VisualSessionSettings& settings)
    : m_settings(settings)
    , m_audio(std::make_shared<host::RecordAudioState>())
    , m_engine(this)
{
    m_context.virtualClock = true;
    m_context.virtualNanoseconds = settings.clockStartMs * 1'000'000;
    m_context.mostThreads = settings.threads;
    m_engine.SetEngineContext(&m_context);
    m_audio->frameRate = static_cast<int32_t>(settings.stepRate.PerSecond() * 1000.0);
}

std::string VisualSession::SizeFault(int32_t width, int32_t height)
{
    if (width >= smallestSide && height >= smallestSide && width <= largestSide
        && height <= largestSide && int64_t { width } * height <= mostPixels)
        return {};
    return "a picture of " + std::to_string(width) + "x" + std::to_string(height)
        + " can't be drawn: sides are " + std::to_string(smallestSide) + " to "
        + std::to_string(largestSide) + " pixels, 64 megapixels in all";
}

std::unique_ptr<VisualSession> VisualSession::Create(
    const VisualSessionSettings& settings, std::string& error)
{
    error = SizeFault(settings.width, settings.height);
    if (!error.empty())
        return nullptr;
    if (!OQSiblingModules::Get().ImageApp()) {
        error = "the image module is missing: " + OQSiblingModules::Get().ImageFailure();
        return nullptr;
    }
    return std::unique_ptr<VisualSession>(new VisualSession(settings));
}

// The engine passes over what it can't read; a person who names a file wants to know.
bool VisualSession::CheckScript(const std::string& path, std::string& error)
{
    OQString text;
    OQXmlDocument document;
    if (!ReadScriptText(path, text, error))
        return false;
    if (!document.SetDocument(text)) {
        error = path + ": not a script: " + document.GetError().ToUtf8();
    } else if (!CVisualization::FindScript(document)) {
        error = path + ": not a script: the root element must be PXV with the Version 1.0";
    } else {
        return true;
    }
    return false;
}

bool VisualSession::LoadScript(const std::string& path, std::string& error)
{
    if (!CheckScript(path, error))
        return false;
    if (m_engine.LoadScript(OQString::FromUtf8(path)) == 0)
        return true;
    error = path + ": can't be read any more";
    return false;
}

void VisualSession::SetSong(const host::SongInfo& info, const std::string& coverFile)
{
    m_audio->SetSong(info, coverFile);
}

void VisualSession::SetElapsed(double seconds)
{
    m_audio->playInfo.elapsedSeconds = OQTruncateToInt32(seconds);
}

bool VisualSession::Step(const host::AudioRecord& record)
{
    m_context.virtualNanoseconds = m_settings.clockStartMs * 1'000'000
        + m_settings.stepRate.Nanoseconds(static_cast<uint64_t>(m_steps));
    ++m_steps;
    m_audio->record = record;
    m_audio->ready = true;
    return m_engine.Draw({ 0, 0, m_settings.width, m_settings.height }, false) == 0
        && m_engine.GetBuffer().GetBits(0);
}

IOQImage& VisualSession::Picture()
{
    return *m_engine.GetBuffer().GetImage(0);
}

IVisAudioData* VisualSession::GetAudioData()
{
    return new host::RecordAudioData(m_audio);
}

}
