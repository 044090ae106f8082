#pragma once

#include "journal/Journal.h"
#include "session/db/Database.h"

#include <QString>
#include <QStringList>

// The book check: what a tax inspector would want to know before trusting a printed
// book. It reads the book and its journal and reports, in plain sentences, anything
// the journal does not explain or the book's own rules forbid.
namespace knjige::journal::bookcheck
{

// The book to check; a trade book's brojProd is one sales point, 0 for all.
using Request = journal::Scope;

struct Report {
    enum class Status { Clean, Findings, Unreadable };
    Status status = Status::Clean;
    QStringList findings; // one sentence each; of a long section, the ones shown
    qsizetype count = 0; // all findings
    QString text; // the whole report, headed and sectioned
};

Report check(db::Database& db, const Request& request);

} // namespace knjige::journal::bookcheck
