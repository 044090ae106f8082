#pragma once

#include <QString>

namespace knjige::db
{

// The embedded database files this process holds open, so that no output (an export,
// a printout, a saved text) is ever written over one of them.

// Called by the embedded backend as it opens and closes a file.
void databaseFileOpened(const QString& path);
void databaseFileClosed(const QString& path);

// True when writing `path` would replace a database this process holds open: the file
// itself under any name (a link, "./a.db"), or its -wal, -shm or -journal beside it,
// whether these exist yet or not.
bool isOpenDatabaseFile(const QString& path);

// The message that refuses such a path, in the program's words.
QString openDatabaseRefusal(const QString& path);

} // namespace knjige::db
