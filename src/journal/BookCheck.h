#pragma once

#include "session/db/Database.h"

#include <QString>
#include <QStringList>

// The book check: what a tax inspector would want to know before trusting a printed
// book. It reads the book and its journal and reports, in plain sentences, anything
// the journal does not explain or the book's own rules forbid.
namespace knjige::bookcheck
{

struct Request {
    int tip = 0;
    qint16 company = 0;
    qint16 year = 0;
    qint32 brojProd = 0; // trade books: one sales point, 0 for all
};

struct Report {
    enum class Status { Clean, Findings, Unreadable };
    Status status = Status::Clean;
    QStringList findings; // one sentence each
    QString text; // the whole report, headed and sectioned
};

Report check(Database& db, const Request& request);

} // namespace knjige::bookcheck
