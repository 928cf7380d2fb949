#include "apps/player/display/FolderPictures.h"

#include "os/Folder.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <vector>

namespace pxvis::player {

QString FolderPictures(const QString& song)
{
    const QString folder = song.isEmpty() ? QString() : QFileInfo(song).absolutePath();
    std::vector<os::FolderEntry> entries;
    bool isComplete = false;
    if (folder.isEmpty()
        || !os::ListFolder(
            QFile::encodeName(folder).toStdString(), mostFolderEntries, entries, isComplete))
        return {};
    const QStringList endings { "bmp", "gif", "jpeg", "jpg", "png", "webp" };
    QStringList pictures;
    for (const os::FolderEntry& entry : entries) {
        const QString name = QFile::decodeName(entry.name.c_str());
        const bool isPicture = !entry.isFolder && !name.startsWith('.') && !name.contains('\n')
            && endings.contains(QFileInfo(name).suffix().toLower());
        if (isPicture && pictures.size() < mostFolderPictures)
            pictures.append(folder + '/' + name);
    }
    return pictures.join('\n');
}

}
