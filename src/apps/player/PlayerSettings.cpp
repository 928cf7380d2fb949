#include "apps/player/PlayerSettings.h"

#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

#include <QCoreApplication>
#include <QUrl>

#include <algorithm>
#include <memory>

namespace pxvis::player {

namespace {

constexpr const OQChar* playerKey = u"Player";
constexpr const OQChar* delaysKey = u"Player\\Delays";
constexpr const OQChar* visualsKey = u"Plugins\\Display\\Visualizations";

const OQChar* Units(const QString& text)
{
    return reinterpret_cast<const OQChar*>(text.utf16());
}

std::unique_ptr<IOQSettingsKey> OpenKey(const OQChar* path, bool create)
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    IOQSettings* settings = tools ? tools->GetSettings(1) : nullptr;
    return std::unique_ptr<IOQSettingsKey>(
        settings ? settings->OpenKey(path, OQSettingsUser, create) : nullptr);
}

int ReadNumber(const OQChar* path, const QString& name, int fallback)
{
    const auto key = OpenKey(path, false);
    return key ? key->GetInt(Units(name), fallback) : fallback;
}

void WriteNumber(const OQChar* path, const QString& name, int value)
{
    if (const auto key = OpenKey(path, true))
        key->SetInt(Units(name), value);
}

// The store's names can't be empty and have no regard to case: capital letters are escaped, like
// all that means something elsewhere, and no device is called what has brackets.
QString NameOfDevice(const QString& device)
{
    if (device.isEmpty())
        return QStringLiteral("(default)");
    return QString::fromLatin1(QUrl::toPercentEncoding(device, {}, "ABCDEFGHIJKLMNOPQRSTUVWXYZ"));
}

int Bounded(int delay)
{
    return std::clamp(delay, -PlayerSettings::mostDelay, PlayerSettings::mostDelay);
}

}

QString PlayerSettings::Text(const char* name, const QString& fallback) const
{
    const auto key = OpenKey(playerKey, false);
    const QString valueName = QString::fromUtf8(name);
    OQString text;
    OQDllString value(text);
    if (!key || !key->GetString(Units(valueName), u"", value))
        return fallback;
    return QString::fromUtf16(text.GetText(), text.GetLength());
}

int PlayerSettings::Number(const char* name, int fallback) const
{
    return ReadNumber(playerKey, QString::fromUtf8(name), fallback);
}

void PlayerSettings::SetText(const char* name, const QString& value)
{
    const QString valueName = QString::fromUtf8(name);
    if (const auto key = OpenKey(playerKey, true))
        key->SetString(Units(valueName), Units(value));
}

void PlayerSettings::SetNumber(const char* name, int value)
{
    WriteNumber(playerKey, QString::fromUtf8(name), value);
}

QString PlayerSettings::Warning() const
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    IOQSettings* settings = tools ? tools->GetSettings(1) : nullptr;
    OQString path;
    OQDllString crossing(path);
    const int fault = settings ? settings->GetFault(OQSettingsUser, crossing) : OQSettingsWhole;
    const char* text = "";
    if (fault == OQSettingsDamaged)
        text = QT_TRANSLATE_NOOP("PlayerSettings",
            "The settings were damaged. What can be read of them is used, and a copy of %1 is kept "
            "beside it.");
    else if (fault == OQSettingsUnusable)
        text = QT_TRANSLATE_NOOP(
            "PlayerSettings", "%1 can't be read as settings: what is changed will be forgotten.");
    return fault == OQSettingsWhole
        ? QString()
        : QCoreApplication::translate("PlayerSettings", text)
              .arg(QString::fromUtf16(path.GetText(), path.GetLength()));
}

int PlayerSettings::Delay(const QString& device) const
{
    return Bounded(ReadNumber(delaysKey, NameOfDevice(device), 0));
}

void PlayerSettings::SetDelay(const QString& device, int delay)
{
    WriteNumber(delaysKey, NameOfDevice(device), Bounded(delay));
}

int PlayerSettings::VisualNumber(const char* name, int fallback) const
{
    return ReadNumber(visualsKey, QString::fromUtf8(name), fallback);
}

void PlayerSettings::SetVisualNumber(const char* name, int value)
{
    WriteNumber(visualsKey, QString::fromUtf8(name), value);
}

}
