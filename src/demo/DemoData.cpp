#include "demo/DemoData.h"

#include "demo/DemoBooks.h"
#include "session/Clock.h"
#include "session/db/Database.h"

#include <QHash>
#include <QStringList>

namespace knjige::demo
{
namespace
{

QString jib(qint32 code)
{
    return QStringLiteral("42%1").arg(qlonglong(qint64(code) * 7919 % 100000000000LL), 11, 10, QLatin1Char('0'));
}

} // namespace

QString nazivFirme()
{
    return QStringLiteral("Miljacka-Komerc d.o.o.");
}

const QVector<DemoPartner>& partners()
{
    static const QVector<DemoPartner> list = [] {
        struct Raw {
            qint32 code;
            const char *name, *address, *city;
        };
        static const Raw raw[] = {
            { 101, "Tehno-Mont d.o.o.", "Džemala Bijedića 155", "71000 Sarajevo" },
            { 102, "Neretva-Trans d.o.o.", "Bišćevića 22", "88000 Mostar" },
            { 103, "Una-Prom d.o.o.", "Bosanska 41", "77000 Bihać" },
            { 104, "Vranica Market d.o.o.", "Bosanska 88", "72270 Travnik" },
            { 105, "Drina Commerce d.o.o.", "Zaima Imamovića 14", "73000 Goražde" },
            { 106, "Građevinar Kakanj d.o.o.", "Alije Izetbegovića 9", "72240 Kakanj" },
            { 107, "Hotel Bistrik d.o.o.", "Bistrik 7", "71000 Sarajevo" },
            { 108, "Apoteka Zdravlje d.o.o.", "Maršala Tita 31", "75000 Tuzla" },
            { 201, "Mlin Visoko d.d.", "Branilaca 44", "71300 Visoko" },
            { 202, "Elektro-Servis Ilidža d.o.o.", "Butmirska cesta 18", "71210 Ilidža" },
            { 203, "Drvoprerada Zenica d.o.o.", "Zmaja od Bosne 3", "72000 Zenica" },
            { 204, "Krajina Pak d.o.o.", "Kralja Petra I 60", "78000 Banja Luka" },
            { 205, "Tuzla-Kem d.o.o.", "Slatinska 120", "75000 Tuzla" },
            { 206, "Sana Papir d.o.o.", "Sanska 5", "79260 Sanski Most" },
            { 301, "Elektrodistribucija Sarajevo", "Vilsonovo šetalište 15", "71000 Sarajevo" },
            { 302, "Telekom usluge d.d.", "Obala Kulina bana 8", "71000 Sarajevo" },
            { 501, "Maloprodaja 1 Ilidža", "Rustempašina 21", "71210 Ilidža" },
            { 502, "Maloprodaja 2 Grbavica", "Zagrebačka 46", "71000 Sarajevo" },
        };
        QVector<DemoPartner> out;
        for (const Raw& r : raw) {
            const QString place = QString::fromUtf8(r.city);
            out.append({ r.code, QString::fromUtf8(r.name), QString::fromUtf8(r.address), place.section(u' ', 0, 0),
                place.section(u' ', 1), jib(r.code) });
        }
        return out;
    }();
    return list;
}

QVector<qint32> customerCodes()
{
    return { 101, 102, 103, 104, 105, 106, 107, 108 };
}
QVector<qint32> supplierCodes()
{
    return { 201, 202, 203, 204, 205, 206 };
}

QString partnerName(qint32 code)
{
    for (const DemoPartner& p : partners())
        if (p.code == code)
            return p.name;
    return {};
}

namespace
{

using demo::Draft;

// Writes only the columns the table has: the host tables differ between
// installations beyond the few columns the books read.
class Writer
{
public:
    explicit Writer(db::Database& db)
        : m_db(db)
    {
    }

    bool insert(const QString& table, const db::RowChange::Values& values, bool onlyKnownColumns = false)
    {
        db::RowChange change { db::RowChange::Kind::Insert, table, {}, {} };
        if (onlyKnownColumns) {
            const QStringList known = columns(table);
            for (const auto& v : values)
                if (known.contains(v.first, Qt::CaseInsensitive))
                    change.values.append(v);
        } else {
            change.values = values;
        }
        if (m_db.writeRow(change))
            return true;
        m_error = QStringLiteral("%1: %2").arg(table, m_db.errorDescription());
        return false;
    }

    // Numbers the rows 1, 2, ... in date order and writes them with their key.
    bool book(const QString& table, int year, QVector<Draft> rows, qint32 brojProd = 0)
    {
        demo::sortByDate(rows);
        for (int i = 0; i < rows.size(); ++i) {
            db::RowChange::Values v { { QStringLiteral("BrojPoduzeca"), demo::BrojPoduzeca } };
            if (brojProd)
                v.append({ QStringLiteral("BrojProd"), brojProd });
            v.append({ QStringLiteral("RBroj"), i + 1 });
            v.append({ QStringLiteral("Datum"), rows[i].datum });
            v.append({ QStringLiteral("GodinaKnj"), year });
            v.append(rows[i].values);
            if (!insert(table, v))
                return false;
        }
        return true;
    }

