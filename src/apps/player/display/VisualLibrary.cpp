#include "apps/player/display/VisualLibrary.h"

#include "os/InstallPlaces.h"

#include <pxvis/SysString.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace pxvis::player {

bool VisualLibrary::Load(const QString& path, QString& error)
{
    error.clear();
    if (m_create)
        return true;
    const QString file = path.isEmpty()
        ? QFile::decodeName(os::GetInstallPlaces().siblings.c_str()) + "/libpxvis.so"
        : QFileInfo(path).absoluteFilePath();
    if (m_library.Open(QFile::encodeName(file).toStdString()))
        m_create = reinterpret_cast<decltype(m_create)>(m_library.Symbol("CreateVisualization"));
    if (!m_create)
        error = QCoreApplication::translate(
            "pxvis::player::VisualLibrary", "The library of the visualizations can't be loaded: %1")
                    .arg(QString::fromStdString(m_library.Error()).simplified());
    return m_create != nullptr;
}

std::unique_ptr<IOQVisualization> VisualLibrary::Create(IOQVisualizationHost& host)
{
    constexpr int scripts = 2;
    return std::unique_ptr<IOQVisualization>(m_create ? m_create(scripts, &host) : nullptr);
}

QString VisualProperty(IOQVisualization& visualization, const char16_t* name)
{
    const std::unique_ptr<char16_t, decltype(&SysFreeString)> text(
        visualization.GetProperty(name), &SysFreeString);
    return text ? QString::fromUtf16(text.get()) : QString();
}

bool SetVisualProperty(IOQVisualization& visualization, const char16_t* name, const QString& value)
{
    return visualization.SetProperty(name, value.toStdU16String().c_str());
}

}
