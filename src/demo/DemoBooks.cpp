#include "demo/DemoBooks.h"

#include <QHash>
#include <algorithm>

namespace knjige::demo
{
namespace
{

QVariant cash(Money m)
{
    return QVariant::fromValue(m);
}
QString yy(int year)
{
    return QString::number(year % 100).rightJustified(2, u'0');
}

QDate day(int year, int month, int d)
{
    return QDate(year, month, std::min(d, QDate(year, month, 1).daysInMonth()));
}

// A gross amount with its VAT share, as the FBiH and RS books keep it.
db::RowChange::Values withVat(db::RowChange::Values v, Money iznos, bool vat)
{
    v.append({ QStringLiteral("Iznos"), cash(iznos) });
    v.append({ QStringLiteral("IznosPDV"), cash(vat ? vatShare(iznos) : Money()) });
    return v;
}

Draft entry96(
    QDate datum, const QString& isprava, const QString& opis, int vrsta, Money iznos, const QString& series = {})
{
    const bool vat = vrsta != 17 && vrsta != 18;
    Draft d;
    d.datum = datum;
    d.vrsta = vrsta;
    d.iznos = iznos;
    d.series = series;
    d.values = withVat({ { QStringLiteral("Isprava"), isprava }, { QStringLiteral("Opis"), opis },
                           { QStringLiteral("Vrsta"), vrsta } },
        iznos, vat);
    return d;
}

const QStringList kOstaliRashodi = {
    QStringLiteral("Troškovi električne energije"),
    QStringLiteral("Telefon i internet"),
    QStringLiteral("Zakup poslovnog prostora"),
    QStringLiteral("Gorivo za službeno vozilo"),
    QStringLiteral("Uredski materijal"),
    QStringLiteral("Servis klima uređaja"),
    QStringLiteral("Grijanje poslovnog prostora"),
    QStringLiteral("Održavanje softvera"),
};

const QString kBlagajna = QStringLiteral("Blag. izvj. #");
const QString kIzvod = QStringLiteral("Izvod #");
const QString kUra = QStringLiteral("URA #");

// Invoices issued are settled by bank (kind 12), goods bought paid for (kind 16);
// both carry their partner and invoice for the receivables and liabilities.
Draft settlement(QDate datum, int vrsta, qint32 partner, const QString& invoice, Money iznos)
{
    const bool income = vrsta == 12;
    Draft e = entry96(datum, income ? kIzvod : kUra,
        income ? QStringLiteral("Naplata po fakturi KIF ") + invoice
               : QStringLiteral("Nabavka robe po fakturi ") + invoice,
        vrsta, iznos, income ? QStringLiteral("Izvod") : QStringLiteral("URA"));
    e.partner = partner;
    e.invoice = invoice;
    if (income)
        e.invoiceSeries = QStringLiteral("KIF");
    return e;
}

void monthFBiH(QVector<Draft>& out, Rng& rng, int year, int month)
{
    const QVector<qint32> customers = customerCodes();
    const QVector<qint32> suppliers = supplierCodes();
    const int prev = month == 1 ? 12 : month - 1;
    for (int d : { rng.between(2, 12), rng.between(15, 27) })
        out << entry96(day(year, month, d), kBlagajna, QStringLiteral("Uplata pazara"), 11, rng.amount(800, 3500),
            QStringLiteral("Blagajna"));
    out << entry96(day(year, month, 10),
        QStringLiteral("Platna lista %1/%2").arg(prev).arg(yy(month == 1 ? year - 1 : year)),
        QStringLiteral("Bruto plaće za %1").arg(monthName(prev)), 17, rng.amount(4200, 4800));
    out << entry96(day(year, month, 10), kIzvod, QStringLiteral("Doprinosi za %1").arg(monthName(prev)), 18,
        rng.amount(1500, 1800), QStringLiteral("Izvod"));
    for (int d : { rng.between(3, 14), rng.between(16, 28) })
        out << settlement(day(year, month, d), 12, customers[rng.between(0, int(customers.size()) - 1)],
            QStringLiteral("@/%1").arg(yy(year)), rng.amount(500, 6000));
    for (int d : { rng.between(4, 13), rng.between(17, 28) })
        out << settlement(day(year, month, d), 16, suppliers[rng.between(0, int(suppliers.size()) - 1)],
            QStringLiteral("%1/%2").arg(rng.between(100, 999)).arg(yy(year)), rng.amount(600, 5000));
    for (int i = 0; i < 2; ++i)
        out << entry96(day(year, month, rng.between(5, 28)), kUra,
            kOstaliRashodi[(month * 2 + i) % kOstaliRashodi.size()], 19, rng.amount(60, 900), QStringLiteral("URA"));
    if (month % 3 == 0)
        out << entry96(day(year, month, rng.between(20, 28)), QStringLiteral("Kompenzacija #"),
            QStringLiteral("Roba po kompenzaciji"), 13, rng.amount(300, 2000), QStringLiteral("Kompenzacija"));
}

Draft evidEntry(
    QDate datum, qint32 partner, int vrsta, const QString& isprava, const QString& opis, Money iznos, qint32 rbrojKpr)
{
    Draft d;
    d.datum = datum;
    d.values = { { QStringLiteral("SifKomit"), partner }, { QStringLiteral("Vrsta"), vrsta },
        { QStringLiteral("Isprava"), isprava }, { QStringLiteral("Opis"), opis },
        { QStringLiteral("Iznos"), cash(iznos) }, { QStringLiteral("RBrojKPR"), rbrojKpr } };
    return d;
}

Draft entryDB(
    QDate datum, const QString& isprava, const QString& opis, int vrsta, Money iznos, const QString& series = {})
{
    Draft d;
    d.datum = datum;
    d.series = series;
    d.values = { { QStringLiteral("Isprava"), isprava }, { QStringLiteral("Opis"), opis },
        { QStringLiteral("Vrsta"), vrsta }, { QStringLiteral("Iznos"), cash(iznos) } };
    return d;
}

Draft entryRS(QDate datum, const QString& opis, int vrsta, Money iznos, bool vat, const QString& series = {})
{
    Draft d;
    d.datum = datum;
    d.series = series;
    d.values = withVat({ { QStringLiteral("Opis"), opis }, { QStringLiteral("Vrsta"), vrsta } }, iznos, vat);
    return d;
}

Draft entryPrometa(QDate datum, const QString& opis, const QString& isprava, Money got, Money cek)
{
    Draft d;
    d.datum = datum;
    d.series = QStringLiteral("Fiskalni");
    d.values = { { QStringLiteral("Opis"), opis }, { QStringLiteral("Isprava"), isprava },
        { QStringLiteral("IznosGot"), cash(got) }, { QStringLiteral("IznosCek"), cash(cek) } };
    return d;
}

Draft asset(QDate datum, const QString& naziv, const QString& isprava, Money nab, int vijek)
{
    Draft d;
    d.datum = datum;
    d.series = QStringLiteral("URA");
    d.values = { { QStringLiteral("Naziv"), naziv }, { QStringLiteral("Isprava"), isprava },
        { QStringLiteral("NabVrijednost"), cash(nab) }, { QStringLiteral("KnjigVrijednost"), cash(nab) },
        { QStringLiteral("VijekTr"), vijek } };
    return d;
}

} // namespace

quint64 Rng::next()
{
    quint64 z = (m_state += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

int Rng::between(int lo, int hi)
{
    return lo + int(next() % quint64(hi - lo + 1));
}

Money Rng::amount(int lo, int hi)
{
    const qint64 cents = qint64(between(lo, hi - 1)) * 100 + between(0, 99);
    return Money::fromUnits(cents * (Money::Scale / 100));
}

QString monthName(int month)
{
    static const QStringList names = {
        QStringLiteral("januar"),
        QStringLiteral("februar"),
        QStringLiteral("mart"),
        QStringLiteral("april"),
        QStringLiteral("maj"),
        QStringLiteral("juni"),
        QStringLiteral("juli"),
        QStringLiteral("august"),
        QStringLiteral("septembar"),
        QStringLiteral("oktobar"),
        QStringLiteral("novembar"),
        QStringLiteral("decembar"),
    };
    return names.value(month - 1);
}

Money vatShare(Money gross)
{
    return gross.fraction(17, 117);
}

void sortByDate(QVector<Draft>& rows)
{
    std::stable_sort(rows.begin(), rows.end(), [](const Draft& a, const Draft& b) { return a.datum < b.datum; });
    numberDocuments(rows);
}

void numberDocuments(QVector<Draft>& rows)
{
    QHash<QString, int> last;
    for (Draft& d : rows) {
        const QString number = d.series.isEmpty() ? QString() : QString::number(++last[d.series]);
        const QString invoice = d.invoiceSeries.isEmpty() ? QString() : QString::number(++last[d.invoiceSeries]);
        for (auto& [column, value] : d.values) {
            if (value.typeId() != QMetaType::QString)
                continue;
            QString text = value.toString();
            if (!number.isEmpty())
                text.replace(u'#', number);
            if (!invoice.isEmpty())
                text.replace(u'@', invoice);
            value = text;
        }
        if (!invoice.isEmpty())
            d.invoice.replace(u'@', invoice);
        d.series.clear();
        d.invoiceSeries.clear();
    }
}

QVector<Draft> prihRashFBiH(int year)
{
    Rng rng(0x96000 + quint64(year));
    QVector<Draft> out;
    for (int month = 1; month <= 12; ++month)
        monthFBiH(out, rng, year, month);
    return out;
}

QVector<Draft> evidPotObv(const QVector<Draft>& sortedFBiH, int year)
{
    Rng rng(0x97000 + quint64(year));
    QVector<Draft> out;
    for (int i = 0; i < sortedFBiH.size(); ++i) {
        const Draft& e = sortedFBiH[i];
        if (!e.partner)
            continue;
        const qint32 rbroj = i + 1;
        // The invoice came some days before it was settled, never before the year. The
        // company's own invoices are paid in a fixed term, so their numbers follow
        // their dates.
        const int room = std::max(0, e.datum.dayOfYear() - 2);
        const int term = e.vrsta == 12 ? 12 : rng.between(2, 25);
        const QDate invoiced = e.datum.addDays(-std::min(term, room));
        if (e.vrsta == 12) {
            out << evidEntry(invoiced, e.partner, 11, QStringLiteral("KIF ") + e.invoice.section(u'/', 0, 0),
                QStringLiteral("Izdata faktura KIF ") + e.invoice, e.iznos, rbroj);
            out << evidEntry(e.datum, e.partner, 12, e.values.value(0).second.toString(),
                QStringLiteral("Uplata po KIF ") + e.invoice, e.iznos, rbroj);
        } else {
            out << evidEntry(invoiced, e.partner, 21, QStringLiteral("Faktura ") + e.invoice,
                QStringLiteral("Primljena faktura ") + e.invoice, e.iznos, rbroj);
            Draft paid = evidEntry(e.datum, e.partner, 22, QStringLiteral("Nalog #"),
                QStringLiteral("Plaćanje fakture ") + e.invoice, e.iznos, rbroj);
            paid.series = QStringLiteral("Nalog");
            out << paid;
        }
    }
    return out;
}

QVector<Draft> prihRashDB(int year)
{
    Rng rng(0x109000 + quint64(year));
    QVector<Draft> out;
    const QString izvod = QStringLiteral("Izvod");
    for (int m = 1; m <= 12; ++m) {
        const int prev = m == 1 ? 12 : m - 1;
        out << entryDB(day(year, m, rng.between(2, 9)), kBlagajna, QStringLiteral("Uplata pazara"), 5,
            rng.amount(900, 3200), QStringLiteral("Blagajna"));
        Draft paid = entryDB(day(year, m, rng.between(10, 18)), kIzvod,
            QStringLiteral("Naplata po fakturi @/%1").arg(yy(year)), 6, rng.amount(700, 5200), izvod);
        paid.invoiceSeries = QStringLiteral("KIF");
        out << paid;
        if (m % 2)
            out << entryDB(day(year, m, rng.between(11, 20)), kBlagajna,
                QStringLiteral("Gotovinska nabavka materijala"), 9, rng.amount(80, 600), QStringLiteral("Blagajna"));
        else
            out << entryDB(day(year, m, rng.between(11, 20)), kIzvod,
                QStringLiteral("Plaćanje po fakturi URA %1").arg(m * 7), 10, rng.amount(500, 4000), izvod);
        if (m % 2 == 0)
            out << entryDB(day(year, m, 15), kIzvod, QStringLiteral("Porez na plaću za %1").arg(monthName(prev)), 14,
                rng.amount(250, 420), izvod);
        if (m % 3 == 0)
            out << entryDB(day(year, m, 28), QStringLiteral("Obračun amort."),
                QStringLiteral("Amortizacija za %1. kvartal").arg(m / 3), 12, rng.amount(350, 700));
        if (m % 4 == 1)
            out << entryDB(
                day(year, m, 20), kIzvod, QStringLiteral("Porez na promet usluga"), 15, rng.amount(120, 480), izvod);
        if (m == 3 || m == 9) {
            out << entryDB(day(year, m, 22), QStringLiteral("Kompenzacija %1").arg(m / 3),
                QStringLiteral("Roba po kompenzaciji"), 7, rng.amount(400, 1500));
            out << entryDB(day(year, m, 22), QStringLiteral("Kompenzacija %1").arg(m / 3),
                QStringLiteral("Usluge po kompenzaciji"), 11, rng.amount(300, 1200));
        }
        if (m == 5)
            out << entryDB(
                day(year, m, 18), kIzvod, QStringLiteral("Akciza na uvezenu robu"), 13, rng.amount(200, 650), izvod);
        if (m == 6 || m == 12)
            out << entryDB(
                day(year, m, 25), kIzvod, QStringLiteral("Povrat akontacije PPDOH"), 16, rng.amount(150, 500), izvod);
    }
    return out;
}

QVector<Draft> prihodaRS(int year)
{
    Rng rng(0x99000 + quint64(year));
    QVector<Draft> out;
    for (int m = 1; m <= 12; ++m) {
        out << entryRS(day(year, m, rng.between(3, 14)), QStringLiteral("Prodaja robe po KIF #/%1").arg(yy(year)), 5,
            rng.amount(700, 5500), true, QStringLiteral("KIF"));
        out << entryRS(day(year, m, rng.between(15, 27)), QStringLiteral("Usluge montaže po KIF #/%1").arg(yy(year)), 6,
            rng.amount(200, 1800), true, QStringLiteral("KIF"));
        if (m % 3 == 2)
            out << entryRS(
                day(year, m, 28), QStringLiteral("Prodaja vlastitih proizvoda"), 4, rng.amount(400, 2500), true);
        if (m == 6 || m == 12)
            out << entryRS(
                day(year, m, 30), QStringLiteral("Kamata na oročena sredstva"), 7, rng.amount(20, 120), false);
        if (m == 10)
            out << entryRS(
                day(year, m, 12), QStringLiteral("Naknada štete od osiguranja"), 8, rng.amount(300, 900), false);
    }
    return out;
}

QVector<Draft> rashodaRS(int year)
{
    Rng rng(0x100000 + quint64(year));
    QVector<Draft> out;
    for (int m = 1; m <= 12; ++m) {
        const int prev = m == 1 ? 12 : m - 1;
        out << entryRS(day(year, m, rng.between(3, 12)), QStringLiteral("Nabavka repromaterijala"), 4,
            rng.amount(400, 3000), true);
        out << entryRS(day(year, m, 10), QStringLiteral("Bruto plaće za %1").arg(monthName(prev)), 6,
            rng.amount(3800, 4400), false);
        if (m % 2 == 0)
            out << entryRS(day(year, m, rng.between(14, 26)), QStringLiteral("Knjigovodstvene usluge"), 5,
                rng.amount(150, 350), true);
        if (m % 3 == 0)
            out << entryRS(day(year, m, 28), QStringLiteral("Kamata na kredit"), 8, rng.amount(60, 240), false);
        if (m == 6 || m == 12)
            out << entryRS(
                day(year, m, 30), QStringLiteral("Amortizacija za polugodište"), 10, rng.amount(600, 1200), false);
        if (m == 4)
            out << entryRS(day(year, m, 16), QStringLiteral("Donacija KUD Vrbas"), 7, rng.amount(100, 300), false);
        if (m == 8)
            out << entryRS(
                day(year, m, 21), QStringLiteral("Otpis nenaplativog potraživanja"), 9, rng.amount(150, 600), false);
        if (m == 11)
            out << entryRS(day(year, m, 19), QStringLiteral("Reprezentacija"), 13, rng.amount(80, 260), false);
    }
    return out;
}

QVector<Draft> prometa(int year)
{
    Rng rng(0x98000 + quint64(year));
    QVector<Draft> out;
    for (int m = 1; m <= 12; ++m) {
        for (int d : { rng.between(1, 9), rng.between(10, 19), rng.between(20, 28) }) {
            const Money cek = rng.chance(30) ? rng.amount(40, 450) : Money();
            out << entryPrometa(day(year, m, d), QStringLiteral("Dnevni promet maloprodaje"),
                QStringLiteral("Fisk. izvj. #"), rng.amount(600, 3800), cek);
        }
    }
    return out;
}

QVector<Draft> popisnaLista(int year, bool older)
{
    struct Item {
        const char* naziv;
        int lo, hi, vijek;
    };
    static const Item thisYear[] = {
        { "Server Dell PowerEdge T150", 3800, 5200, 4 },
        { "Dostavno vozilo VW Caddy", 32000, 41000, 5 },
        { "Blagajnički pult i police", 2200, 3600, 10 },
        { "Fiskalni uređaj Tring", 650, 900, 2 },
        { "Laptop Lenovo ThinkPad E14", 1400, 2100, 4 },
    };
    static const Item lastYear[] = {
        { "Računar Dell OptiPlex 7010", 1300, 1900, 4 },
        { "Putničko vozilo Škoda Octavia", 38000, 46000, 5 },
        { "Kancelarijski namještaj", 4200, 6500, 10 },
        { "Klima uređaj Gree 12000 BTU", 1100, 1600, 5 },
        { "Multifunkcijski printer HP", 550, 950, 2 },
    };
    const auto& items = older ? lastYear : thisYear;
    Rng rng((older ? 0x101000 : 0x105000) + quint64(year));
    QVector<Draft> out;
    int month = rng.between(1, 2);
    for (const Item& it : items) {
        out << asset(day(year, month, rng.between(1, 28)), QString::fromUtf8(it.naziv), QStringLiteral("URA #"),
            rng.amount(it.lo, it.hi), it.vijek);
        month = std::min(12, month + rng.between(1, 3));
    }
    return out;
}

QVector<Draft> trgUsluga(int year, qint32 shop)
{
    static const QStringList services = {
        QStringLiteral("Usluga ugradnje klima uređaja"),
        QStringLiteral("Servis bijele tehnike"),
        QStringLiteral("Usluga dostave robe"),
        QStringLiteral("Montaža namještaja"),
        QStringLiteral("Servis računara"),
        QStringLiteral("Instalacija TV prijemnika"),
    };
    Rng rng(0x125000 + quint64(shop) * 7 + quint64(year));
    QVector<Draft> out;
    for (int m = 1; m <= 12; ++m) {
        const int count = rng.between(1, 2);
        for (int i = 0; i < count; ++i) {
            Draft d;
            d.datum = day(year, m, rng.between(1, 28));
            d.values = { { QStringLiteral("Opis"), services[rng.between(0, int(services.size()) - 1)] },
                { QStringLiteral("Iznos"), cash(rng.amount(35, 420)) } };
            out << d;
        }
    }
    return out;
}

QVector<Draft> trgKomisiona(int year, qint32 shop)
{
    Rng rng(0x126000 + quint64(shop) * 7 + quint64(year));
    QVector<Draft> out;
    int ugovor = int(shop % 10) * 10;
    for (int m = 1; m <= 12; ++m) {
        Draft in;
        in.datum = day(year, m, rng.between(1, 10));
        in.values = { { QStringLiteral("Opis"),
                          QStringLiteral("Prijem u komision, ugovor %1/%2").arg(++ugovor).arg(yy(year)) },
            { QStringLiteral("Zaduzenje"), cash(rng.amount(800, 3000)) },
            { QStringLiteral("Razduzenje"), cash(Money()) } };
        out << in;
        Draft sold;
        sold.datum = day(year, m, rng.between(12, 28));
        const bool back = m % 5 == 0;
        sold.values = { { QStringLiteral("Opis"),
                            back ? QStringLiteral("Povrat robe komitentu") : QStringLiteral("Prodaja komisione robe") },
            { QStringLiteral("Zaduzenje"), cash(Money()) },
            { QStringLiteral("Razduzenje"), cash(rng.amount(back ? 100 : 500, back ? 400 : 2500)) } };
        out << sold;
    }
    return out;
}

QVector<Draft> prihRashFBiHNextYear(int year)
{
    Rng rng(0x96001 + quint64(year));
    const int next = year + 1;
    return {
        entry96(QDate(next, 1, 3), QStringLiteral("Blag. izvj. 1"), QStringLiteral("Uplata pazara"), 11,
            rng.amount(800, 2500)),
        entry96(QDate(next, 1, 5), QStringLiteral("URA 1"), QStringLiteral("Zakup poslovnog prostora"), 19,
            rng.amount(600, 900)),
        entry96(QDate(next, 1, 10), QStringLiteral("Platna lista 12/%1").arg(yy(year)),
            QStringLiteral("Bruto plaće za decembar"), 17, rng.amount(4200, 4800)),
    };
}

QVector<Draft> prometaNextYear(int year)
{
    Rng rng(0x98001 + quint64(year));
    const int next = year + 1;
    return {
        entryPrometa(QDate(next, 1, 3), QStringLiteral("Dnevni promet maloprodaje"), QStringLiteral("Fisk. izvj. 1"),
            rng.amount(600, 2000), Money()),
        entryPrometa(QDate(next, 1, 4), QStringLiteral("Dnevni promet maloprodaje"), QStringLiteral("Fisk. izvj. 2"),
            rng.amount(600, 2000), rng.amount(40, 200)),
    };
}

} // namespace knjige::demo
