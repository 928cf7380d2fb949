#include "apps/player/PlayerSettings.h"

#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

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
