#include "editors/EditorRules.h"

#include "books/BookKind.h"
#include "session/Dates.h"

namespace knjige::editors
{
namespace
{

const QString kGodina = QStringLiteral("Godina unesenog datuma ne odgovara tekućoj radnoj godini! Ispravite!");
const QString kIsprava = QStringLiteral("Mora se upisati isprava !");
const QString kIznosNula = QStringLiteral("Iznos mora biti različit od nule !");
const QString kRBrojVeci = QStringLiteral("Morate upisati redni broj veći od 0!");
const QString kRBrojRazlicit = QStringLiteral("Morate upisati redni broj različit od 0!");

Finding refusal(const QString& text, const QString& focus)
{
    return { text, focus, false, {}, Icon::Exclamation };
}
Finding warning(const QString& text, const QString& focus = {})
{
    return { text, focus, true, QStringLiteral("Napomena"), Icon::Exclamation };
}

bool wrongYear(const QDate& date, int workingYear)
{
    return date.year() != workingYear;
}

// Values of two result sets compared by meaning: amounts and numbers as amounts (an
// integer list column may show a currency column), dates as dates, the rest as text.
bool sameValue(const db::ResultSet& a, int rowA, int colA, const db::ResultSet& b, int rowB, int colB)
{
    const bool nullA = a.isNull(rowA, colA);
    if (nullA || b.isNull(rowB, colB))
        return nullA == b.isNull(rowB, colB);
    const db::FieldType ta = a.field(colA).type;
    const db::FieldType tb = b.field(colB).type;
    if (db::isNumeric(ta) && db::isNumeric(tb))
        return a.money(rowA, colA) == b.money(rowB, colB);
    if (ta == db::FieldType::Date && tb == db::FieldType::Date)
        return a.date(rowA, colA) == b.date(rowB, colB);
    return a.text(rowA, colA) == b.text(rowB, colB);
}

} // namespace

bool refuses(const Findings& findings)
{
    return !findings.isEmpty() && !findings.last().warning;
}

QStringList vrstaTexts(int bookKind)
{
    const books::BookKind* book = books::findBook(bookKind);
    return book ? book->editorKinds : QStringList();
}

int vrstaCode(const QString& text)
{
    const QString head = text.left(2).trimmed();
    int value = 0;
    for (QChar c : head) {
        if (!c.isDigit())
            break;
        value = value * 10 + c.digitValue();
    }
    return value;
}

int vrstaTyped(const QStringList& texts, const QString& digits)
{
    int begins = -1;
    for (int i = 0; i < texts.size(); ++i) {
        const int code = vrstaCode(texts[i]);
        if (code == 0)
            continue;
        const QString shown = QString::number(code);
        if (shown == digits)
            return i;
        if (begins < 0 && shown.startsWith(digits))
            begins = i;
    }
    return begins;
}

int vrstaPosition(int bookKind, int code)
{
    const books::BookKind* book = books::findBook(bookKind);
    if (!book)
        return -1;
    const books::KindPositions& k = book->kindPositions;
    if (k.split == 0) {
        for (int i = 0; i < book->editorKinds.size(); ++i)
            if (vrstaCode(book->editorKinds[i]) == code)
                return i;
        return -1;
    }
    const int position = code < k.split ? code - k.below : code - k.above;
    return position >= 0 && position < book->editorKinds.size() ? position : -1;
}

int matchingRow(const db::ResultSet& candidates, const db::ResultSet* list, int listRow)
{
    if (candidates.isEmpty())
        return -1;
    if (candidates.rowCount() == 1 || !list || listRow < 0 || listRow >= list->rowCount())
        return 0;
    QVector<std::pair<int, int>> shared; // (candidate column, list column)
    for (int c = 0; c < candidates.fieldCount(); ++c) {
        const int l = list->indexOf(candidates.field(c).name);
        if (l >= 0)
            shared.append({ c, l });
    }
    int best = 0;
    int bestScore = -1;
    for (int r = 0; r < candidates.rowCount(); ++r) {
        int score = 0;
        for (const auto& [c, l] : shared)
            score += sameValue(candidates, r, c, *list, listRow, l) ? 1 : 0;
        if (score > bestScore) {
            best = r;
            bestScore = score;
        }
    }
    return best;
}

db::ResultSet singleRow(const db::ResultSet& rs, int row)
{
    db::ResultSet out(rs.fields());
    if (row < 0 || row >= rs.rowCount())
        return out;
    out.appendRow();
    for (int c = 0; c < rs.fieldCount(); ++c) {
        if (rs.isNull(row, c))
            out.setNull(c);
        else
            out.set(c, rs.value(row, c));
    }
    return out;
}

QString entryTable(int bookKind)
{
    const books::BookKind* book = books::findBook(bookKind);
    return book ? book->table : QString();
}

QString readEntrySql(int bookKind, qint16 year, qint16 company, qint32 rbroj, qint32 shop)
{
    const QString tail = QStringLiteral(" AND RBroj=") + QString::number(rbroj);
    if (books::isTradeBook(bookKind))
        return QStringLiteral("SELECT * FROM ") + entryTable(bookKind) + QStringLiteral(" WHERE BROJPODUZECA=")
            + QString::number(company) + QStringLiteral(" AND GODINAKNJ=") + QString::number(year)
            + QStringLiteral("AND BrojProd=") + QString::number(shop) + tail;
    const QString table = entryTable(bookKind);
    if (table.isEmpty())
        return {};
    return QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" WHERE GODINAKNJ=") + QString::number(year)
        + QStringLiteral(" AND BROJPODUZECA=") + QString::number(company) + tail;
}

