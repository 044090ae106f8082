#pragma once

#include "session/Failure.h"
#include "session/db/Database.h"
#include "session/db/ResultSet.h"

#include <QString>

namespace knjige
{

// What every window of the component works with: how to reach the database, which
// company and year are kept, who the operator is. One per process; the last value
// written by any book object wins.
struct Session {
    QString ConnString;
    qint16 RadnaGodina = 0;
    qint16 BrojPoduzeca = 0;
    QString NivoPristupa; // operator access level, a one-digit text
    QString ImeOperatera;
    QString NazivFirme; // from the company's configuration row

    // The company's configuration row as last read; empty until read.
    db::ResultSet Konfiguracija;

    // The one data-access helper, created on first use and kept for the process. It
    // follows ConnString: a changed string reconnects on the next call.
    db::Database& db();
    // Closes the helper's connection without first making one: after a server that did
    // not answer, closing must not wait for it a second time.
    void closeDb();

    // Back to the empty state (tests; a host that closes every book).
    void reset();
};

Session& session();

// The shared routines every window calls.
namespace DefVarijabli
{

// Reads the company's configuration row into the session and sets the company name.
// What went wrong (the text size not set, the row not read: the name stays) is
// returned for the caller to tell.
Notices CitajKonfiguraciju(bool sveKolone);
QString ImeOperatera();

} // namespace DefVarijabli

} // namespace knjige
