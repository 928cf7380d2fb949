#include "Plugins/Visualization/C2DVisualizations.h"

#include "Plugins/Visualization/CDXSurface.h"
#include "Plugins/Visualization/PluginWindows.h"
#include "Plugins/Visualization/VisualizationGuard.h"
#include "engine2d/IVisBuffer.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQTranslate.h"
#include "foundation/OQTruncate.h"
#include "os/Clock.h"
#include "toolkit/IOQPaint.h"
#include "toolkit/OQRedrawThread.h"
#include "toolkit/OQToolkit.h"

#include <pxvis/IOQMenu.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace {

constexpr uint32_t messageResizeEngine = 1124;
constexpr uint32_t messageTellFailure = 1125;
constexpr uint32_t messageRest = 1126;
constexpr int32_t timerResize = 1;
constexpr int32_t timerCycle = 2;
constexpr int32_t resizeDelay = 150; // ms that a size must have stayed
// A stored cycle time may be anything; the editor of the settings offers 5 s and more.
constexpr int32_t shortestCycle = 1000; // ms
constexpr int64_t restDelay = 500'000'000; // ns with nothing new to show
constexpr int32_t commandQuality = 1010; // and up to 9 more
constexpr double framesPerSecond = 60.0;

struct Quality
{
    const OQChar* text;
    int32_t value;
};

constexpr std::array qualities {
    Quality { u"Highest Quality (slowest)", 5 },
    Quality { u"High Quality", 4 },
    Quality { u"Normal Quality", 3 },
    Quality { u"Low Quality", 2 },
    Quality { u"Lowest Quality (fastest)", 1 },
};

constexpr std::array<int32_t, 5> mostPixels { 76800, 172800, 307200, 480000, 1920000 };

// The address that hexadecimal digits tell, with or without "0x"; 0 without any.
uintptr_t TextToAddress(const OQString& text)
{
    uintptr_t address = 0;
    for (int32_t at = text.StartsWithNoCase(u"0x") ? 2 : 0; at < text.GetLength(); ++at) {
        const OQChar character = text[at];
        if (character >= u'0' && character <= u'9')
            address = address * 16 + (character - u'0');
        else if (character >= u'a' && character <= u'f')
            address = address * 16 + (character - u'a' + 10);
        else if (character >= u'A' && character <= u'F')
            address = address * 16 + (character - u'A' + 10);
        else
            break;
    }
    return address;
}

// False without memory.
bool MakeImage(std::unique_ptr<IOQImage>& image, OQSize size)
{
    if (!image)
        image.reset(OQCreateImage());
    return image && (image->GetSize() == size || image->Create(size.cx, size.cy, 0, 0));
}

}

C2DVisualizations::C2DVisualizations(IOQVisualizationHost* host)
    : OQVisualizationBase(host)
    , m_displayQuality(m_settings.ReadInt(u"Display Quality", 3))
    , m_showFrameRate(m_settings.ReadInt(u"Show FPS", 0) != 0)
    , m_flashLimit(m_settings.ReadInt(u"Flash Limit", 1) != 0)
    , m_drawMethod(m_settings.ReadInt(u"Draw Method", DrawDirect))
    , m_cycleTime(m_settings.ReadInt(u"Script Cycle MS", 10000))
{
}

C2DVisualizations::~C2DVisualizations()
{
    Destroy();
}

uintptr_t C2DVisualizations::CreateWnd(uintptr_t parent, int32_t flags)
{
    OQVisualizationBase::CreateWnd(parent, flags);
    return GuardedFromHost<uintptr_t>(u"C2DVisualizations::CreateWnd", 0, [&]() -> uintptr_t {
        Destroy();
        if (CreateChild(parent, u"Tarnwick Control Class"))
            return GetHandle();
        PluginWindows::TellFailure(0);
        return 0;
    });
}

bool C2DVisualizations::BuildMenu(IOQMenu* menu, int32_t level)
{
    if (level != 0 || !menu)
        return false;
    return GuardedFromHost(u"C2DVisualizations::BuildMenu", false, [&] {
        IOQMenu* submenu = menu->AddSubmenu(OQTranslated(u"Display Quality").GetText());
        for (const Quality& quality : qualities) {
            const bool isCurrent = quality.value == GetDisplayQuality();
            if (submenu)
                submenu->AddItem(commandQuality + quality.value,
                    OQTranslated(quality.text).GetText(),
                    isCurrent ? uint32_t { VisMenuChecked } : 0u);
        }
        // FIXME: "Visualization Studio" comes with the editor.
        return true;
    });
}