QString captionSuffix(int bookKind)
{
    const books::BookKind* book = books::findBook(bookKind);
    return book ? book->entryCaption : QString();
}

QString modeCaption(int mode, int bookKind)
{
    switch (mode) {
    case Novi:
        return QStringLiteral("Upis nove") + captionSuffix(bookKind);
    case Izmjena:
        return QStringLiteral("Izmjena") + captionSuffix(bookKind);
    case Pretrazivanje:
        return QStringLiteral("Pretraživanje");
    case Brisanje:
        return QStringLiteral("Brisanje") + captionSuffix(bookKind);
    default:
        return {};
    }
}

QString confirmCaption(int mode)
{
    switch (mode) {
    case Novi:
    case Izmjena:
        return QStringLiteral("Spremi");
    case Pretrazivanje:
        return QStringLiteral("Postavi filter");
    case Brisanje:
        return QStringLiteral("Obriši");
    default:
        return {};
    }
}

Money vatContained(Money gross)
{
    return gross.fraction(17, 117);
}

std::pair<QDate, QDate> searchPeriod(const QDate& today, int workingYear)
{
    QDate to = today;
    if (today.year() > workingYear)
        to = dates::lastOfYear(workingYear);
    QDate from = today.addDays(-30);
    if (from.year() > workingYear)
        from = dates::firstOfYear(workingYear);
    return { from, to };
}

QDate newEntryDate(const QDate& today, int workingYear)
{
    return workingYear < today.year() ? dates::lastOfYear(workingYear) : today;
}

Findings checkPrihRash(const PrihRashInput& in, int workingYear)
{
    if (in.rbroj <= 0)
        return { refusal(kRBrojVeci, QStringLiteral("ubRBroj")) };
    if (wrongYear(in.datum, workingYear))
        return { refusal(kGodina, QStringLiteral("dpDatum")) };
    if (in.isprava.trimmed().isEmpty())
        return { refusal(kIsprava, QStringLiteral("txtIsprava")) };
    if (vrstaCode(in.vrsta) == 0)
        return { refusal(QStringLiteral("Mora se upisati šifra vrste knj.promjene!"), QStringLiteral("cmbVrsta")) };
    if (in.iznos.isZero())
        return { refusal(kIznosNula, QStringLiteral("ubIznos")) };
    if (in.iznos.isNegative())
        return { warning(QStringLiteral("Unesena vrijednost je negativna, pažljivo! Podatak će se upisati!")) };
    return {};
}

Findings checkEvid(const EvidInput& in, int workingYear)
{
    if (in.rbroj <= 0)
        return { refusal(kRBrojVeci, QStringLiteral("ubRBroj")) };
    if (wrongYear(in.datum, workingYear))
        return { refusal(kGodina, QStringLiteral("dpDatum")) };
    if (in.komitent == 0)
        return { refusal(QStringLiteral("Mora se upisati šifra komitenta!"), QStringLiteral("txtKomitent")) };
    if (vrstaCode(in.vrsta) == 0)
        return { refusal(QStringLiteral("Mora se upisati šifra vrste!"), QStringLiteral("cboVrsta")) };
    Findings out;
    if (in.kpr == 0)
        out << warning(QStringLiteral("Bilo bi poželjno da se upiše redni broj u knjizi prihoda i rashoda! Podatak će "
                                      "se spremiti, ali pažljivo!"));
    if (in.isprava.trimmed().isEmpty())
        out << refusal(kIsprava, QStringLiteral("txtIsprava"));
    else if (in.iznos.isZero())
        out << refusal(kIznosNula, QStringLiteral("ubIznos"));
    return out;
}

