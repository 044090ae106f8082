#include "generate/Generation.h"

#include "books/BookKind.h"
#include "books/Schema.h"
#include "journal/PeriodLock.h"
#include "session/Dates.h"
#include "session/Interaction.h"
#include "session/Money.h"
#include "session/Session.h"
#include "session/db/Database.h"

#include <QHash>
#include <QSet>
#include <QVector>
#include <limits>
#include <optional>

namespace knjige::generate
{
namespace
{

const QString kKnjiga = QStringLiteral("dbo.KnjPrihRashDB");

const QVector<OpisVrste>& opisi()
{
    static const QVector<OpisVrste> all = [] {
        const QString kif = QStringLiteral("Server i baza izl.računa");
        const QString kuf = QStringLiteral("Server i baza ul.računa");
        const QString pos = QStringLiteral("Server i baza POSa");
        const QString otpremnice
            = QStringLiteral("Upišite opseg datuma int.otpremnica za koje želite generirati podatke:");
        const QString kufReadError = QStringLiteral("Greška u čitanju podatka iz KUF-a!");
        const QString nemaKuf = QStringLiteral("Ne postoje podaci u KUF-u za zadani filter!");
        const QString upitKuf = QStringLiteral(
            " zapisa u ulaznim računima za prijenos u knjigu prihoda i rashoda DB. Želite li ih generirati?");
        const QString dispatchReadError = QStringLiteral("Greška u čitanju podatka iz int.otpremnica!");
        const QString nemaOtp = QStringLiteral("Ne postoje podaci u internim otpremnicama za zadani filter!");
        const QString upitOtp = QStringLiteral(
            " zapisa u internim otpremnicama za prijenos u knjigu prihoda i rashoda DB. Želite li ih generirati?");
        QVector<OpisVrste> v(BrojVrsta);
        v[DgpRacuni] = { QStringLiteral("Generiranje prihoda iz DGP izlaznih računa"), kif,
            // This kind has no prompt of its own; the label keeps its design text.
            QStringLiteral("Upišite opseg datuma DGP računa za koje želite generirati podatke:"), {}, {}, {},
            QStringLiteral("KIFSQLServera"), QStringLiteral("KIFSQLBaze"),
            QStringLiteral("Greška u čitanju podatka iz KIF-a!"),
            QStringLiteral("Ne postoje podaci u KIF-u za zadani filter!"),
            QStringLiteral(" zapisa u DGP knjizi za prijenos u knjigu prihoda i rashoda DB. Želite li ih "
                           "generirati?") };
        v[UplateIzlaznih] = { QStringLiteral("Generiranje prihoda iz uplata izlaznih računa"), kif,
            QStringLiteral("Upišite opseg uplata računa za koje želite generirati podatke:"), {}, {}, {},
            QStringLiteral("KIFSQLServera"), QStringLiteral("KIFSQLBaze"),
            QStringLiteral("Greška u čitanju podatka iz uplata KIF-a!"),
            QStringLiteral("Ne postoje podaci u uplatama KIF-u za zadani filter!"),
            QStringLiteral(" zapisa u uplatama KIF-a za prijenos u knjigu prihoda i rashoda DB. Želite "
                           "li ih generirati?") };
        v[UlazniRacuni] = { QStringLiteral("Generiranje rashoda iz ulaznih računa za dobavljača"), kuf,
            QStringLiteral("Upišite opseg datuma ulaznih računa za koje želite generirati podatke:"),
            QStringLiteral("Uklj.dobavljača:"), {}, {}, QStringLiteral("KUFSQLServera"), QStringLiteral("KUFSQLBaze"),
            kufReadError, nemaKuf, upitKuf };
        v[UplateUlaznih]
            = { QStringLiteral("Generiranje rashoda iz uplata ulaznih računa uz isključenje dobavljača"), kuf,
                  QStringLiteral("Upišite opseg datuma uplata ulaznih računa za koje želite generirati "
                                 "podatke:"),
                  QStringLiteral("Isklj.dobavljača:"), {}, {}, QStringLiteral("KUFSQLServera"),
                  QStringLiteral("KUFSQLBaze"), kufReadError, nemaKuf, upitKuf };
        v[MatOtpremnice] = { QStringLiteral("Generiranje rashoda iz internih otpremnica MAT-velepr."),
            QStringLiteral("Server i baza MAT"), otpremnice, {}, QStringLiteral("Skladište:"),
            QStringLiteral("Kupac (prima):"), QStringLiteral("MatSQLServera"), QStringLiteral("MatSQLBaze"),
            dispatchReadError, nemaOtp, upitOtp };
        v[PosOtpremnice] = { QStringLiteral("Generiranje rashoda iz internih otpremnica POS-malopr."), pos, otpremnice,
            {}, QStringLiteral("Maloprodaja:"), QStringLiteral("Tko prima:"), QStringLiteral("POSSQLServera"),
            QStringLiteral("POSSQLBaze"), dispatchReadError, nemaOtp, upitOtp };
        v[PosPovrat] = v[PosOtpremnice];
        v[PosPovrat].naslov = QStringLiteral("Generiranje rashoda u minus iz internih otpremnica POS-malopr.-povrat");
        return v;
    }();
    return all;
}

std::optional<qint32> broj(const QString& text)
{
    bool ok = false;
    const qint32 n = text.trimmed().toInt(&ok);
    return ok ? std::optional<qint32>(n) : std::nullopt;
}

QString brojTekst(const QString& text)
{
    return QString::number(broj(text).value_or(0));
}

QString datum(const QDate& d)
{
    return dates::sqlLiteral(d);
}

// A text that goes between single quotes of a SQL text.
QString navodnici(const QString& text)
{
    QString t = text;
    return t.replace(u'\'', QStringLiteral("''"));
}

QString uvjetMjesta(const Parametri& p)
{
    if (p.shop.trimmed().isEmpty())
        return uvjetPrava(p.vrsta, p.operater);
    return QStringLiteral(" AND K.BrojSklad=") + brojTekst(p.shop);
}

QString upitOtpremnica(const Parametri& p)
{
    const QString firma = QString::number(p.brojPoduzeca);
    const QString prima = brojTekst(p.prima);
    const QString godina = QString::number(p.godina);
    if (p.vrsta == MatOtpremnice)
        return QStringLiteral("SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumOtprem as Datum,left('M.Int.otp. '+rtrim(cast("
                              "K.ŠifraKom as nvarchar(15))),20) as Isprava,left(cast(K.BrojSklad as nvarchar(10))+'-'+"
                              "cast(K.BrojOtprem as nvarchar(15))+'/'+cast(K.GodinaKnj as nvarchar(5)),30) as Opis,"
                              "K.IznosOtprem+K.UkPorez as Iznos,K.UkPorez FROM dbo.MOtpremInt K ")
            + QStringLiteral(" WHERE K.BrojPoduzeca=") + firma + uvjetMjesta(p) + QStringLiteral(" AND K.ŠifraKom=")
            + prima + QStringLiteral(" AND K.DatumOtprem >= '") + datum(p.od) + QStringLiteral("' AND K.DatumOtprem<='")
            + datum(p.doDatuma) + QStringLiteral("' AND K.GodinaKnj=") + godina
            + QStringLiteral(" ORDER BY K.DatumOtprem,K.BrojSklad");
    return QStringLiteral("SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumPovr as Datum,left('P.Int.otp. '+rtrim(cast("
                          "K.ŠifraKom as nvarchar(15))),20) as Isprava,left(cast(K.BrojSklad as nvarchar(10))+'-'+"
                          "cast(K.BrojPovr as nvarchar(15))+'/'+cast(K.GodinaKnj as nvarchar(5)),30) as Opis,"
                          "K.IznosPovr as Iznos FROM dbo.RIntOtprem K ")
        + QStringLiteral(" WHERE K.BrojPoduzeca=") + firma + uvjetMjesta(p) + QStringLiteral(" AND K.ŠifraKom=") + prima
        + QStringLiteral(" AND K.DatumPovr >= '") + datum(p.od) + QStringLiteral("' AND K.DatumPovr<='")
        + datum(p.doDatuma) + QStringLiteral("' AND K.GodinaKnj=") + godina
        + QStringLiteral(" ORDER BY K.DatumPovr,K.BrojSklad");
}

QString invoiceQuery(const Parametri& p)
{
    const QString firma = QString::number(p.brojPoduzeca);
    const QString orgJed = brojTekst(p.orgJed);
    const QString od = datum(p.od);
    const QString doD = datum(p.doDatuma);
    const QString godina = QString::number(p.godina);
    const QString supplier
        = (p.vrsta == UlazniRacuni ? QStringLiteral("=") : QStringLiteral("<>")) + brojTekst(p.supplier);
    switch (p.vrsta) {
    case DgpRacuni:
        return QStringLiteral("SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatumIfakt,left('Pazar '+rtrim(cast(K.OrgJed as "
                              "nvarchar(15))),20) as Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as nvarchar(10))+'-'+"
                              "cast(K.BrojIfakt as nvarchar(15))+'/'+cast(K.GodinaKnj as nvarchar(5)),30) as Opis,"
                              "K.IznosIfakt as Iznos FROM Ifakture K ")
            + QStringLiteral(" WHERE K.BrojPoduzeca=") + firma + QStringLiteral(" AND K.Vrsta='DGP' AND K.OrgJed=")
            + orgJed + QStringLiteral(" AND K.DATUMIFAKT >= '") + od + QStringLiteral("' AND K.DATUMIFAKT<='") + doD
            + QStringLiteral("' AND K.GodinaKnj=") + godina + QStringLiteral(" ORDER BY K.DatumIfakt");
    case UplateIzlaznih:
        return QStringLiteral("SELECT I.BrojPoduzeca,I.GodinaKnj,U.Datum,left('Uplata '+rtrim(cast(I.OrgJed as "
                              "nvarchar(15)))+' d:'+U.BrojDokumenta,20) as Isprava,left(I.Vrsta+'-'+cast(I.OrgJed as "
                              "nvarchar(10))+'-'+cast(I.BrojIfakt as nvarchar(15))+'/'+cast(I.GodinaKnj as "
                              "nvarchar(5)),30) as Opis,U.Iznos ")
            + QStringLiteral(" FROM Ifakture I INNER JOIN IFAKTUplate U ON I.BrojPoduzeca=U.BrojPoduzeca AND "
                             "I.BrojIFAKT=U.BrojIFAKT AND I.GodinaKnj=U.GodinaKnj AND I.OrgJed=U.OrgJed AND "
                             "I.Vrsta=U.Vrsta ")
            + QStringLiteral(" WHERE I.BrojPoduzeca=") + firma + QStringLiteral(" AND I.OrgJed=") + orgJed
            + QStringLiteral(" AND U.DATUM >= '") + od + QStringLiteral("' AND U.DATUM<='") + doD + QStringLiteral("'")
            + QStringLiteral(" ORDER BY U.Datum");
    case UlazniRacuni:
        return QStringLiteral("SELECT K.BrojPoduzeca,K.GodinaKnj,K.DatFakture,left('KUF '+rtrim(cast(K.OrgJed as "
                              "nvarchar(15))),20) as Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as nvarchar(10))+'-'+"
                              "cast(K.BrojKUFa as nvarchar(15))+'/'+cast(K.GodinaKnj as nvarchar(5)),30) as Opis,"
                              "K.IznosFakture as Iznos FROM KUF K ")
            + QStringLiteral(" WHERE K.BrojPoduzeca=") + firma + QStringLiteral(" AND K.SifKomit") + supplier
            + QStringLiteral(" AND K.OrgJed=") + orgJed + QStringLiteral(" AND K.DATFAKTURE >= '") + od
            + QStringLiteral("' AND K.DATFAKTURE<='") + doD + QStringLiteral("' AND K.GodinaKnj=") + godina
            + QStringLiteral(" ORDER BY K.DATFAKTURE");
    default:
        return QStringLiteral("SELECT K.BrojPoduzeca,K.GodinaKnj,U.Datum,U.BrojDokumenta,left('KUF '+rtrim(cast("
                              "K.OrgJed as nvarchar(15))),20) as Isprava,left(K.Vrsta+'-'+cast(K.OrgJed as "
                              "nvarchar(10))+'-'+cast(K.BrojKUFa as nvarchar(15))+'/'+cast(K.GodinaKnj as "
                              "nvarchar(5)),30) as Opis,U.Iznos FROM KUF K ")
            + QStringLiteral("INNER JOIN KUFUplate U ON K.BrojPoduzeca=U.BrojPoduzeca AND K.BrojKUFa=U.BrojKUFa AND "
                             "K.GodinaKnj=U.GodinaKnj AND K.OrgJed=U.OrgJed AND K.Vrsta=U.Vrsta ")
            + QStringLiteral(" WHERE K.BrojPoduzeca=") + firma + QStringLiteral(" AND K.SifKomit") + supplier
            + QStringLiteral(" AND K.OrgJed=") + orgJed + QStringLiteral(" AND U.DATUM >= '") + od
            + QStringLiteral("' AND U.DATUM<='") + doD + QStringLiteral("'") + QStringLiteral(" ORDER BY U.Datum");
    }
}

// A typed code that is present but not a whole number: its message, shown.
// A number that is typed but is not one; an empty text is another check's matter.
bool badNumber(const QString& text)
{
    return !text.trimmed().isEmpty() && !broj(text);
}

} // namespace

bool valjanaVrsta(int vrsta)
{
    return vrsta >= 0 && vrsta < BrojVrsta;
}
const OpisVrste& opisVrste(int vrsta)
{
    return opisi().at(vrsta);
}
bool imaOrgJedinicu(int vrsta)
{
    return vrsta >= DgpRacuni && vrsta <= UplateUlaznih;
}
bool hasSupplier(int vrsta)
{
    return vrsta == UlazniRacuni || vrsta == UplateUlaznih;
}
bool hasShop(int vrsta)
{
    return vrsta >= MatOtpremnice && vrsta <= PosPovrat;
}

Check provjeri(const Parametri& p)
{
    const auto refused = [](const char* text) { return Check { QString::fromUtf8(text), {} }; };
    if (p.od > p.doDatuma)
        return refused("Prvi datum veći od drugog!");
    if (imaOrgJedinicu(p.vrsta) && !broj(p.orgJed))
        return refused("Org.jedinica nije dobro upisana!");
    if (hasSupplier(p.vrsta)) {
        if (p.supplier.trimmed().isEmpty())
            return refused("Dobavljač nije upisan!");
        if (badNumber(p.supplier))
            return refused("Dobavljač nije dobro upisan!");
    }
    if (!hasShop(p.vrsta))
        return {};
    if (p.prima.trimmed().isEmpty())
        return refused("Tko prima ili kupac nije upisan!");
    if (badNumber(p.prima))
        return refused("Tko prima ili kupac nije dobro upisan!");
    if (p.shop.trimmed().isEmpty())
        return { {},
            QStringLiteral("Skladište/Maloprodaja nije upisano! Generirat će se otpremnice za sva skl./malopr. za koje "
                           "operater ima prava. Pažljivo. Želite li nastaviti sa generiranjem?") };
    if (badNumber(p.shop))
        return refused("Skladište/Maloprodaja nije dobro upisano!");
    return {};
}

QString uvjetPrava(int vrsta, const QString& operater)
{
    return QStringLiteral(" AND K.BROJSKLAD IN (SELECT CAST(PRAVO AS INTEGER) AS BROJSKLAD FROM PRAVA WHERE OPERATER='")
        + navodnici(operater)
        + (vrsta == MatOtpremnice ? QStringLiteral("' AND PROGRAM='SKLADIŠTE') ")
                                  : QStringLiteral("' AND PROGRAM='MALOPROBJEKT') "));
}

QString izvorniUpit(const Parametri& p)
{
    return hasShop(p.vrsta) ? upitOtpremnica(p) : invoiceQuery(p);
}

QString pitanjePotvrde(const Parametri& p)
{
    const QString questionStart
        = QStringLiteral("Želite li generirati stavke knjige prihoda i rashoda za DB na temelju ");
    const QString period = dates::display(p.od) + QStringLiteral(" do ") + dates::display(p.doDatuma);
    const QString orgJed = QStringLiteral(" za org.jedinicu: ") + p.orgJed.trimmed() + QStringLiteral(" ?");
    const QString supplier = QStringLiteral(" dobavljača ") + p.supplier.trimmed();
    switch (p.vrsta) {
    case DgpRacuni:
        return questionStart + QStringLiteral("pologa pazara (DGP izl.računi) u perodu od ") + period + orgJed;
    case UplateIzlaznih:
        return questionStart + QStringLiteral("unesenih uplata izl.računa u perodu od ") + period + orgJed;
    case UlazniRacuni:
        return questionStart + QStringLiteral("ulaznih računa u perodu od ") + period + QStringLiteral(" za") + supplier
            + orgJed;
    case UplateUlaznih:
        return questionStart + QStringLiteral("uplata ulaznih računa u perodu od ") + period
            + QStringLiteral(" uz isključenje") + supplier + orgJed;
    default:
        break;
    }
    const bool mat = p.vrsta == MatOtpremnice;
    QString q = questionStart + (mat ? QStringLiteral("MAT") : QStringLiteral("POS"))
        + QStringLiteral(" internih otpremnica u perodu od ") + period;
    q += p.shop.trimmed().isEmpty() ? QStringLiteral(" za sva skl./malopr. za koja ima pravo")
                                    : QStringLiteral(" za skladište: ") + p.shop.trimmed();
    q += QStringLiteral(" za ") + (mat ? QStringLiteral("KUPCA ") : QStringLiteral("TKO PRIMA ")) + p.prima.trimmed();
    if (p.vrsta == PosPovrat)
        q += QStringLiteral(" u negativnom iznosu (povrat)");
    return q + QStringLiteral(" ?");
}

QString zadnjiBrojUpit(qint16 brojPoduzeca, qint16 godina)
{
    return QStringLiteral("SELECT MAX(D.RBroj) as Broj FROM dbo.KnjPrihRashDB D WHERE D.BrojPoduzeca=")
        + QString::number(brojPoduzeca) + QStringLiteral(" AND D.GodinaKnj=") + QString::number(godina);
}

int vrstaStavke(int vrsta, const QString& brojDokumenta)
{
    switch (vrsta) {
    case DgpRacuni:
        return 5;
    case UplateIzlaznih:
        return 6;
    case UlazniRacuni:
        return 11;
    case UplateUlaznih:
        return brojDokumenta.trimmed().startsWith(QStringLiteral("BL"), Qt::CaseInsensitive) ? 9 : 10;
    default:
        return 9;
    }
}

namespace
{

bool pitaj(const QString& text)
{
    return askYesNo(text, {}, Answer::Yes);
}

// The book's last number for the company and year; nothing when it cannot be read.
std::optional<qint64> zadnjiBroj(db::Database& db, const Parametri& p)
{
    db::ResultSet rs;
    if (!db.open(zadnjiBrojUpit(p.brojPoduzeca, p.godina), rs))
        return std::nullopt;
    const int c = rs.indexOf(QStringLiteral("Broj"));
    if (rs.isEmpty() || c < 0 || rs.isNull(0, c))
        return 0;
    return rs.integer(0, c);
}

QVariant tekst(const db::ResultSet& rs, int row, int column)
{
    return column < 0 || rs.isNull(row, column) ? QVariant() : QVariant(rs.text(row, column));
}

// Where the columns of an entry stand in stavka()'s values.
enum Stupac { StCompany, StGodina, StRBroj, StDatum, StIsprava, StOpis, StVrsta, StIznos };

// One book entry from one source row, in the order the book's columns are written;
// its number is given when it is written.
db::RowChange::Values stavka(const Parametri& p, const db::ResultSet& rs, int row)
{
    const int cDatum = 2; // DatumIfakt, Datum or DatFakture: the third column of every statement
    const int cIsprava = rs.indexOf(QStringLiteral("Isprava"));
    const int cOpis = rs.indexOf(QStringLiteral("Opis"));
    const int cIznos = rs.indexOf(QStringLiteral("Iznos"));
    const int cDokument = rs.indexOf(QStringLiteral("BrojDokumenta"));
    const QString dokument = p.vrsta == UplateUlaznih && cDokument >= 0 ? rs.text(row, cDokument) : QString();

    QVariant opis = tekst(rs, row, cOpis);
    if (p.vrsta == UplateUlaznih) {
        const int width = books::textColumnWidth(kKnjiga, QStringLiteral("Opis"));
        const QString s = opis.toString() + QStringLiteral(" Upl.") + dokument;
        opis = width > 0 ? s.left(width) : s;
    }
    QVariant iznos;
    if (cIznos >= 0 && !rs.isNull(row, cIznos))
        iznos = QVariant::fromValue(p.vrsta == PosPovrat ? -rs.money(row, cIznos) : rs.money(row, cIznos));
    const auto cijeli = [&](const QString& name) {
        const int c = rs.indexOf(name);
        return c < 0 || rs.isNull(row, c) ? QVariant() : QVariant(int(rs.integer(row, c)));
    };
    return { { QStringLiteral("BrojPoduzeca"), cijeli(QStringLiteral("BrojPoduzeca")) },
        { QStringLiteral("GodinaKnj"), cijeli(QStringLiteral("GodinaKnj")) }, { QStringLiteral("RBroj"), 0 },
        { QStringLiteral("Datum"), rs.isNull(row, cDatum) ? QVariant() : QVariant(rs.date(row, cDatum)) },
        { QStringLiteral("Isprava"), tekst(rs, row, cIsprava) }, { QStringLiteral("Opis"), opis },
        { QStringLiteral("Vrsta"), vrstaStavke(p.vrsta, dokument) }, { QStringLiteral("Iznos"), iznos } };
}

// What tells one generated document from another in the book: the columns a run
// fills from its source row, the number and the kind excepted.
QString otisak(
    const QVariant& godina, const QVariant& datum, const QVariant& isprava, const QVariant& opis, const QVariant& iznos)
{
    const QString novac = iznos.isNull() ? QString() : QString::number(iznos.value<Money>().units());
    return QStringList { godina.toString(), datum.toDate().toString(Qt::ISODate), isprava.toString(), opis.toString(),
        novac }
        .join(QChar(0x1f));
}

QString otisak(const db::RowChange::Values& v)
{
    return otisak(v[StGodina].second, v[StDatum].second, v[StIsprava].second, v[StOpis].second, v[StIznos].second);
}

// What the book already holds of a run's entries.
struct Held {
    // For each entry, whether the book holds it from an earlier run. Each book row
    // stands for one entry only, so of two equal source rows with one written before
    // only one counts as held.
    QVector<bool> entries;
    int bookRows = 0; // rows of the book equal to one of the entries
};

// Nothing when the book cannot be read.
std::optional<Held> alreadyInBook(db::Database& db, const Parametri& p, const QVector<db::RowChange::Values>& entries)
{
    Held held;
    held.entries.fill(false, entries.size());
    QDate prvi, zadnji;
    for (const db::RowChange::Values& v : entries) {
        const QDate d = v[StDatum].second.toDate();
        if (d.isValid() && (!prvi.isValid() || d < prvi))
            prvi = d;
        if (d.isValid() && (!zadnji.isValid() || d > zadnji))
            zadnji = d;
    }
    if (!prvi.isValid())
        return held;
    db::ResultSet rs;
    if (!db.open(QStringLiteral("SELECT GodinaKnj,Datum,Isprava,Opis,Iznos FROM dbo.KnjPrihRashDB WHERE BrojPoduzeca=")
                + QString::number(p.brojPoduzeca) + QStringLiteral(" AND Datum>='") + datum(prvi)
                + QStringLiteral("' AND Datum<'") + datum(zadnji.addDays(1)) + QStringLiteral("'"),
            rs))
        return std::nullopt;
    QHash<QString, int> uKnjizi;
    for (int r = 0; r < rs.rowCount(); ++r) {
        const QVariant iznos = rs.isNull(r, 4) ? QVariant() : QVariant::fromValue(rs.money(r, 4));
        ++uKnjizi[otisak(int(rs.integer(r, 0)), rs.date(r, 1), tekst(rs, r, 2), tekst(rs, r, 3), iznos)];
    }
    QSet<QString> wanted;
    for (const db::RowChange::Values& v : entries)
        wanted.insert(otisak(v));
    for (auto it = uKnjizi.cbegin(); it != uKnjizi.cend(); ++it)
        if (wanted.contains(it.key()))
            held.bookRows += it.value();
    for (int i = 0; i < entries.size(); ++i) {
        const auto it = uKnjizi.find(otisak(entries[i]));
        if (it != uKnjizi.end() && it.value() > 0) {
            --it.value();
            held.entries[i] = true;
        }
    }
    return held;
}

void izostavi(QVector<db::RowChange::Values>& entries, const QVector<bool>& koje)
{
    QVector<db::RowChange::Values> ostale;
    for (int i = 0; i < entries.size(); ++i)
        if (!koje[i])
            ostale << entries[i];
    entries = ostale;
}

Notice upozorenje(const QString& tekst)
{
    return { tekst, {}, Icon::Exclamation };
}

// A second run over the same period would write its documents again, and a payment
// of an earlier year's invoice keeps the invoice's year while it takes a number of
// the working year. Both are asked about before anything is written; the entries
// left out take no number.
void izaberi(const Parametri& p, QVector<db::RowChange::Values>& entries, const Held& upisane)
{
    const int heldCount = int(upisane.entries.count(true));
    if (heldCount > 0
        && !askYesNo(QStringLiteral("Od %1 zapisa za prijenos, %2 već postoje u knjizi prihoda i rashoda DB iz ranijeg "
                                    "generiranja (isti datum, isprava, opis i iznos). Želite li ih ponovo upisati? "
                                    "Ako odgovorite Ne, upisat će se samo ostali zapisi.")
                         .arg(entries.size())
                         .arg(heldCount),
            {}, Answer::No))
        izostavi(entries, upisane.entries);

    constexpr int kMaxListed = 10;
    QVector<bool> drugaGodina(entries.size(), false);
    QStringList navedeni;
    for (int i = 0; i < entries.size(); ++i) {
        const db::RowChange::Values& v = entries[i];
        if (v[StGodina].second.isValid() && v[StGodina].second.toInt() == p.godina)
            continue;
        drugaGodina[i] = true;
        if (navedeni.size() < kMaxListed)
            navedeni << v[StIsprava].second.toString() + QStringLiteral(" (") + v[StOpis].second.toString()
                    + QStringLiteral("), ") + dates::display(v[StDatum].second.toDate()) + QStringLiteral(", godina ")
                    + v[StGodina].second.toString();
    }
    const int drugih = int(drugaGodina.count(true));
    if (drugih > navedeni.size())
        navedeni << QStringLiteral("... i još %1").arg(drugih - navedeni.size());
    if (drugih > 0
        && askYesNo(QStringLiteral("Zapisi koji pripadaju drugoj godini knjige, a ne radnoj godini %1:\n").arg(p.godina)
                + navedeni.join(u'\n')
                + QStringLiteral("\nUpisali bi se u knjigu svoje godine pod rednim brojevima radne godine. Želite li "
                                 "ih izostaviti?"),
            {}, Answer::Yes))
        izostavi(entries, drugaGodina);
}

// Appends the entries, numbered on from `zadnji`. The rows go in one transaction for
// speed, but a failure keeps those written before it, as a run without a transaction
// would. A failure or refusal is left in `poruka`. `asked` is what the book held of
// all the run's entries (`sve`) when the questions were put.
int writeEntries(db::Database& db, const Parametri& p, QVector<db::RowChange::Values>& entries, qint64 zadnji,
    const QVector<db::RowChange::Values>& sve, const Held& asked, Notice* poruka)
{
    db::ResultSet prazan;
    if (!db.open(QStringLiteral("SELECT * FROM DBO.KnjPrihRashDB WHERE RBROJ=0"), prazan)) {
        *poruka = upozorenje(QStringLiteral("Greška u čitanju podatka iz knjige DB!"));
        return 0;
    }
    // Nothing is written into a closed period; the rows written go into the journal
    // with them, in the same transaction.
    const journal::Scope knjigaDB { Knjiga::PrihRashDB, p.brojPoduzeca, p.godina, 0 };
    QList<QDate> datumi;
    for (const db::RowChange::Values& v : entries)
        datumi << v[StDatum].second.toDate();
    const QString lockRefusal = journal::periodlock::refuseDates(
        db, knjigaDB, datumi, QStringLiteral("Generiranje bi upisalo stavke datirane %1. Ništa nije upisano."));
    if (!lockRefusal.isEmpty()) {
        *poruka = upozorenje(lockRefusal);
        return 0;
    }
    db::TransactionGuard transakcija(db);
    QString journalText, journalError;
    const auto writeJournal = [&] {
        return journalText.isEmpty()
            || journal::append(
                db, knjigaDB, { journal::RecordKind::Generiranje, std::nullopt, {}, journalText }, &journalError);
    };
    // The questions were answered while others could write, so the book is read again
    // inside the transaction (which, on the embedded database, holds the book until
    // the commit): the same documents booked meanwhile (a second run over the same
    // days) stop this run, and the numbers go on from the last one taken meanwhile.
    const std::optional<Held> now = alreadyInBook(db, p, sve);
    const std::optional<qint64> lastNow = zadnjiBroj(db, p);
    if (!now || !lastNow) {
        *poruka = upozorenje(QStringLiteral("Greška u čitanju podatka iz knjige DB!"));
        return 0;
    }
    if (now->bookRows > asked.bookRows) {
        *poruka = upozorenje(QStringLiteral("Dok je generiranje čekalo odgovor, isti zapisi upisani su u knjigu DB "
                                            "(drugo generiranje za isto razdoblje?). Ništa nije upisano; ponovite "
                                            "generiranje."));
        return 0;
    }
    zadnji = std::max(zadnji, *lastNow);
    if (!journal::ensureBaseline(db, knjigaDB, &journalError)) {
        *poruka = upozorenje(QStringLiteral("Greška u spremanju podataka u knjigu DB. Provjerite i ponovite!"));
        return 0;
    }
    // Gone before any message: the rows written before a failure stay, so stopping
    // is not offered.
    auto progress = interaction().startProgress(
        { QStringLiteral("Generiranje"), QStringLiteral("Generiranje: %1 od %2 zapisa"), entries.size(), false });
    int zapisano = 0;
    for (db::RowChange::Values& v : entries) {
        const qint64 rBroj = zadnji + zapisano + 1;
        const bool stane = rBroj <= std::numeric_limits<qint32>::max();
        if (stane)
            v[StRBroj].second = int(rBroj);
        const bool upisan = stane && db.writeRow({ db::RowChange::Kind::Insert, kKnjiga, v, {} });
        if (upisan)
            journalText += journal::rowText(v) + u'\n';
        else {
            if (transakcija.isActive() && !writeJournal())
                zapisano = 0;
            else if (transakcija.isActive())
                transakcija.commit();
            progress.reset();
            *poruka = upozorenje(QStringLiteral("Greška u spremanju podataka u knjigu DB. Provjerite i ponovite!"));
            return zapisano;
        }
        progress->advance(++zapisano);
    }
    progress.reset();
    if (transakcija.isActive() && (!writeJournal() || !transakcija.commit())) {
        *poruka = upozorenje(QStringLiteral("Greška u spremanju podataka u knjigu DB. Provjerite i ponovite!"));
        return 0;
    }
    return zapisano;
}

} // namespace

Rezultat generiraj(const Parametri& p)
{
    Rezultat rezultat;
    if (!valjanaVrsta(p.vrsta) || !pitaj(pitanjePotvrde(p)))
        return rezultat;
    const OpisVrste& opis = opisVrste(p.vrsta);
    db::Database& knjiga = session().db();
    const std::optional<qint64> zadnji = zadnjiBroj(knjiga, p);
    if (!zadnji) {
        rezultat.poruka = upozorenje(QStringLiteral("Greška u čitanju zadnjeg rednog broja knjige!"));
        return rezultat;
    }
    db::ResultSet redovi;
    {
        // The source is read whole and its connection closed before the book is
        // written: the two may be the same embedded file.
        db::Database izvor;
        rezultat.izvorOtvoren = izvor.connect(p.izvor);
        if (!rezultat.izvorOtvoren || !izvor.open(izvorniUpit(p), redovi)) {
            rezultat.poruka = upozorenje(opis.readError);
            return rezultat;
        }
    }
    if (redovi.isEmpty()) {
        rezultat.poruka = { opis.nemaPodataka, {}, Icon::Information };
        return rezultat;
    }
    if (!pitaj(QStringLiteral("Postoje ") + QString::number(redovi.rowCount()) + opis.upitBroja))
        return rezultat;
    QVector<db::RowChange::Values> entries;
    for (int r = 0; r < redovi.rowCount(); ++r)
        entries << stavka(p, redovi, r);
    const std::optional<Held> upisane = alreadyInBook(knjiga, p, entries);
    if (!upisane) {
        rezultat.poruka = upozorenje(QStringLiteral("Greška u čitanju podatka iz knjige DB!"));
        return rezultat;
    }
    const QVector<db::RowChange::Values> sve = entries;
    izaberi(p, entries, *upisane);
    rezultat.zapisano
        = entries.isEmpty() ? 0 : writeEntries(knjiga, p, entries, *zadnji, sve, *upisane, &rezultat.poruka);
    if (rezultat.zapisano == entries.size())
        rezultat.poruka = { QStringLiteral("Uspješno generirano ") + QString::number(rezultat.zapisano)
                + QStringLiteral(" zapisa u knjigu prihoda i rashoda DB!"),
            {}, Icon::Information };
    return rezultat;
}

} // namespace knjige::generate
