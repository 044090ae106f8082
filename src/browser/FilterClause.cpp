#include "browser/FilterClause.h"

#include "books/BookKind.h"
#include "browser/BookModel.h"
#include "browser/BrowserRules.h"
#include "session/Dates.h"

#include <QRegularExpression>

namespace knjige::browser
{
namespace
{

// Text typed by the operator inside a SQL string literal.
QString quoted(const QString& text)
{
    QString out = text;
    out.replace(u'\'', QStringLiteral("''"));
    return out;
}

// The leading number of a text, as the partner and document fields are read: blanks
// before it, a sign, digits and a decimal part; "0" when the text starts otherwise.
// Written back in plain decimal without leading or trailing zeros.
QString leadingNumber(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*([+-]?)(\\d*)(?:\\.(\\d*))?"));
    const QRegularExpressionMatch m = number.match(text);
    QString whole = m.captured(2);
    QString fraction = m.captured(3);
    while (whole.size() > 1 && whole.startsWith(u'0'))
        whole.remove(0, 1);
    while (fraction.endsWith(u'0'))
        fraction.chop(1);
    if (whole.isEmpty())
        whole = QStringLiteral("0");
    QString out = fraction.isEmpty() ? whole : whole + u'.' + fraction;
    if (m.captured(1) == QStringLiteral("-") && out != QStringLiteral("0"))
        out.prepend(u'-');
    return out;
}

// Gathers the conditions and their description in the order they are added.
class Gatherer
{
public:
    Gatherer(FilterState& state, const QLocale& locale)
        : m_state(state)
        , m_locale(locale)
    {
    }

    void add(const QString& condition, const QString& piece)
    {
        if (!m_state.conditions.isEmpty())
            m_state.conditions += QStringLiteral(" AND ");
        m_state.conditions += condition;
        if (!m_state.description.isEmpty())
            m_state.description += u',';
        m_state.description += piece;
    }

    // A prefix match. `test` decides whether the condition is taken; the pattern comes
    // from `pattern`, which is the same text for every field but the RS asset name.
    void prefix(const QString& test, const QString& pattern, const char* column, const QString& label)
    {
        if (test.trimmed().isEmpty())
            return;
        const QString p = pattern.trimmed();
        add(QStringLiteral(" K.") + QLatin1String(column) + QStringLiteral(" LIKE '") + quoted(p)
                + QStringLiteral("%'"),
            label + p + QStringLiteral("...'"));
    }
    void prefix(const QString& text, const char* column, const QString& label) { prefix(text, text, column, label); }

    // The entry kind's code: the first two characters of the list text.
    void kindCode(const QString& listText)
    {
        const QString code = listText.left(2).trimmed();
        if (code.isEmpty())
            return;
        add(QStringLiteral(" K.Vrsta LIKE '") + quoted(code) + QStringLiteral("%'"),
            QStringLiteral("Vrsta: ") + code + QStringLiteral("...'"));
    }

    // A code typed as text, compared for equality. `name` follows the number in the
    // description when given.
    void number(const QString& text, const char* column, const QString& label, const QString* name = nullptr)
    {
        if (text.trimmed().isEmpty())
            return;
        const QString n = leadingNumber(text);
        add(QStringLiteral(" K.") + QLatin1String(column) + u'=' + n,
            label + n + (name ? QStringLiteral(" ") + *name : QString()));
    }