Findings checkPopis(const PopisInput& in, int workingYear)
{
    if (wrongYear(in.datum, workingYear))
        return { refusal(kGodina, QStringLiteral("dpDatum")) };
    if (in.isprava.trimmed().isEmpty())
        return { refusal(kIsprava, QStringLiteral("txtBrojDokumenta")) };
    if (in.vijek <= 0)
        return { refusal(
            QStringLiteral("Vijek trajanja ne može biti 0 ili manji!"), QStringLiteral("ubVijekTrajanja")) };
    if (in.nabavna < in.knjigovodstvena)
        return { refusal(QStringLiteral("Nabavna vrijednost mora biti veća ili jednaka od knjigovodstvene!"),
            QStringLiteral("ubNabavna")) };
    // Titled "Napomena" as warnings are, yet they stop the save like every other check.
    if (in.nabavna <= Money())
        return { { QStringLiteral("Unesena vrijednost je negativna ili 0, pažljivo !"), QStringLiteral("ubNabavna"),
            false, QStringLiteral("Napomena"), Icon::Exclamation } };
    if (in.knjigovodstvena <= Money())
        return { { QStringLiteral("Unesena vrijednost je negativna ili 0 pažljivo !"),
            QStringLiteral("ubKnjigovodstvena"), false, QStringLiteral("Napomena"), Icon::Exclamation } };
    return {};
}

Findings checkPromet(const PrometInput& in, int workingYear)
{
    if (in.rbroj == 0)
        return { refusal(kRBrojRazlicit, QStringLiteral("ubRBroj")) };
    if (wrongYear(in.datum, workingYear))
        return { refusal(kGodina, QStringLiteral("dpDatum")) };
    if (in.isprava.trimmed().isEmpty())
        return { refusal(kIsprava, QStringLiteral("txtIsprava")) };
    if (in.cek.isZero() && in.gotovina.isZero())
        return { refusal(QStringLiteral("Jedan od iznosa mora biti različit od nule !"), {}) };
    if (in.gotovina.isNegative() || in.cek.isNegative())
        return { warning(QStringLiteral("Unesena vrijednost je negativna, pažljivo !")) };
    return {};
}

static Findings checkTrgHead(const TrgInput& in, int workingYear)
{
    if (in.skladiste.trimmed().isEmpty())
        return { refusal(QStringLiteral("Mora se upisati maloprodaja!"), QStringLiteral("txtSkladište")) };
    if (in.rbroj == 0)
        return { refusal(kRBrojRazlicit, QStringLiteral("ubRBroj")) };
    if (wrongYear(in.datum, workingYear))
        return { refusal(kGodina, QStringLiteral("dpDatum")) };
    return {};
}

Findings checkUsluga(const TrgInput& in, int workingYear)
{
    Findings out = checkTrgHead(in, workingYear);
    if (out.isEmpty() && in.iznos.isZero())
        out << refusal(kIznosNula, QStringLiteral("ubIznos"));
    return out;
}

Findings checkKomisiona(const TrgInput& in, int workingYear)
{
    Findings out = checkTrgHead(in, workingYear);
    if (out.isEmpty() && in.zaduzenje.isZero() && in.razduzenje.isZero())
        out << refusal(QStringLiteral("Bar jedan iznos mora biti različit od nule !"), {});
    return out;
}

Findings checkPrihRashRS(const PrihRashRSInput& in, int workingYear)
{
    if (in.rbroj == 0)
        return { refusal(kRBrojRazlicit, QStringLiteral("ubRBroj")) };
    if (wrongYear(in.datum, workingYear))
        return { refusal(kGodina, QStringLiteral("dpDatum")) };
    if (vrstaCode(in.vrsta) == 0)
        return { refusal(QStringLiteral("Mora se upisati šifra vrste!"), QStringLiteral("cboVrsta")) };
    if (in.iznos.isZero())
        return { refusal(kIznosNula, QStringLiteral("ubIznos")) };
    return {};
}

Findings checkSearchPeriod(const QDate& from, const QDate& to)
{
    if (from > to)
        return { { QStringLiteral("Početni datum računa računa veći od konačnog. Ispravite!"),
            QStringLiteral("dpDatum"), false, {}, Icon::None } };
    return {};
}

} // namespace knjige::editors
