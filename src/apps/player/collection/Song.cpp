#include "apps/player/collection/Song.h"

#include <QTextDocument>

namespace pxvis::player {

namespace {

constexpr qsizetype longestLine = 1000;

}

QString TitleOf(const Song& song)
{
    if (!song.title.isEmpty())
        return song.title;
    const QString name = song.url.fileName(QUrl::FullyDecoded);
    const qsizetype dot = name.lastIndexOf(u'.');
    const QString title = LineOf(dot > 0 ? name.left(dot) : name);
    return title.isEmpty() ? LineOf(song.url.toDisplayString()) : title;
}

QString LineOf(const QString& text)
{
    QString line = text.left(longestLine);
    for (QChar& character : line) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return line.simplified();
}

QString ToolTipOf(const QString& text)
{
    return text.isEmpty() ? text : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal);
}

QString DurationText(qint64 duration)
{
    if (duration < 0)
        return {};
    const auto twoDigits
        = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    const qint64 seconds = duration / 1000;
    const qint64 minutes = seconds / 60;
    const QString end = u':' + twoDigits(seconds % 60);
    if (minutes < 60)
        return QString::number(minutes) + end;
    return QString::number(minutes / 60) + u':' + twoDigits(minutes % 60) + end;
}

std::string PathOf(const QUrl& url)
{
    const QString host = url.host();
    if (!url.isLocalFile() || (!host.isEmpty() && host != QLatin1String("localhost")))
        return {};
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

QUrl UrlOf(const std::string& path)
{
    const QByteArray bytes = QByteArray::fromStdString(path);
    if (bytes.isValidUtf8())
        return QUrl::fromLocalFile(QString::fromUtf8(bytes));
    return QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/"));
}

}