    // An amount compared for equality; 0 is never a condition. The number goes into
    // the SQL in plain decimal with a blank before a value that is not negative.
    void amount(Money value, const char* column, const QString& label, bool whole = false)
    {
        if (value.isZero())
            return;
        const QString sql = (value.isNegative() ? QString() : QStringLiteral(" ")) + value.toPlainString();
        const QString shown
            = whole ? formatWhole(value.units() / Money::Scale, m_locale) : formatMoney(value, m_locale);
        add(QStringLiteral(" K.") + QLatin1String(column) + u'=' + sql, label + shown);
    }

private:
    FilterState& m_state;
    const QLocale& m_locale;
};

void periodCondition(FilterState& s, Gatherer& g, qint16 year, const FilterInput& in)
{
    const QString godina = QStringLiteral("' AND K.GodinaKnj=") + QString::number(year);
    if (in.chkPoDatumima) {
        s.periodStart = in.dpDatum;
        s.periodEnd = in.dpDatumDo;
        g.add(QStringLiteral(" K.Datum>='") + dates::sqlLiteral(in.dpDatum) + QStringLiteral("' AND K.Datum<='")
                + dates::sqlLiteral(in.dpDatumDo) + godina,
            QStringLiteral("Period od ") + dates::display(in.dpDatum) + QStringLiteral(" do ")
                + dates::display(in.dpDatumDo));
        return;
    }
    // No upper bound: the whole year from its first day.
    g.add(QStringLiteral(" K.Datum>='") + dates::sqlLiteral(s.periodStart) + godina,
        QStringLiteral("Period od ") + dates::display(s.periodStart));
}

void kindConditions(int bookKind, FilterState& s, Gatherer& g, const FilterInput& in)
{
    const books::BookKind* book = books::findBook(bookKind);
    if (!book)
        return;
    switch (book->family) {
    case books::BookFamily::IncomeExpense:
        g.prefix(in.txtIsprava, "Isprava", QStringLiteral("Isprava: "));
        g.prefix(in.txtOpis, "Opis", QStringLiteral("Opis: "));
        g.kindCode(in.vrsta);
        g.amount(in.ubIznos, "Iznos", QStringLiteral("Iznos: "));
        g.amount(in.ubIznosPDV, "IznosPDV", QStringLiteral("PDV: "));
        break;
    case books::BookFamily::Receivables:
        g.prefix(in.txtIsprava, "Isprava", QStringLiteral("Isprava: "));
        g.prefix(in.txtOpis, "Opis", QStringLiteral("Opis: "));
        g.number(in.txtKomitent, "SifKomit", QStringLiteral("Šifra komitenta: "),
            bookKind == Knjiga::EvidPotObvRS ? &in.imeKomitenta : nullptr);
        g.kindCode(in.vrsta);
        g.amount(in.ubKPR, "RBrojKPR", QStringLiteral("Br. Knjige p. i r.: "), true);
        g.amount(in.ubIznos, "Iznos", QStringLiteral("iznos: "));
        break;
    case books::BookFamily::Turnover:
        g.prefix(in.txtIsprava, "Isprava", QStringLiteral("Isprava: "));
        g.prefix(in.txtOpis, "Opis", QStringLiteral("Opis: "));
        g.amount(in.ubGotovina, "IznosGot", QStringLiteral("Gotovina: "));
        g.amount(in.ubCek, "IznosCek", QStringLiteral("Cek: "));
        break;
    case books::BookFamily::IncomeOrExpense:
        g.prefix(in.txtOpis, "Opis", QStringLiteral("Opis: "));
        g.kindCode(in.vrsta);
        g.amount(in.ubIznos, "Iznos", QStringLiteral("Iznos: "));
        g.amount(in.ubIznosPDV, "IznosPDV", QStringLiteral("PDV: "));
        break;
    case books::BookFamily::AssetList:
        g.prefix(in.txtNazivSredstva, bookKind == Knjiga::PopListaRS ? in.txtNaziv : in.txtNazivSredstva, "Naziv",
            QStringLiteral("Naziv: "));
        g.number(in.txtBrojDokumenta, "Isprava", QStringLiteral("Isprava: "));
        g.amount(in.ubNabavna, "NabVrijednost", QStringLiteral("Nabavna: "));
        g.amount(in.ubKnjigovodstvena, "KnjigVrijednost", QStringLiteral("Knjigovodstvena: "));
        g.amount(in.ubVijekTrajanja, "VijekTr", QStringLiteral("Vijek trajanja: "), true);
        break;
    case books::BookFamily::Trade:
        if (in.prodavnica != 0) {
            s.salesPoint = in.prodavnica;
            g.add(QStringLiteral(" K.BrojProd=") + QString::number(in.prodavnica),
                QStringLiteral("Broj prod.: ") + QString::number(in.prodavnica) + u' ' + in.imeProdavnice);
        }
        g.prefix(in.txtOpis, "Opis", QStringLiteral("Opis: "));
        if (bookKind == Knjiga::TrgUsluga) {
            g.amount(in.ubIznos, "Iznos", QStringLiteral("Iznos naknade: "));
        } else {
            g.amount(in.ubZaduženje, "Zaduzenje", QStringLiteral("Iznos zaduzenja: "));
            g.amount(in.ubRazduženje, "Razduzenje", QStringLiteral("Iznos razduzenja: "));
        }
        break;
    }
}

} // namespace

bool isFilterable(int bookKind)
{
    return books::findBook(bookKind) != nullptr;
}

FilterState buildFilter(int bookKind, qint16 company, qint16 year, const FilterInput& input, const QLocale& locale)
{
    FilterState s;
    s.periodStart = periodStart(year);
    s.periodEnd = periodEnd(year);
    Gatherer g(s, locale);
    periodCondition(s, g, year, input);
    kindConditions(bookKind, s, g, input);
    const QString firma = QString::number(company);
    if (!s.conditions.trimmed().isEmpty()) {
        s.where = QStringLiteral(" WHERE K.BrojPoduzeca=") + firma + QStringLiteral(" AND ") + s.conditions;
    } else {
        s.where = QStringLiteral(" where K.BrojPoduzeca=") + firma;
        s.conditions.clear();
    }
    return s;
}

FilterState periodFilter(int bookKind, const QDate& from, const QDate& to, qint16 company, qint16 year,
    qint32 salesPoint, const QString& salesPointName)
{
    FilterInput in;
    in.chkPoDatumima = true;
    in.dpDatum = from;
    in.dpDatumDo = to;
    if (books::isTradeBook(bookKind)) {
        in.prodavnica = salesPoint;
        in.imeProdavnice = salesPointName;
    }
    return buildFilter(bookKind, company, year, in);
}

QString filterLine(const QString& description)
{
    return description.isEmpty() ? QStringLiteral("Filter: Svi") : QStringLiteral("Filter : ") + description;
}

std::optional<std::pair<QDate, QDate>> parsePeriod(const QString& text, int year, QString* error)
{
    auto fail = [&](const QString& why) -> std::optional<std::pair<QDate, QDate>> {
        if (error)
            *error = why;
        return std::nullopt;
    };
    static const QRegularExpression form(
        QStringLiteral("^\\s*(\\d{1,2}\\.\\d{1,2}\\.\\d{4})\\s*-\\s*(\\d{1,2}\\.\\d{1,2}\\.\\d{4})\\s*$"));
    const QRegularExpressionMatch m = form.match(text);
    if (!m.hasMatch())
        return fail(QStringLiteral("Neispravan period \"%1\": zadajte ga kao dd.mm.gggg-dd.mm.gggg, "
                                   "na primjer 01.03.2026-31.03.2026.")
                        .arg(text));
    const QDate from = dates::parseDayFirst(m.captured(1));
    const QDate to = dates::parseDayFirst(m.captured(2));
    if (!from.isValid())
        return fail(QStringLiteral("Neispravan početni datum perioda: %1").arg(m.captured(1)));
    if (!to.isValid())
        return fail(QStringLiteral("Neispravan završni datum perioda: %1").arg(m.captured(2)));
    if (from > to)
        return fail(
            QStringLiteral("Početni datum perioda (%1) je iza završnog (%2).").arg(m.captured(1), m.captured(2)));
    // SQL Server's datetime starts there; an earlier date would fail only in the query.
    if (from < QDate(1753, 1, 1))
        return fail(QStringLiteral("Početni datum perioda (%1) je prije 01.01.1753, najranijeg datuma koji baza prima.")
                        .arg(m.captured(1)));
    if (year != 0 && (to < dates::firstOfYear(year) || from > dates::lastOfYear(year)))
        return fail(QStringLiteral("Period %1-%2 nije u radnoj godini %3.")
                        .arg(m.captured(1), m.captured(2), QString::number(year)));
    return std::make_pair(from, to);
}

} // namespace knjige::browser
