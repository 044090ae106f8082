#include "bench_book.h"

#include "books/BookKind.h"
#include "books/Schema.h"
#include "browser/BrowserRules.h"
#include "session/Session.h"
#include "session/TSqlTranslator.h"

#include <QDate>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <cstdio>
#include <memory>

namespace knjige::bench {
namespace {

void fill(const QString& path)
{
    const QString name = QStringLiteral("bench_fill");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.open();
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,"
                                 "Iznos,IznosPDV) VALUES (1,?,?,?,?,?,?,?,?)"));
        const int kinds[] = {11, 12, 13, 16, 17, 18, 19};
        // Descriptions with the letters the collation places: Č, Ć, Đ, Š, Ž.
        const QString words[] = {QStringLiteral("Šećer"), QStringLiteral("Čelik"), QStringLiteral("cement"),
                                 QStringLiteral("Ćevapi"), QStringLiteral("Đurđa"), QStringLiteral("Žito"),
                                 QStringLiteral("Sol"), QStringLiteral("zebra"), QStringLiteral("Dalmacija")};
        for (int i = 1; i <= kEntries; ++i) {
            const QDate d = QDate(kYear, 1, 1).addDays(i % 365);
            const double iznos = double((i * 7919) % 1000000) / 100.0;
            q.addBindValue(i);
            q.addBindValue(d.toString(Qt::ISODate));
            q.addBindValue(kYear);
            q.addBindValue(QStringLiteral("R-%1").arg((i * 7) % kEntries));
            q.addBindValue(words[(i * 13) % 9] + QStringLiteral(" stavka %1").arg((i * 31) % kEntries));
            q.addBindValue(kinds[i % 7]);
            q.addBindValue(iznos);
            q.addBindValue(iznos * 17.0 / 117.0);
            if (!q.exec())
                std::fprintf(stderr, "fill: %s\n", qPrintable(q.lastError().text()));
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(name);
}

QString translated(const QString& tsql)
{
    tsql::Catalog catalog;
    for (const QString& statement : schemaStatements())
        if (auto table = tsql::parseCreateTable(statement))
            catalog.add(*table);
    return tsql::translateStatement(tsql, catalog).sql;
}

} // namespace

BookFile& book()
{
    static std::unique_ptr<BookFile> file = [] {
        auto f = std::make_unique<BookFile>();
        f->path = f->dir.filePath(QStringLiteral("bench.db"));
        QString error;
        if (!createEmbeddedDatabase(f->path, &error))
            std::fprintf(stderr, "schema: %s\n", qPrintable(error));
        fill(f->path);
        f->tsql = findBook(Knjiga::PrihRashFBiH)->selectSql
            + browser::openingWhere(browser::periodStart(kYear), kYear, 1) + browser::orderBy();
        f->sqlite = translated(f->tsql);
        Session& s = session();
        s.ConnString = f->path;
        s.BrojPoduzeca = 1;
        s.RadnaGodina = kYear;
        s.NivoPristupa = QStringLiteral("0");
        s.ImeOperatera = QStringLiteral("Bench");
        return f;
    }();
    return *file;
}

} // namespace knjige::bench
