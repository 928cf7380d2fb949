#pragma once

#include "engine2d/CComponentManager.h"
#include "engine2d/CVisLayerPiece.h"
#include "engine2d/IVisualization2DOwner.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQGeometry.h"
#include "foundation/OQXmlDocument.h"

#include <memory>
#include <mutex>

class IVisAudioData;
class IVisBuffer;

// The 2D engine: one script, drawn a step at a time into the root layer's images. Knows nothing of
// windows. Every operation takes one recursive lock for its whole length, which guards the whole
// tree; an editor takes it too. Operations give 0, or -1 for a failure.
class CVisualization
{
public:
    // `owner` may be null: then there is no audio, and only an empty picture.
    explicit CVisualization(IVisualization2DOwner* owner);
    virtual ~CVisualization();
    CVisualization(const CVisualization&) = delete;
    CVisualization& operator=(const CVisualization&) = delete;

    // Time and random numbers for all that follows; null, the default: those of the calling thread.
    // Not owned.
    void SetEngineContext(OQEngineContext* context);

    // Empties the script and lets the audio data go.
    void Reset();

    // -1 for a missing or unreadable file or one that is no script; the script is empty then, and
    // the path is kept so that a file that appears is read.
    int32_t LoadScript(const OQString& path);

    // Whether LoadScript would read it.
    static bool IsScript(const OQString& path);

    // Moves to the root element of a script; false if there is none of a version that we read.
    static bool FindScript(OQXmlDocument& document);

    // An empty path means the one last loaded or saved; a shipped script goes to the user's folder,
    // and its path from then on is that of the copy. 0 also if the file can't be written.
    int32_t SaveScript(const OQString& path);

    // -1, with nothing changed, for a rectangle under 5 x 5 pixels.
    int32_t Resize(const OQRect& rect);

    // Draws one step. `rect` is 0, 0, width, height, in pixels, and sizes the pictures at the first
    // draw after a load. -1 if the size is under 4 x 4; 0 does not tell whether anything was drawn.
    int32_t Draw(const OQRect& rect, bool showFps);

    // What the last Draw found to draw, and so what the root layer's images hold.
    enum class Step
    {
        NoData, // nobody gives audio data
        Waiting, // empty: the data have told nothing new since the load or the change of size
        Kept, // what was drawn before: nothing new
        Drawn,
    };

    Step GetStep() const { return m_step; }

    // `type` is a component's position in the registry, or newLayer. The new piece goes directly
    // behind `where`, or to the front of the layer that `where` stands for. 1 if it was made; 0
    // also past the limits of a script.
    static constexpr int32_t newLayer = -100;
    int32_t AddPiece(int32_t type, CVisLayerPiece* where);

    // One step up (a direction under 1) or down, into and out of layers too. 1 if anything moved;
    // -1 if layers would be nested past the limit.
    int32_t MovePiece(CVisLayerPiece* piece, int32_t direction);

    // The root layer's images, to be read after Draw.
    IVisBuffer& GetBuffer();

    CVisLayerPiece& GetRootPiece() { return m_rootPiece; }

    const CComponentManager& GetComponentManager() const { return m_componentManager; }

    std::recursive_mutex& GetLock() { return m_lock; }

private:
    class Operation; // the lock and the engine context, for the length of one

    static bool ReadScript(const OQString& path, OQXmlDocument& document);
    void CheckScriptDate();
    void DrawRootLayer(const OQRect& rect);
    void DrawFrameRate();

    CComponentManager m_componentManager;
    OQString m_scriptPath;
    double m_scriptDate = 0; // only ever compared for inequality
    int64_t m_lastCheck = 0; // ms
    Step m_step = Step::NoData;
    bool m_sized = false; // Resize has run for the current tree
    OQXmlDocument m_scriptDocument;
    OQRect m_size;
    std::recursive_mutex m_lock;
    IVisualization2DOwner* m_owner;
    OQEngineContext* m_context = nullptr;
    CVisLayerPiece m_rootPiece;
    std::unique_ptr<IVisAudioData> m_audioData; // null until first needed
};
