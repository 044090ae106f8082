#pragma once

namespace knjige::db
{

// SQLite keeps its file locks as POSIX record locks, which belong to the process: the
// moment any part of the process closes any descriptor of the database, its -wal or
// its -shm (a file chooser sniffing the folder, an icon provider), every lock SQLite
// holds on that file is gone, and another program may delete the write-ahead log under
// a connection that still writes into it. This makes SQLite's locks belong to a file
// description of its own instead, which nobody else can close. Called before the first
// connection is opened; it does nothing where the platform has no such locks, and
// nothing when SQLite already holds locks in this process (they could not be moved).
void keepSqliteLocksThroughForeignCloses();

} // namespace knjige::db
