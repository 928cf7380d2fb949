#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLayout;
class QSpinBox;

namespace pxvis::player {

class DisplayArea;
class Player;
class ScriptShow;

// What is set for longer: how the visualizations draw, how long a script is shown, the devices and
// how late they are. It holds at once; the visualization starts anew where one of
// its own settings changes.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    // All outlive it.
    SettingsDialog(Player& player, ScriptShow& show, DisplayArea& area, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QLayout* MakePicture();
    QLayout* MakeScripts();
    QLayout* MakeSound();

    void Read();
    void FillDevices();
    void UpdateDelay();
    void ApplyToVisuals();

    Player& m_player;
    ScriptShow& m_show;
    DisplayArea& m_area;
    QComboBox* m_method;
    QCheckBox* m_frameRate;
    QCheckBox* m_flashLimit;
    QSpinBox* m_rotation;
    QSpinBox* m_cycle;
    QComboBox* m_output;
    QSpinBox* m_delay;
    QComboBox* m_listening;
};

}
