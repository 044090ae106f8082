#include "demo/DemoSources.h"

#include "books/Schema.h"
#include "demo/DemoBooks.h"
#include "demo/DemoData.h"
#include "session/db/Database.h"

#include <QDate>
#include <QFile>

static void initSourcesResource()
{
    Q_INIT_RESOURCE(sources);
}

namespace knjige::demo
{
namespace
{

using demo::Rng;

QVariant cash(Money m)
{
    return QVariant::fromValue(m);
}

class Writer
{
public:
    explicit Writer(db::Database& db)
        : m_db(db)
    {
    }

    bool row(const QString& table, const db::RowChange::Values& values)
    {
        if (m_db.writeRow({ db::RowChange::Kind::Insert, table, values, {} }))
            return true;
        m_error = table + QStringLiteral(": ") + m_db.errorDescription();
        return false;
    }
    QString error() const { return m_error; }

private:
    db::Database& m_db;
    QString m_error;
};

// The bank statement of a day ("Izvod 2026-045") or the next cash desk slip.
QString paymentDocument(const QDate& d, bool blagajna, int& brojBlagajne)
{
    if (blagajna)
        return QStringLiteral("BL-%1/%2").arg(++brojBlagajne).arg(d.year() % 100, 2, 10, QLatin1Char('0'));
    return QStringLiteral("Izvod %1-%2").arg(d.year()).arg(d.dayOfYear(), 3, 10, QLatin1Char('0'));
}

struct DocumentCounters {
    int dgp[3] = { 0, 0, 0 };
    int vp = 0;
    int kuf = 0;
    int mat = 0;
    int pos = 0;
    int blagajna = 0;
};

class SourceDays
{
public:
    SourceDays(Writer& w, int year)
        : m_w(w)
        , m_year(year)
        , m_rng(0x5100 + quint64(year))
    {
    }

    bool day(const QDate& d) { return takings(d) && wholesale(d) && incoming(d) && dispatch(d); }

private:
    db::RowChange::Values head() const
    {
        return { { QStringLiteral("BrojPoduzeca"), demo::BrojPoduzeca }, { QStringLiteral("GodinaKnj"), m_year } };
    }

    bool invoice(const QDate& d, const QString& vrsta, int orgJed, int broj, QVariant kupac, Money iznos)
    {
        db::RowChange::Values v = head();
        v << std::pair { QStringLiteral("Vrsta"), QVariant(vrsta) }
          << std::pair { QStringLiteral("OrgJed"), QVariant(orgJed) }
          << std::pair { QStringLiteral("BrojIfakt"), QVariant(broj) }
          << std::pair { QStringLiteral("DatumIfakt"), QVariant(d) } << std::pair { QStringLiteral("SifKomit"), kupac }
          << std::pair { QStringLiteral("IznosIfakt"), cash(iznos) };
        return m_w.row(QStringLiteral("Ifakture"), v);
    }

    // Payments after the invoice, in one or two parts, within the year only.
    bool payments(const QString& table, const QString& brojKolona, const QString& vrsta, int broj, const QDate& d,
        Money iznos, int chanceOfCash)
    {
        const QDate paid = d.addDays(m_rng.between(2, 22));
        if (paid.year() != m_year || !m_rng.chance(85))
            return true;
        const bool split = m_rng.chance(30);
        const Money first = split ? iznos.dividedBy(2).rounded(2) : iznos;
        const QVector<std::pair<QDate, Money>> parts = split
            ? QVector<std::pair<QDate, Money>> { { paid, first }, { paid.addDays(m_rng.between(3, 9)), iznos - first } }
            : QVector<std::pair<QDate, Money>> { { paid, first } };
        for (const auto& [datum, dio] : parts) {
            if (datum.year() != m_year)
                continue;
            const QString dokument = paymentDocument(datum, m_rng.chance(chanceOfCash), m_n.blagajna);
            const db::RowChange::Values v
                = { { QStringLiteral("BrojPoduzeca"), demo::BrojPoduzeca }, { brojKolona, broj },
                      { QStringLiteral("GodinaKnj"), m_year }, { QStringLiteral("OrgJed"), demo::OrgJed },
                      { QStringLiteral("Vrsta"), vrsta }, { QStringLiteral("Datum"), datum },
                      { QStringLiteral("BrojDokumenta"), dokument }, { QStringLiteral("Iznos"), cash(dio) } };
            if (!m_w.row(table, v))
                return false;
        }
        return true;
    }

    bool takings(const QDate& d)
    {
        if (d.dayOfWeek() == Qt::Sunday)
            return true;
        for (int orgJed : { demo::OrgJed, demo::OrgJedDruga })
            if (!invoice(d, QStringLiteral("DGP"), orgJed, ++m_n.dgp[orgJed], {}, m_rng.amount(400, 2600)))
                return false;
        return true;
    }

    bool wholesale(const QDate& d)
    {
        if (d.dayOfWeek() != Qt::Monday && d.dayOfWeek() != Qt::Wednesday && d.dayOfWeek() != Qt::Friday)
            return true;
        const QVector<qint32> kupci = demo::customerCodes();
        const int broj = ++m_n.vp;
        const Money iznos = m_rng.amount(300, 6000);
        return invoice(d, QStringLiteral("VP"), demo::OrgJed, broj, kupci[broj % kupci.size()], iznos)
            && payments(
                QStringLiteral("IFAKTUplate"), QStringLiteral("BrojIFAKT"), QStringLiteral("VP"), broj, d, iznos, 0);
    }