bool C2DVisualizations::OnMenuCommand(const VisMenuCommand* command)
{
    constexpr int32_t count = 10;
    if (!command || command->id < commandQuality || command->id >= commandQuality + count)
        return false;
    return GuardedFromHost(u"C2DVisualizations::OnMenuCommand", false, [&] {
        m_displayQuality = command->id - commandQuality;
        m_settings.WriteInt(u"Display Quality", m_displayQuality);
        Post(messageResizeEngine);
        return true;
    });
}

void C2DVisualizations::GetModes(OQStringArray* names, int32_t* current)
{
    if (current)
        *current = -1;
    GuardedFromHost(u"C2DVisualizations::GetModes", false, [&] {
        int32_t position = -1;
        const OQStringArray modes = m_folder.ListModes(CurrentPath(), position);
        if (names)
            *names = modes;
        if (current)
            *current = position;
        return true;
    });
}

bool C2DVisualizations::SetMode(const char16_t* mode)
{
    return GuardedFromHost(u"C2DVisualizations::SetMode", false, [&] {
        m_scriptFile.Clear();
        m_refusedFile.Clear();
        m_nextPath = m_folder.GetModePath(mode);
        LoadWhatWaits();
        return true;
    });
}

// A file that isn't there or can't be read is refused once only: one that was taken is followed
// whatever becomes of it, since editors take files away and write them in parts.
bool C2DVisualizations::SetScriptFile(const OQString& path)
{
    OQString native = path;
    native.Replace(u'\\', u'/');
    if (!native.IsEmpty() && !(native.StartsWith(u"/") && CVisualization::IsScript(native))) {
        m_refusedFile = native;
        return false;
    }
    m_refusedFile.Clear();
    m_scriptFile = native;
    LoadWhatWaits();
    return true;
}

OQString C2DVisualizations::GetScriptFault()
{
    if (!m_refusedFile.IsEmpty() || !m_scriptFile.IsEmpty())
        return m_fault.Tell(m_refusedFile.IsEmpty() ? m_scriptFile : m_refusedFile);
    if (m_currentScript < 0 || m_currentScript >= m_scripts.GetCount())
        return {};
    return m_fault.Tell(m_scripts[m_currentScript]);
}

IVisAudioData* C2DVisualizations::GetAudioData()
{
    const uintptr_t address = TextToAddress(GetHostProperty(u"Legacy Data Object"));
    return std::bit_cast<IVisAudioData*>(address);
}

void C2DVisualizations::SetDrawMethod(int32_t method)
{
    m_drawMethod = method;
    EndRest();
    m_settings.WriteInt(u"Draw Method", method);
}

void C2DVisualizations::SetScriptCycle(int32_t milliseconds)
{
    m_cycleTime = milliseconds;
    m_settings.WriteInt(u"Script Cycle MS", milliseconds);
}

void C2DVisualizations::SetShowFrameRate(bool show)
{
    m_showFrameRate = show;
    EndRest();
    m_settings.WriteInt(u"Show FPS", show ? 1 : 0);
}

void C2DVisualizations::SetFlashLimit(bool limit)
{
    m_flashLimit = limit;
    m_limiter = {};
    EndRest();
    m_settings.WriteInt(u"Flash Limit", limit ? 1 : 0);
}

int32_t C2DVisualizations::GetDisplayQuality() const
{
    return std::clamp(m_displayQuality, 1, static_cast<int32_t>(mostPixels.size()));
}

void C2DVisualizations::OnInitialize()
{
    OQSystemWnd::OnInitialize();
    SetText(u"PXVisEngine");
    LetInputThrough(); // whatever is done over the picture is meant for the player
    m_redrawThread = std::make_unique<OQRedrawThread>(*this, framesPerSecond, messageRest);
    m_redrawThread->Start();
    RegisterMessage(messageRest, [this](intptr_t, intptr_t) { OnRest(); });
    RegisterMessage(messageResizeEngine, [this](intptr_t, intptr_t) { OnResizeEngine(); });
    RegisterMessage(messageTellFailure,
        [this](intptr_t, intptr_t) { PluginWindows::TellFailure(GetHandle()); });
    PluginWindows::UseThread();
    if (PluginWindows::HasUntoldFailure())
        Post(messageTellFailure); // once the host is in its loop
}

void C2DVisualizations::OnTerminate()
{
    m_redrawThread.reset();
    m_surface.reset();
    m_isFirstPaint = true;
    OQSystemWnd::OnTerminate();
}

