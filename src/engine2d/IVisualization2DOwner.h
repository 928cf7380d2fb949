#pragma once

class IVisAudioData;

// What the 2D engine asks of whoever shows it. Slots: add at the end only.
class IVisualization2DOwner
{
public:
    // A script has been read in completely.
    virtual void OnScriptLoaded() = 0;

    // A new object that the engine owns, or null.
    virtual IVisAudioData* GetAudioData() = 0;

protected:
    ~IVisualization2DOwner() = default;
};
