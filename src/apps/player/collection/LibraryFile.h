#pragma once

#include "apps/player/collection/SqliteDatabase.h"

#include <QString>

#include <string>

namespace pxvis::player {

// Opens the library's file in any case: the file itself, whole and with all tables, or else, with a
// warning for the user, a new one beside the damaged one, or one in memory. What can be read of a
// file that is put aside or can't be written is in the new one.
class LibraryFile
{
public:
    static constexpr int version = 1; // of the tables, higher for those of a later program
    static constexpr int mostDamagedFiles = 1000; // kept beside it
    static constexpr int checkMilliseconds = 3000; // what takes longer counts as whole
    static constexpr int rescueMilliseconds = 10'000;

    explicit LibraryFile(std::string path);

    SqliteDatabase& Database() { return m_database; }

    bool IsInMemory() const { return m_isInMemory; }

    const QString& Warning() const { return m_warning; }

private:
    enum class State
    {
        Whole,
        Damaged,
        Newer,
        Foreign, // another program's
        Unwritable,
        Unusable // no file, or nothing can be said about it
    };

    State Open();
    State Check();
    State CheckTables();
    State CreateTables();
    State CheckWriting();
    void Repair();
    std::string PutAside() const;
    void UseMemory(State state);
    void Rescue(const std::string& path);

    std::string m_path;
    SqliteDatabase m_database;
    bool m_isInMemory = false;
    QString m_warning;
};

}