void C2DVisualizations::OnSize(const OQSize& client)
{
    OQSystemWnd::OnSize(client); // the surface stays: it is told the size with each picture
    KillTimer(timerResize);
    SetTimer(timerResize, resizeDelay);
    EndRest();
}

void C2DVisualizations::OnTimer(int32_t id)
{
    KillTimer(id);
    if (id == timerResize)
        Send(messageResizeEngine);
    if (id != timerCycle)
        return;
    LoadRandomScript();
    StartCycleTimer();
}

OQSize C2DVisualizations::PictureSizeFor(OQSize client, int32_t quality)
{
    constexpr int32_t least = 8;
    constexpr int32_t leastDrawn = 5; // by the engine, in windows that are all but lines
    const OQSize size { std::max(client.cx, least), std::max(client.cy, least) };
    const int32_t limit = mostPixels[static_cast<size_t>(quality) - 1];
    if (int64_t { size.cx } * size.cy < limit)
        return size;
    const float shape = static_cast<float>(size.cx) / static_cast<float>(size.cy);
    const int32_t height = OQTruncateToInt32(std::sqrt(limit / (shape + 1.0)));
    const int32_t width = OQTruncateToInt32(static_cast<float>(height) * shape);
    return { std::max(width, leastDrawn), std::max(height, leastDrawn) };
}

void C2DVisualizations::OnResizeEngine()
{
    m_pictureSize = PictureSizeFor(GetClientSize(), GetDisplayQuality());
    KeepPicture();
    m_engine.Resize({ 0, 0, m_pictureSize.cx, m_pictureSize.cy });
    if (m_drawMethod != DrawDirect)
        m_surface.reset();
}

OQString C2DVisualizations::CurrentPath() const
{
    if (!m_nextPath.IsEmpty())
        return m_nextPath;
    return m_unsavedPath.IsEmpty() ? m_settings.ReadString(u"Current Script", m_folder.GetAllPath())
                                   : m_unsavedPath;
}

void C2DVisualizations::LoadMode(const OQString& path)
{
    KillTimer(timerCycle);
    m_scripts = m_folder.FindScripts(path);
    OQSeedRand(static_cast<uint32_t>(OQClockMilliseconds()));
    const bool hadFile = !std::exchange(m_loadedFile, {}).IsEmpty();
    if (m_scripts.IsEmpty() && hadFile)
        m_engine.LoadScript({}); // which is no script
    if (m_scripts.IsEmpty())
        return;
    m_unsavedPath = m_settings.WriteString(u"Current Script", path) ? OQString() : path;
    LoadRandomScript();
    if (m_scripts.GetCount() > 1)
        StartCycleTimer();
}

void C2DVisualizations::LoadScriptFile()
{
    KillTimer(timerCycle);
    m_scripts.Clear();
    m_loadedFile = m_scriptFile;
    LoadScript(m_scriptFile);
}

// What draws, and the data that it asks, must stay until it is done.
void C2DVisualizations::LoadWhatWaits()
{
    if (m_isDrawing)
        return;
    const bool hasFileEnded = m_scriptFile.IsEmpty() && !m_loadedFile.IsEmpty();
    if (!m_nextPath.IsEmpty() || hasFileEnded) {
        const OQString path = CurrentPath();
        m_nextPath.Clear();
        LoadMode(path);
    }
    if (m_loadedFile != m_scriptFile)
        LoadScriptFile();
}

void C2DVisualizations::LoadRandomScript()
{
    if (m_scripts.IsEmpty())
        return;
    m_currentScript = OQRand() % m_scripts.GetCount();
    LoadScript(m_scripts[m_currentScript]);
}

void C2DVisualizations::LoadScript(const OQString& path)
{
    OQLog(OQLogDebug, u"C2DVisualizations::LoadScript", u"%s", { path });
    KeepPicture();
    if (m_engine.LoadScript(path) != 0)
        OQLog(OQLogWarning, u"C2DVisualizations::LoadScript",
            u"There is no script to be read in %s", { path });
}

void C2DVisualizations::StartCycleTimer()
{
    SetTimer(timerCycle, std::max(m_cycleTime, shortestCycle));
}

