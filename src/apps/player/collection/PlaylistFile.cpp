#include "apps/player/collection/PlaylistFile.h"

#include "apps/player/collection/Playlist.h"
#include "foundation/OQTextEncoding.h"
#include "os/File.h"
#include "os/Folder.h"
#include "os/Path.h"

#include <QByteArrayView>
#include <QCoreApplication>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

namespace pxvis::player {

namespace {

constexpr std::string_view infoMark = "#EXTINF:";

QString FaultOf(os::FileError error)
{
    const char* text = QT_TRANSLATE_NOOP("PlaylistFile", "can't be read or written");
    if (error == os::FileError::NotFound)
        text = QT_TRANSLATE_NOOP("PlaylistFile", "no such file or folder");
    else if (error == os::FileError::NotRegular)
        text = QT_TRANSLATE_NOOP("PlaylistFile", "not a regular file");
    else if (error == os::FileError::Denied)
        text = QT_TRANSLATE_NOOP("PlaylistFile", "access is denied");
    return QCoreApplication::translate("PlaylistFile", text);
}

QString Line(const QString& path, const QString& fault)
{
    return LineOf(path) + QStringLiteral(": ") + fault;
}

std::string AbsolutePath(const QString& path)
{
    std::error_code ignored;
    return std::filesystem::absolute(path.toStdString(), ignored).lexically_normal();
}

// At most mostBytes of it.
os::FileError ReadStart(const std::string& path, std::string& bytes)
{
    os::Descriptor file;
    int64_t size = 0;
    if (const auto error = os::OpenRegularFile(path, file, size); error != os::FileError::None)
        return error;
    bytes.resize(static_cast<size_t>(std::min<int64_t>(size, PlaylistFile::mostBytes)));
    size_t used = 0;
    while (used < bytes.size()) {
        const int64_t count = file.Read(bytes.data() + used, bytes.size() - used);
        if (count < 0)
            return os::FileError::Failed;
        if (count == 0)
            break;
        used += static_cast<size_t>(count);
    }
    bytes.resize(used);
    return os::FileError::None;
}

// What the bytes are as UTF-8, if they aren't that already.
std::optional<std::string> FromCodePage(std::string_view bytes)
{
    if (QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8())
        return std::nullopt;
    return OQBytesToText(bytes, OQTextEncoding::CodePage).ToUtf8();
}

// A single letter in front of "://" is a drive of another system.
bool IsAddress(std::string_view line)
{
    const std::string_view scheme = line.substr(0, line.find("://"));
    const auto isOfScheme = [](char character) {
        return (character >= '0' && character <= '9')
            || ((character | 0x20) >= 'a' && (character | 0x20) <= 'z') || character == '+'
            || character == '-' || character == '.';
    };
    return scheme.size() > 1 && scheme.size() < line.size()
        && std::all_of(scheme.begin(), scheme.end(), isOfScheme);
}

// Empty for what names no file. Lists from elsewhere may have other characters and separators than
// the file's name: what leads to a file that is there is it.
QUrl UrlOfLine(std::string_view line, const std::string& folder)
{
    if (IsAddress(line)) {
        const QUrl url = QUrl::fromEncoded(
            QByteArray(line.data(), static_cast<qsizetype>(line.size())), QUrl::TolerantMode);
        const std::string path = PathOf(url);
        return os::IsUsablePath(path) && path.back() != '/' ? UrlOf(path) : QUrl();
    }
    std::vector<std::string> readings { std::string(line) };
    if (const auto text = FromCodePage(line))
        readings.push_back(*text);
    if (line.find('/') == std::string_view::npos && line.find('\\') != std::string_view::npos) {
        readings.push_back(readings.back());
        std::replace(readings.back().begin(), readings.back().end(), '\\', '/');
    }
    const auto pathOf = [&](const std::string& reading) -> std::string {
        const std::string path = reading.starts_with('/') ? reading : folder + '/' + reading;
        const bool isNormal
            = path.find("//") == std::string::npos && path.find("/.") == std::string::npos;
        return isNormal ? path : std::filesystem::path(path).lexically_normal().string();
    };
    auto found = readings.begin();
    if (readings.size() > 1)
        found = std::find_if(readings.begin(), readings.end(),
            [&](const std::string& reading) { return os::FileExists(pathOf(reading)); });
    const std::string path = pathOf(found == readings.end() ? readings.back() : *found);
    return path.back() != '/' ? UrlOf(path) : QUrl();
}

// Behind the mark: "seconds,artist - title", with whatever between the number and the comma.
void TakeInfo(std::string_view info, Song& song)
{
    const std::string text = FromCodePage(info).value_or(std::string(info));
    const QString line = QString::fromStdString(text);
    const qsizetype comma = line.indexOf(u',');
    if (comma < 0)
        return;
    const QString number = line.left(comma).trimmed().section(u' ', 0, 0);
    bool isNumber = false;
    const double seconds = number.toDouble(&isNumber);
    song.duration = isNumber && seconds > 0 && seconds < 1e9 ? qRound64(seconds * 1000) : -1;
    song.title = line.mid(comma + 1);
}

// "artist - title", but for a file's name, which stands in for a title that isn't known.
void TakeName(Song& song)
{
    const QString name = std::exchange(song.title, {});
    const qsizetype dash = name.indexOf(QLatin1String(" - "));
    const QString nameless = TitleOf(song);
    if (LineOf(name) == nameless)
        return;
    song.artist = dash < 0 ? QString() : LineOf(name.left(dash));
    song.title = LineOf(dash < 0 ? name : name.mid(dash + 3));
    if (song.title == nameless && !song.artist.isEmpty())
        song.title.clear();
}

std::string InfoLine(const Song& song)
{
    if (song.duration < 0 && song.title.isEmpty() && song.artist.isEmpty())
        return {};
    const qint64 seconds = song.duration < 0 ? -1 : (song.duration + 500) / 1000;
    QString name = LineOf(TitleOf(song));
    if (!song.artist.isEmpty())
        name = LineOf(song.artist) + QStringLiteral(" - ") + name;
    return std::string(infoMark) + std::to_string(seconds) + ',' + name.toStdString() + '\n';
}

std::string PathLine(const std::string& path, const std::string& folder, bool relative)
{
    const bool isPlain = !FromCodePage(path) && std::none_of(path.begin(), path.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
    });
    if (!isPlain || path.size() >= PlaylistFile::mostLineBytes)
        return UrlOf(path).toEncoded().toStdString() + '\n';
    if (!relative || path.compare(0, folder.size(), folder) != 0)
        return path + '\n';
    const std::string name = path.substr(folder.size());
    // What a reader would take for something else.
    const bool isOdd = name.find_first_of("#\\ ") == 0 || IsAddress(name)
        || name.find('\\') != std::string::npos;
    return (isOdd ? "./" : "") + name + '\n';
}

}

