#include "apps/player/FileQuestions.h"

#include "apps/player/Player.h"
#include "apps/player/Session.h"
#include "apps/player/collection/PlaylistFile.h"

#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>

namespace pxvis::player {

namespace {

constexpr char folderSetting[] = "Folder"; // that was opened the last time
constexpr char endings[] = "*.mp3 *.flac *.ogg *.oga *.opus *.m4a *.aac *.wav *.wma *.aiff *.aif "
                           "*.ape *.wv *.mka *.mp4 *.webm *.m3u *.m3u8";

QString FirstFolder(const PlayerSettings& settings)
{
    const QString music = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
    for (const QString& folder : { settings.Text(folderSetting), music }) {
        if (QFileInfo(folder).isDir())
            return folder;
    }
    return QDir::homePath();
}

QList<QUrl> UrlsOf(const QStringList& paths)
{
    QList<QUrl> urls;
    for (const QString& path : paths)
        urls.append(QUrl::fromLocalFile(path));
    return urls;
}

}

void FileQuestions::OpenFiles() const
{
    const QStringList paths = AskForFiles(Player::tr("Open Files"));
    if (!paths.isEmpty())
        player.Open(UrlsOf(paths));
}

void FileQuestions::AddFiles() const
{
    const QStringList paths = AskForFiles(Player::tr("Add to the Playlist"));
    if (!paths.isEmpty())
        player.Add(UrlsOf(paths));
}

QStringList FileQuestions::AskForFiles(const QString& title) const
{
    const QString filter
        = Player::tr("Music and playlists (%1);;All files (*)").arg(QLatin1String(endings));
    const QStringList paths
        = QFileDialog::getOpenFileNames(parent, title, FirstFolder(player.Settings()), filter);
    if (!paths.isEmpty())
        player.Settings().SetText(folderSetting, QFileInfo(paths.first()).path());
    return paths;
}

void FileQuestions::OpenFolder() const
{
    const QString path = QFileDialog::getExistingDirectory(
        parent, Player::tr("Open Folder"), FirstFolder(player.Settings()));
    if (path.isEmpty())
        return;
    player.Settings().SetText(folderSetting, path);
    player.Open({ QUrl::fromLocalFile(path) });
}

QString FileQuestions::SavePlaylist() const
{
    QFileDialog dialog(parent, Player::tr("Save Playlist"), FirstFolder(player.Settings()),
        Player::tr("Playlists (*.m3u8)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("m3u8"));
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QString path = dialog.selectedFiles().constFirst();
    QString fault;
    return PlaylistFile::Write(path, SongsOf(player.Songs()), true, fault)
        ? Player::tr("Saved as %1").arg(QFileInfo(path).fileName())
        : fault;
}

}