    QString error() const { return m_error; }

private:
    QStringList columns(const QString& table)
    {
        if (m_columns.contains(table))
            return m_columns.value(table);
        QStringList names;
        db::ResultSet rs;
        if (m_db.open(QStringLiteral("SELECT * FROM %1 WHERE 1=0").arg(table), rs))
            for (const db::Field& f : rs.fields())
                names << f.name;
        m_columns.insert(table, names);
        return names;
    }

    db::Database& m_db;
    QHash<QString, QStringList> m_columns;
    QString m_error;
};

bool writeCompany(Writer& w)
{
    return w.insert(QStringLiteral("dbo.CONFIG"),
        { { QStringLiteral("BrojPoduzeca"), demo::BrojPoduzeca }, { QStringLiteral("NazivFirme"), demo::nazivFirme() },
            { QStringLiteral("Adresa"), QStringLiteral("Zmaja od Bosne 12") },
            { QStringLiteral("PostBroj"), QStringLiteral("71000") },
            { QStringLiteral("Mjesto"), QStringLiteral("Sarajevo") },
            { QStringLiteral("IdBroj"), QStringLiteral("4201234560003") },
            { QStringLiteral("PDVBroj"), QStringLiteral("201234560003") },
            { QStringLiteral("Telefon"), QStringLiteral("033 555 120") },
            { QStringLiteral("ZiroRacun"), QStringLiteral("1610000012345678") },
            { QStringLiteral("Djelatnost"), QStringLiteral("Trgovina na malo i usluge") },
            { QStringLiteral("Vlasnik"), QStringLiteral("Amra Hodžić") } },
        true);
}

bool writePartners(Writer& w)
{
    for (const demo::DemoPartner& p : demo::partners()) {
        if (!w.insert(QStringLiteral("dbo.Komitent"),
                { { QStringLiteral("SifKomit"), p.code }, { QStringLiteral("ImeKomit1"), p.name },
                    { QStringLiteral("Adresa"), p.address }, { QStringLiteral("PostBroj"), p.postCode },
                    { QStringLiteral("Mjesto"), p.city }, { QStringLiteral("IdBroj"), p.idNumber },
                    { QStringLiteral("PDVBroj"), p.idNumber.mid(1) } },
                true))
            return false;
    }
    return true;
}

bool writeBooks(Writer& w, int year)
{
    QVector<Draft> fbih = prihRashFBiH(year);
    sortByDate(fbih);
    const QVector<Draft> evid = evidPotObv(fbih, year);
    const QString assets = QStringLiteral("dbo.KnjPopListaDugImovFBiH");
    return w.book(QStringLiteral("dbo.KnjPrihRashFBiH"), year, fbih)
        && w.book(QStringLiteral("dbo.KnjEvidPotrIObvFBiH"), year, evid)
        && w.book(QStringLiteral("dbo.KnjPrometaFBiH"), year, prometa(year))
        && w.book(QStringLiteral("dbo.KnjPrihodaRS"), year, prihodaRS(year))
        && w.book(QStringLiteral("dbo.KnjRashodaRS"), year, rashodaRS(year))
        && w.book(QStringLiteral("dbo.KnjPrihRashDB"), year, prihRashDB(year))
        && w.book(assets, year - 1, popisnaLista(year - 1, true)) && w.book(assets, year, popisnaLista(year, false))
        && w.book(QStringLiteral("dbo.TrgKnjUsluga"), year, trgUsluga(year, Maloprodaja1), Maloprodaja1)
        && w.book(QStringLiteral("dbo.TrgKnjUsluga"), year, trgUsluga(year, Maloprodaja2), Maloprodaja2)
        && w.book(QStringLiteral("dbo.TrgKnjKomisiona"), year, trgKomisiona(year, Maloprodaja1), Maloprodaja1)
        && w.book(QStringLiteral("dbo.TrgKnjKomisiona"), year, trgKomisiona(year, Maloprodaja2), Maloprodaja2)
        && w.book(QStringLiteral("dbo.KnjPrihRashFBiH"), year + 1, prihRashFBiHNextYear(year))
        && w.book(QStringLiteral("dbo.KnjPrometaFBiH"), year + 1, prometaNextYear(year));
}

} // namespace

bool fillDemoData(db::Database& db, int year, QString* error)
{
    db::TransactionGuard transaction(db);
    Writer w(db);
    const bool ok = transaction.isActive() && writeCompany(w) && writePartners(w) && writeBooks(w, year);
    if (ok && transaction.commit())
        return true;
    if (error)
        *error = w.error().isEmpty() ? db.errorDescription() : w.error();
    return false;
}

bool fillDemoData(db::Database& db, QString* error)
{
    return fillDemoData(db, clock::today().year(), error);
}

} // namespace knjige::demo
