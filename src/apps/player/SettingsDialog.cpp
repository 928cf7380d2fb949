#include "apps/player/SettingsDialog.h"

#include "apps/player/Appearance.h"
#include "apps/player/Player.h"
#include "apps/player/ScriptShow.h"
#include "apps/player/display/DisplayArea.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace pxvis::player {

namespace {

constexpr char methodSetting[] = "Draw Method";
constexpr char frameRateSetting[] = "Show FPS";
constexpr char cycleSetting[] = "Script Cycle MS";
constexpr char flashSetting[] = "Flash Limit";
constexpr int usualCycle = 10'000; // ms

QLabel* MakeNote(const QString& text)
{
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, Appearance::Dimmed());
    label->setPalette(palette);
    return label;
}

QSpinBox* MakeSeconds(int least, int most)
{
    auto* box = new QSpinBox;
    box->setRange(least, most);
    box->setSuffix(SettingsDialog::tr(" s"));
    return box;
}

}

SettingsDialog::SettingsDialog(Player& player, ScriptShow& show, DisplayArea& area, QWidget* parent)
    : QDialog(parent)
    , m_player(player)
    , m_show(show)
    , m_area(area)
    , m_method(new QComboBox)
    , m_frameRate(new QCheckBox(tr("Write the &frame rate into the picture")))
    , m_flashLimit(new QCheckBox(tr("&Limit flashing light")))
    , m_rotation(MakeSeconds(ScriptShow::leastInterval, ScriptShow::mostInterval))
    , m_cycle(MakeSeconds(1, ScriptShow::mostInterval))
    , m_output(new QComboBox)
    , m_delay(new QSpinBox)
    , m_listening(new QComboBox)
{
    setWindowTitle(tr("Settings"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(22, 10, 22, 14);
    rows->addSpacing(10);
    rows->addWidget(Appearance::MakeHeading(tr("Picture")));
    rows->addLayout(MakePicture());
    rows->addSpacing(10);
    rows->addWidget(Appearance::MakeHeading(tr("Scripts")));
    rows->addLayout(MakeScripts());
    rows->addSpacing(10);
    rows->addWidget(Appearance::MakeHeading(tr("Sound")));
    rows->addLayout(MakeSound());
    rows->addSpacing(12);
    rows->addStretch();
    rows->addWidget(buttons);
    setMinimumWidth(520);

    connect(&player.Devices(), &SoundDevices::Changed, this, &SettingsDialog::FillDevices);
    connect(&player.Output(), &OutputChoice::Changed, this, &SettingsDialog::UpdateDelay);
    connect(&player, &Player::ListeningChanged, this, &SettingsDialog::FillDevices);
}

QLayout* SettingsDialog::MakePicture()
{
    m_method->addItem(tr("By the graphics driver"), 1);
    m_method->addItem(tr("Plain, for drivers that make trouble"), 0);
    connect(m_method, &QComboBox::activated, this, &SettingsDialog::ApplyToVisuals);
    connect(m_frameRate, &QCheckBox::clicked, this, &SettingsDialog::ApplyToVisuals);
    connect(m_flashLimit, &QCheckBox::clicked, this, &SettingsDialog::ApplyToVisuals);
    auto* form = new QFormLayout;
    form->addRow(tr("&Drawing:"), m_method);
    form->addRow(m_frameRate);
    form->addRow(m_flashLimit);
    form->addRow(MakeNote(tr("Light that flashes more than three times a second can cause seizures "
                             "in people with photosensitive epilepsy; the limit damps it.")));
    return form;
}

QLayout* SettingsDialog::MakeScripts()
{
    connect(m_rotation, &QSpinBox::valueChanged, &m_show, &ScriptShow::SetInterval);
    // Not with each key: the visualization starts anew.
    connect(m_cycle, &QSpinBox::editingFinished, this, &SettingsDialog::ApplyToVisuals);
    m_cycle->setKeyboardTracking(false);
    auto* form = new QFormLayout;
    form->addRow(tr("&Changed by rating after:"), m_rotation);
    form->addRow(tr("“C&ycle All” changes after:"), m_cycle);
    form->addRow(MakeNote(tr("Visuals > Change by Rating shows scripts with more stars more often. "
                             "“Cycle All”, among the scripts, takes all of them alike.")));
    return form;
}

QLayout* SettingsDialog::MakeSound()
{
    m_delay->setRange(OutputChoice::leastDelay, OutputChoice::mostDelay);
    m_delay->setSingleStep(10);
    m_delay->setSuffix(tr(" ms"));
    m_delay->setToolTip(tr("For this output alone; Bluetooth loudspeakers are often late."));
    connect(m_output, &QComboBox::activated, this,
        [this](int index) { m_player.Output().Choose(m_output->itemData(index).toString()); });
    connect(m_delay, &QSpinBox::valueChanged, this,
        [this](int delay) { m_player.Output().SetDelay(delay); });
    connect(m_listening, &QComboBox::activated, this, [this](int index) {
        m_player.SetListeningDevice(m_listening->itemData(index).toString());
    });
    for (QComboBox* box : { m_output, m_listening }) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(28);
    }
    auto* form = new QFormLayout;
    form->addRow(tr("&Output:"), m_output);
    form->addRow(tr("Sound is heard &later by:"), m_delay);
    form->addRow(MakeNote(
        tr("If the pictures come before the sound, as with Bluetooth, set more; if after, less.")));
    form->addRow(tr("L&isten to:"), m_listening);
    return form;
}

void SettingsDialog::showEvent(QShowEvent* event)
{
    Read();
    QDialog::showEvent(event);
    // A layout's hint doesn't know how high wrapped texts become, which the font's scale decides.
    const QSize hint = sizeHint().expandedTo(minimumSize());
    resize(hint.width(), std::max(hint.height(), layout()->totalHeightForWidth(hint.width())));
}

void SettingsDialog::Read()
{
    const PlayerSettings& settings = m_player.Settings();
    m_method->setCurrentIndex(m_method->findData(settings.VisualNumber(methodSetting, 1) != 0));
    m_frameRate->setChecked(settings.VisualNumber(frameRateSetting, 0) != 0);
    m_flashLimit->setChecked(settings.VisualNumber(flashSetting, 1) != 0);
    m_cycle->setValue(settings.VisualNumber(cycleSetting, usualCycle) / 1000);
    const QSignalBlocker blocker(m_rotation);
    m_rotation->setValue(m_show.Interval());
    FillDevices();
    UpdateDelay();
}

void SettingsDialog::FillDevices()
{
    const auto fill = [](QComboBox& box, const QString& first, const QList<SoundDevice>& devices,
                          const QString& chosen) {
        box.clear();
        box.addItem(first, QString());
        for (const SoundDevice& device : devices)
            box.addItem(device.name, device.id);
        const int index = box.findData(chosen);
        if (index < 0) // it may come back
            box.addItem(tr("%1 (not there)").arg(chosen), chosen);
        box.setCurrentIndex(index < 0 ? box.count() - 1 : index);
    };
    fill(*m_output, tr("The system's output"), m_player.Devices().Outputs(),
        m_player.Output().Chosen());
    fill(*m_listening, tr("What the computer plays"), m_player.Devices().Inputs(),
        m_player.ListeningDevice());
}

void SettingsDialog::UpdateDelay()
{
    const QSignalBlocker blocker(m_delay);
    m_delay->setValue(m_player.Output().Delay());
}

void SettingsDialog::ApplyToVisuals()
{
    PlayerSettings& settings = m_player.Settings();
    bool hasChanged = false;
    const auto apply = [&](const char* name, int value, int usual) {
        if (settings.VisualNumber(name, usual) == value)
            return;
        settings.SetVisualNumber(name, value);
        hasChanged = true;
    };
    apply(methodSetting, m_method->currentData().toInt(), 1);
    apply(frameRateSetting, m_frameRate->isChecked(), 0);
    apply(flashSetting, m_flashLimit->isChecked(), 1);
    if (settings.VisualNumber(cycleSetting, usualCycle) / 1000 != m_cycle->value())
        apply(cycleSetting, m_cycle->value() * 1000, usualCycle);
    if (hasChanged)
        m_area.Restart();
}

}
