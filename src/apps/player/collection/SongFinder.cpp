#include "apps/player/collection/SongFinder.h"

#include "apps/player/collection/SongSearch.h"
#include "apps/player/collection/SongTags.h"
#include "os/File.h"
#include "os/Thread.h"

#include <QMetaObject>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace pxvis::player {

namespace {

void TakeText(const std::string& tag, QString& text)
{
    const QString line = LineOf(QString::fromStdString(tag));
    if (!line.isEmpty())
        text = line;
}

// What the file doesn't say stays as it's known.
Song WithTags(Song song, const std::atomic<bool>& stop)
{
    const std::string path = PathOf(song.url);
    song.isRead = true;
    song.isMissing = os::FileSize(path) < 0;
    if (song.isMissing)
        return song;
    host::SongInfo info;
    ReadSongTags(path, stop, info);
    TakeText(info.tags.title, song.title);
    TakeText(info.tags.artist, song.artist);
    TakeText(info.tags.album, song.album);
    if (info.durationSeconds > 0 && info.durationSeconds < 1e9)
        song.duration = qRound64(info.durationSeconds * 1000);
    return song;
}

}

// What is asked for waits here for the thread, what it finds in the event queue of the finder,
// which is told apart by its round: Cancel begins another one.
struct SongFinder::Work
{
    struct Search
    {
        int number = 0;
        QList<QUrl> urls;
    };

    struct Reading
    {
        QList<Song> songs;
        qsizetype done = 0;
    };

    explicit Work(SongFinder& owner)
        : finder(owner)
    {
    }

    static void Run(void* work);
    void Loop();
    void RunSearch(const Search& search, int forRound);
    void RunReading(const Song& song, int forRound);
    template <class Send>
    void Post(int forRound, Send send);
    void Add(const Search* search, const QList<Song>* songs);
    void Clear(bool forEver);

    SongFinder& finder;
    std::mutex lock; // of all below but `stop` and `thread`
    std::condition_variable wake;
    std::deque<Search> searches;
    std::vector<Reading> readings; // the latest last
    int round = 0;
    bool isEnding = false;
    std::atomic<bool> stop = false; // what is at work is of no use any more
    int lastNumber = 0;
    bool isStarted = false;
    os::Thread thread;
};

void SongFinder::Work::Run(void* work)
{
    os::SetThreadPriority(os::CurrentThreadId(), -1); // tags wait for whoever plays and draws
    static_cast<Work*>(work)->Loop();
}

void SongFinder::Work::Loop()
{
    std::unique_lock hold(lock);
    for (;;) {
        wake.wait(hold, [this] { return isEnding || !searches.empty() || !readings.empty(); });
        if (isEnding)
            return;
        stop = false;
        const int forRound = round;
        if (!searches.empty()) {
            const Search search = std::move(searches.front());
            searches.pop_front();
            hold.unlock();
            RunSearch(search, forRound);
        } else {
            Reading& reading = readings.back();
            const Song song = reading.songs[reading.done++];
            if (reading.done == reading.songs.size())
                readings.pop_back();
            hold.unlock();
            RunReading(song, forRound);
        }
        hold.lock();
    }
}

template <class Send>
void SongFinder::Work::Post(int forRound, Send send)
{
    const auto deliver = [this, forRound, send] {
        bool isWanted = false;
        {
            const std::lock_guard hold(lock);
            isWanted = forRound == round;
        }
        if (isWanted)
            send();
    };
    QMetaObject::invokeMethod(&finder, deliver, Qt::QueuedConnection);
}

void SongFinder::Work::RunSearch(const Search& search, int forRound)
{
    SongSearch found(stop);
    for (const QUrl& url : search.urls) {
        if (stop)
            return;
        found.Add(url);
    }
    Post(forRound, [this, number = search.number, songs = found.Songs(), faults = found.Faults()] {
        emit finder.Found(number, songs, faults);
    });
}

void SongFinder::Work::RunReading(const Song& song, int forRound)
{
    const Song read = WithTags(song, stop);
    Post(forRound, [this, read] { emit finder.Read(read); });
}

void SongFinder::Work::Add(const Search* search, const QList<Song>* songs)
{
    {
        const std::lock_guard hold(lock);
        if (search)
            searches.push_back(*search);
        if (songs && !songs->isEmpty())
            readings.push_back({ *songs });
    }
    // Without a thread to be had, the next call tries again.
    isStarted = isStarted || thread.Start(Run, this) == 0;
    wake.notify_one();
}

void SongFinder::Work::Clear(bool forEver)
{
    const std::lock_guard hold(lock);
    searches.clear();
    readings.clear();
    ++round;
    stop = true;
    isEnding = forEver;
}

SongFinder::SongFinder()
    : m_work(std::make_unique<Work>(*this))
{
}

SongFinder::~SongFinder()
{
    m_work->Clear(true);
    m_work->wake.notify_one();
    m_work->thread.Join();
}

int SongFinder::Find(const QList<QUrl>& urls)
{
    const Work::Search search { ++m_work->lastNumber, urls };
    m_work->Add(&search, nullptr);
    return search.number;
}

void SongFinder::ReadTags(const QList<Song>& songs)
{
    m_work->Add(nullptr, &songs);
}

void SongFinder::Cancel()
{
    m_work->Clear(false);
}

}