void C2DVisualizations::OnPaint(IOQPaint& paint)
{
    if (m_isFirstPaint) {
        KillTimer(timerResize);
        OnResizeEngine();
        m_isDrawnAhead = false;
        if (m_scriptFile.IsEmpty())
            LoadMode(CurrentPath());
        else
            LoadScriptFile();
        m_isFirstPaint = false;
    }
    if (!IsVisible())
        return;
    const bool isDrawn = std::exchange(m_isDrawnAhead, false) || DrawPicture();
    if (!isDrawn || !Present(paint)) {
        paint.FillRect(GetClientRect(), 0);
        EndRest(); // another try may go well
    }
    LoadWhatWaits();
    if (m_redrawThread)
        m_redrawThread->OnPainted();
}

// Whoever has nothing new to tell mustn't cost anything: the picture stays where it is until there
// is a new one, which the next paint shows. Paints that come all the same show it again.
void C2DVisualizations::OnRest()
{
    if (m_isFirstPaint || !IsVisible())
        return;
    const bool isDrawn = DrawPicture();
    if (m_redrawThread && m_redrawThread->IsResting()) {
        LoadWhatWaits();
        m_redrawThread->OnPainted();
        return;
    }
    m_isDrawnAhead = isDrawn;
    Invalidate();
}

void C2DVisualizations::DecideOnRest()
{
    const CVisualization::Step step = m_engine.GetStep();
    const bool hasData = step != CVisualization::Step::NoData;
    if (step == CVisualization::Step::Drawn || hasData != std::exchange(m_hasData, hasData))
        EndRest();
    else if (m_redrawThread && pxvis::os::MonotonicNanoseconds() - m_lastNews > restDelay)
        m_redrawThread->SetResting(true);
}

void C2DVisualizations::EndRest()
{
    m_lastNews = pxvis::os::MonotonicNanoseconds();
    if (m_redrawThread)
        m_redrawThread->SetResting(false);
}

bool C2DVisualizations::DrawPicture()
{
    struct Drawing
    {
        explicit Drawing(bool& flag)
            : flag(flag)
        {
            flag = true;
        }

        ~Drawing() { flag = false; }

        bool& flag;
        const OQToolkit::Hold hold {}; // the host may call for events
    };

    const Drawing drawing(m_isDrawing);
    const bool isDrawn
        = m_engine.Draw({ 0, 0, m_pictureSize.cx, m_pictureSize.cy }, m_showFrameRate) == 0;
    const CVisualization::Step step = m_engine.GetStep();
    if (step == CVisualization::Step::Drawn || step == CVisualization::Step::NoData)
        m_isPictureKept = false;
    else if (step == CVisualization::Step::Kept)
        KeepPicture();
    DecideOnRest();
    return isDrawn;
}

bool C2DVisualizations::Present(IOQPaint& paint)
{
    const bool isWaiting = m_engine.GetStep() == CVisualization::Step::Waiting;
    IOQImage* image
        = isWaiting && m_isPictureKept ? m_keptPicture.get() : m_engine.GetBuffer().GetImage(0);
    if (image && m_flashLimit)
        image = LimitFlashes(*image);
    if (!image)
        return false;
    if (m_drawMethod == DrawStandard)
        return paint.DrawImage(*image, GetClientRect());
    if (m_drawMethod != DrawDirect)
        return false;
    if (!m_surface)
        m_surface = std::make_unique<CDXSurface>();
    return m_surface->Present(*image, GetHandle(), GetClientSize());
}

// The engine's is black behind a load or a change of size, and stays so while it gets no data.
void C2DVisualizations::KeepPicture()
{
    const CVisualization::Step step = m_engine.GetStep();
    IOQImage* image = m_engine.GetBuffer().GetImage(0);
    const bool isThere = step == CVisualization::Step::Drawn || step == CVisualization::Step::Kept;
    if (m_isPictureKept || !isThere || !image)
        return;
    const OQSize size = image->GetSize();
    if (!MakeImage(m_keptPicture, size))
        return;
    m_keptPicture->CopyRect(*image, { 0, 0, size.cx, size.cy }, 0, 0);
    m_isPictureKept = true;
}

// The picture itself where it may be shown.
IOQImage* C2DVisualizations::LimitFlashes(IOQImage& image)
{
    const OQSize size = image.GetSize();
    const ptrdiff_t lastRow = ptrdiff_t { size.cx } * (size.cy - 1); // the top one
    const CVisPixels pixels { image.GetBits() + lastRow, -size.cx, size.cx, size.cy };
    if (!m_limiter.IsDamped(pixels, OQClockNanoseconds()))
        return &image;
    if (!MakeImage(m_dampedImage, size))
        return nullptr;
    m_limiter.CopyDamped(m_dampedImage->GetBits() + lastRow, -size.cx);
    return m_dampedImage.get();
}
