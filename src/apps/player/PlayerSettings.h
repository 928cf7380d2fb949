#pragma once

#include <QByteArray>
#include <QString>

namespace pxvis::player {

// What the player remembers, in the user's settings file below the key "Player", beside what the
// library has there. Without a store, reads give what they fall back to. User-interface thread.
class PlayerSettings
{
public:
    QString Text(const char* name, const QString& fallback = {}) const;
    int Number(const char* name, int fallback) const;
    void SetText(const char* name, const QString& value);
    void SetNumber(const char* name, int value);

    // What was wrong with the file, one line for the user; empty if nothing was.
    QString Warning() const;

    // How much later sound comes out of that device than the system knows, in ms; "": of the one
    // that the system chooses. Kept within mostDelay to both sides.
    static constexpr int mostDelay = 5000;
    int Delay(const QString& device) const;
    void SetDelay(const QString& device, int delay);

    // Those of the visualizations: "Draw Method", "Show FPS", "Script Cycle MS", "Flash Limit".
    // They hold for visualizations that are made from then on.
    int VisualNumber(const char* name, int fallback) const;
    void SetVisualNumber(const char* name, int value);
};

}