bool PlaylistFile::IsPlaylist(const QString& path)
{
    return path.endsWith(QLatin1String(".m3u8"), Qt::CaseInsensitive)
        || path.endsWith(QLatin1String(".m3u"), Qt::CaseInsensitive);
}

bool PlaylistFile::Read(const QString& path, QList<Song>& songs, QString& error)
{
    songs.clear();
    error.clear();
    const std::string file = AbsolutePath(path);
    std::string bytes;
    if (const auto fault = ReadStart(file, bytes); fault != os::FileError::None) {
        error = Line(path, FaultOf(fault));
        return false;
    }
    if (bytes.find('\0') != std::string::npos) {
        error = Line(path, QCoreApplication::translate("PlaylistFile", "not a playlist"));
        return false;
    }
    if (bytes.size() == mostBytes) // without the line that was cut
        bytes.resize(bytes.find_last_of('\n') + 1);
    std::string_view rest = bytes;
    if (rest.starts_with("\xEF\xBB\xBF"))
        rest.remove_prefix(3);
    const std::string folder = os::FolderOf(file);
    Song song;
    while (!rest.empty() && songs.size() < Playlist::mostSongs) {
        const size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.size() > mostLineBytes || line.find_first_not_of(" \t") == std::string_view::npos)
            continue;
        if (line.starts_with(infoMark))
            TakeInfo(line.substr(infoMark.size()), song);
        if (line.starts_with('#'))
            continue;
        song.url = UrlOfLine(line, folder);
        TakeName(song);
        if (!song.url.isEmpty())
            songs.append(song);
        song = {};
    }
    return true;
}

bool PlaylistFile::Write(
    const QString& path, const QList<Song>& songs, bool relative, QString& error)
{
    error.clear();
    const std::string file = AbsolutePath(path);
    const std::string folder = os::FolderOf(file);
    std::string bytes = "#EXTM3U\n";
    for (const Song& song : songs) {
        const std::string songPath = PathOf(song.url);
        if (!os::IsUsablePath(songPath))
            continue;
        bytes += InfoLine(song);
        bytes += PathLine(songPath, folder.ends_with('/') ? folder : folder + '/', relative);
    }
    os::MakeFolders(folder, 0700);
    const auto fault = os::WriteFile(file, bytes);
    if (fault != os::FileError::None)
        error = Line(path, FaultOf(fault));
    return error.isEmpty();
}

}
