#pragma once

#include "Plugins/Visualization/OQVisualizationBase.h"
#include "Plugins/Visualization/VisScriptFault.h"
#include "Plugins/Visualization/VisScriptFolder.h"
#include "Plugins/Visualization/VisualizationSettings.h"
#include "engine2d/CVisFlashLimiter.h"
#include "engine2d/CVisualization.h"
#include "engine2d/IVisualization2DOwner.h"
#include "foundation/IOQImage.h"
#include "toolkit/OQSystemWnd.h"

#include <memory>

class CDXSurface;
class OQRedrawThread;

// The 2D scripts in a window: decides which script runs, keeps the engine's picture in bounds by
// the quality, and shows it. Owned by the host; one thread, that of its window. The modes are the
// scripts of Vis Studio.
class C2DVisualizations final : public OQSystemWnd,
                                public OQVisualizationBase,
                                public IVisualization2DOwner
{
public:
    enum DrawMethod : int32_t
    {
        DrawStandard = 0, // painted by the window's thread
        DrawDirect = 1, // handed to a presenter with a thread of its own
    };

    // Reads the settings; touches neither the host nor a window.
    explicit C2DVisualizations(IOQVisualizationHost* host);
    ~C2DVisualizations() override;

    uintptr_t CreateWnd(uintptr_t parent, int32_t flags) override;
    bool BuildMenu(IOQMenu* menu, int32_t level) override;
    bool OnMenuCommand(const VisMenuCommand* command) override;

    const char16_t* GetName() override { return name; }

    void GetModes(OQStringArray* names, int32_t* current) override;
    bool SetMode(const char16_t* mode) override;

    void OnScriptLoaded() override { }

    IVisAudioData* GetAudioData() override;

    // The settings that a user has; each is kept at once. Others than those of DrawMethod show
    // black.
    void SetDrawMethod(int32_t method);
    void SetScriptCycle(int32_t milliseconds);
    void SetShowFrameRate(bool show);
    // Keeps flashing light within what is safe for people with photosensitive epilepsy.
    void SetFlashLimit(bool limit);

    int32_t GetDrawMethod() const { return m_drawMethod; }

    int32_t GetScriptCycle() const { return m_cycleTime; }

    bool GetShowFrameRate() const { return m_showFrameRate; }

    bool GetFlashLimit() const { return m_flashLimit; }

    int32_t GetDisplayQuality() const; // 1 to 5

    // The size of the engine's pictures, in pixels, for a window of that size.
    static OQSize PictureSizeFor(OQSize client, int32_t quality);

    // Works the picture's size out again, after the window's size or the draw method have changed.
    void OnResizeEngine();

    CVisualization& GetEngine() { return m_engine; }

protected:
    void OnInitialize() override;
    void OnTerminate() override;
    void OnSize(const OQSize& client) override;
    void OnPaint(IOQPaint& paint) override;
    void OnTimer(int32_t id) override;

private:
    static constexpr const char16_t* name = u"Visualizations";

    bool SetScriptFile(const OQString& path) override;

    OQString GetScriptFile() const override { return m_scriptFile; }

    OQString GetScriptFault() override;

    OQString CurrentPath() const;
    void LoadMode(const OQString& path);
    void LoadScriptFile();
    void LoadWhatWaits();
    void LoadRandomScript();
    void LoadScript(const OQString& path);
    void StartCycleTimer();
    void OnRest();
    void DecideOnRest();
    void EndRest();
    bool DrawPicture();
    bool Present(IOQPaint& paint);
    void KeepPicture();
    IOQImage* LimitFlashes(IOQImage& image);

    VisualizationSettings m_settings { u"Plugins\\Display\\Visualizations" };
    VisScriptFolder m_folder;
    CVisualization m_engine { this };
    int32_t m_displayQuality; // as stored
    bool m_isFirstPaint = true; // it still has to load the script
    bool m_showFrameRate;
    bool m_flashLimit;
    std::unique_ptr<OQRedrawThread> m_redrawThread; // while there is a window
    std::unique_ptr<CDXSurface> m_surface; // for the direct method
    int32_t m_drawMethod;
    OQSize m_pictureSize;
    OQStringArray m_scripts; // the files of the current mode
    int32_t m_currentScript = -1; // its index
    int32_t m_cycleTime; // ms
    bool m_isDrawing = false; // the host is called, and may call back
    OQString m_nextPath; // of the mode that it chose meanwhile; else empty
    OQString m_scriptFile; // shown in place of the mode; else empty
    OQString m_loadedFile; // the same once the engine has it
    OQString m_refusedFile; // that was to be shown, and is no script; until one is chosen
    VisScriptFault m_fault;
    OQString m_unsavedPath; // of the current mode, where the settings don't take it; else empty
    bool m_hasData = false; // at the last draw
    int64_t m_lastNews = 0; // ns, monotonic: when there was something to show
    bool m_isDrawnAhead = false; // the picture for the next paint is there
    std::unique_ptr<IOQImage> m_keptPicture; // shown until a new script or size is drawn
    bool m_isPictureKept = false; // it is that of now
    CVisFlashLimiter m_limiter;
    std::unique_ptr<IOQImage> m_dampedImage; // what is shown in place of a picture that flashes
};