    bool incomingInvoice(const QDate& d, qint32 supplier)
    {
        const int broj = ++m_n.kuf;
        const Money iznos = m_rng.amount(150, 3500);
        db::RowChange::Values v = head();
        v << std::pair { QStringLiteral("Vrsta"), QVariant(QStringLiteral("KUF")) }
          << std::pair { QStringLiteral("OrgJed"), QVariant(demo::OrgJed) }
          << std::pair { QStringLiteral("BrojKUFa"), QVariant(broj) }
          << std::pair { QStringLiteral("SifKomit"), QVariant(supplier) }
          << std::pair { QStringLiteral("DatFakture"), QVariant(d) }
          << std::pair { QStringLiteral("IznosFakture"), cash(iznos) };
        return m_w.row(QStringLiteral("KUF"), v)
            && payments(
                QStringLiteral("KUFUplate"), QStringLiteral("BrojKUFa"), QStringLiteral("KUF"), broj, d, iznos, 25);
    }

    bool incoming(const QDate& d)
    {
        if (d.dayOfYear() % 3 == 0 && !incomingInvoice(d, demo::CompensationSupplier))
            return false;
        const QVector<qint32> ostali = demo::supplierCodes().mid(1);
        if (m_rng.chance(60) && !incomingInvoice(d, ostali[m_rng.between(0, int(ostali.size()) - 1)]))
            return false;
        return true;
    }

    bool dispatch(const QDate& d)
    {
        const bool mat = d.dayOfYear() % 2 == 0;
        const int broj = mat ? ++m_n.mat : ++m_n.pos;
        const qint32 mjesto = (d.dayOfYear() / 2) % 2 ? demo::Maloprodaja2 : demo::Maloprodaja1;
        const qint32 prima = broj % 5 == 0 ? 102 : demo::Primatelj;
        db::RowChange::Values v = head();
        v << std::pair { QStringLiteral("BrojSklad"), QVariant(mjesto) };
        if (mat) {
            const Money iznos = m_rng.amount(100, 900);
            v << std::pair { QStringLiteral("BrojOtprem"), QVariant(broj) }
              << std::pair { QStringLiteral("ŠifraKom"), QVariant(prima) }
              << std::pair { QStringLiteral("DatumOtprem"), QVariant(d) }
              << std::pair { QStringLiteral("IznosOtprem"), cash(iznos) }
              << std::pair { QStringLiteral("UkPorez"), cash((iznos * 17).dividedBy(100).rounded(2)) };
            return m_w.row(QStringLiteral("dbo.MOtpremInt"), v);
        }
        v << std::pair { QStringLiteral("BrojPovr"), QVariant(broj) }
          << std::pair { QStringLiteral("ŠifraKom"), QVariant(prima) }
          << std::pair { QStringLiteral("DatumPovr"), QVariant(d) }
          << std::pair { QStringLiteral("IznosPovr"), cash(m_rng.amount(50, 400)) };
        return m_w.row(QStringLiteral("dbo.RIntOtprem"), v);
    }

    Writer& m_w;
    int m_year;
    Rng m_rng;
    DocumentCounters m_n;
};

bool writeRights(Writer& w, const QStringList& operators)
{
    const QVector<std::pair<QString, qint32>> prava
        = { { QStringLiteral("SKLADIŠTE"), demo::Maloprodaja1 }, { QStringLiteral("MALOPROBJEKT"), demo::Maloprodaja1 },
              { QStringLiteral("MALOPROBJEKT"), demo::Maloprodaja2 } };
    QStringList done;
    for (const QString& op : operators) {
        const QString operater = op.left(10);
        if (operater.isEmpty() || done.contains(operater))
            continue;
        done << operater;
        for (const auto& [program, broj] : prava)
            if (!w.row(QStringLiteral("PRAVA"),
                    { { QStringLiteral("OPERATER"), operater }, { QStringLiteral("PROGRAM"), program },
                        { QStringLiteral("PRAVO"), QString::number(broj) } }))
                return false;
    }
    return true;
}

} // namespace

QStringList sourceStatements()
{
    initSourcesResource();
    QFile file(QStringLiteral(":/knjige/sql/sources.sql"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return books::scriptStatements(QString::fromUtf8(file.readAll()));
}

bool createSourceTables(db::Database& db, QString* error)
{
    return books::runScript(db, sourceStatements(), error);
}

bool fillDemoSources(db::Database& db, int year, const QStringList& operators, QString* error)
{
    db::TransactionGuard transaction(db);
    Writer w(db);
    SourceDays days(w, year);
    bool ok = transaction.isActive() && writeRights(w, operators);
    for (QDate d(year, 1, 1); ok && d.year() == year; d = d.addDays(1))
        ok = days.day(d);
    if (ok && transaction.commit())
        return true;
    if (error)
        *error = w.error().isEmpty() ? db.errorDescription() : w.error();
    return false;
}

} // namespace knjige::demo
