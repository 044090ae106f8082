// The filter through the book's editor, the trade books' sales point question at every
// opening, the filter at opening, and the running totals panel under the grid.
#include "browser/BrowserRules.h"
#include "browser/widgets/TotalsPanelView.h"
#include "demo/DemoData.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjTrgovacke.h"
#include "session/SettingsStore.h"
#include "test_browser_fixture.h"
#include "test_editor_fixture.h"

#include <QLineEdit>
#include <QTreeWidget>
#include <algorithm>
#include <functional>
#include <tuple>

using namespace knjige;
using namespace knjige::test;

namespace
{

class FilterTest : public BrowserTest
{
protected:
    // Answers every editor: a filter form is filled by `fill` and confirmed (cancelled
    // when `fill` returns false); any other mode is only recorded and cancelled.
    void answer(std::function<bool(editors::RecordEditor&)> fill)
    {
        script->onDialog = [this, fill](QDialog& d) {
            auto* e = dynamic_cast<editors::RecordEditor*>(&d);
            if (!e || e->TipRada() != 3) {
                other = e ? e->TipRada() : -1;
                if (auto* trg = dynamic_cast<editors::TrgKnjigaEditor*>(&d))
                    proposed = { trg->txtSkladište->text(), trg->ubRBroj->integerValue() };
                return int(QDialog::Rejected);
            }
            ++filters;
            // The ordinal number is hidden with its caption; the RS link cannot be edited.
            EXPECT_TRUE(e->ubRBroj->isHidden());
            for (QLabel* label : e->findChildren<QLabel*>())
                EXPECT_TRUE(label->buddy() != e->ubRBroj || label->isHidden());
            if (QWidget* kpr = e->control("ubKPR")) {
                EXPECT_EQ(kpr->isEnabled(), e->TipSifarnika() != 102);
            }
            if (!fill(*e))
                return int(QDialog::Rejected);
            e->cmdSpremi->click();
            return e->result();
        };
    }
    // The panel's rows, cells joined by "|" and rows by new lines.
    static std::string panel(browser::frmSifarnikKnj& w)
    {
        auto* list = w.findChild<QTreeWidget*>("lvStanje");
        QStringList rows;
        for (int r = 0; r < list->topLevelItemCount(); ++r) {
            QStringList cells;
            for (int c = 0; c < list->columnCount(); ++c)
                cells << list->topLevelItem(r)->text(c);
            rows << cells.join(u'|');
        }
        return rows.join(u'\n').toStdString();
    }
    static std::string rows(const QList<std::pair<QString, QList<double>>>& expected)
    {
        QStringList out;
        for (const auto& [label, values] : expected) {
            QStringList cells { label };
            for (double v : values)
                cells << browser::formatMoney(Money::fromDouble(v), QLocale(QLocale::Bosnian));
            out << cells.join(u'|');
        }
        return out.join(u'\n').toStdString();
    }
    QString filterLine(browser::frmSifarnikKnj& w) { return w.findChild<QLineEdit*>("txtFilter")->text(); }

    int filters = 0;
    int other = 0;
    std::pair<QString, qint64> proposed;
};

} // namespace

// Tried on a workstation whose locale is C: grid, panel and filter line still write
// amounts the Bosnian way.
TEST_F(FilterTest, TheDialogNarrowsTheGridSetsThePeriodAndRebuildsThePanel)
{
    struct CLocale {
        CLocale() { QLocale::setDefault(QLocale::c()); }
        ~CLocale() { QLocale::setDefault(QLocale(QLocale::Bosnian, QLocale::BosniaAndHerzegovina)); }
    } workstation;
    addPrihRash(1, 2016, 1, { 2016, 1, 10 }, 11, 117, 17, "O'Brien siječanj");
    addPrihRash(1, 2016, 2, { 2016, 2, 29 }, 16, 50, 5);
    addPrihRash(1, 2016, 3, { 2016, 3, 1 }, 12, 20, 2, "O'Brien ožujak");
    addPrihRash(1, 2016, 4, { 2016, 3, 31 }, 19, 10, 0);
    addPrihRash(1, 2016, 5, { 2016, 4, 1 }, 11, 1000, 0, "O'Brien travanj");
    auto w = open(96);
    EXPECT_EQ(w->model().displayText(0, 7) + " " + w->model().displayText(1, 1), "1.137,00 2.016");
    EXPECT_EQ(panel(*w),
        rows({ { "Pr.od 01.01.16 do 12.31.16", { 1117, 20, 0, 19, 1118, 50, 0, 0, 10, 5, 55 } },
            { "Ukupno:", { 1117, 20, 0, 19, 1118, 50, 0, 0, 10, 5, 55 } } }));

    // Nothing filled in: the year from its first day, every entry, both lines reset.
    answer([](editors::RecordEditor&) { return true; });
    w->fg_KeyDown(Qt::Key_F3);
    EXPECT_EQ(w->query().filter.where, " WHERE K.BrojPoduzeca=1 AND  K.Datum>='01.01.2016' AND K.GodinaKnj=2016");
    EXPECT_EQ(filterLine(*w), "Filter : Period od 01.01.16");
    EXPECT_EQ(rBrojevi(*w), (QList<qint64> { 1, 2, 3, 4, 5 }));

    // March and a description with an apostrophe: one row, its totals, the panel of
    // the period with the months before it.
    answer([](editors::RecordEditor& e) {
        return set(e, "dpDatum=2016-03-01;dpDatumDo=2016-03-31;txtOpis=O'Brien;ubIznos=20;ubIznosPDV=2"), true;
    });
    w->mnu_Click(4);
    EXPECT_EQ(rBrojevi(*w), QList<qint64> { 3 });
    EXPECT_EQ(w->query().filter.description, "Period od 01.03.16 do 31.03.16,Opis: O'Brien...',Iznos: 20,00,PDV: 2,00");
    EXPECT_EQ(filterLine(*w), "Filter : " + w->query().filter.description);
    EXPECT_EQ(std::pair(w->query().filter.periodStart, w->query().filter.periodEnd),
        std::pair(QDate(2016, 3, 1), QDate(2016, 3, 31)));
    EXPECT_EQ(w->model().total(8), Money::fromWhole(20));
    auto* lv = w->findChild<QTreeWidget*>("lvStanje");
    EXPECT_EQ(lv->headerItem()->text(0) + lv->headerItem()->text(11), " 21. Ukupni rashodi");
    EXPECT_GE(lv->columnWidth(1), browser::twipsToPixels(1200, lv->logicalDpiX()));
    EXPECT_EQ(panel(*w),
        rows({ { "Promet do 29.02.16", { 117, 0, 0, 17, 100, 50, 0, 0, 0, 5, 45 } },
            { "Pr.od 01.03.16 do 03.31.16", { 0, 20, 0, 2, 18, 0, 0, 0, 10, 0, 10 } },
            { "Ukupno:", { 117, 20, 0, 19, 118, 50, 0, 0, 10, 5, 55 } } }));

    // Cancelled: the rows and the clause stay, description and period start over. The
    // form opened with the filter in force.
    const QString where = w->query().filter.where;
    answer([](editors::RecordEditor& e) {
        EXPECT_TRUE(e.chkPoDatumima->isChecked());
        EXPECT_EQ(
            values(e, "dpDatum;dpDatumDo;txtOpis;cmbVrsta;ubIznos;ubIznosPDV"), "2016-03-01|2016-03-31|O'Brien||20|2");
        return false;
    });
    w->PostaviFilter();
    EXPECT_EQ(rBrojevi(*w), QList<qint64> { 3 });
    EXPECT_EQ(w->query().filter.where + w->query().filter.description + filterLine(*w), where + "Filter: Svi");
    EXPECT_EQ(std::pair(w->query().filter.periodStart, w->query().filter.periodEnd),
        std::pair(QDate(2016, 1, 1), QDate(2016, 12, 31)));
    EXPECT_EQ(filters, 3);

    // With the option set, the next opening asks first.
    settings::setFlag(settings::sharedApplication(), settings::section(), "PostaviFilterNaPočetku", true);
    answer([](editors::RecordEditor& e) { return set(e, "txtIsprava=D-4"), true; });
    auto again = open(96);
    EXPECT_EQ(filters, 4);
    EXPECT_EQ(rBrojevi(*again), QList<qint64> { 4 });
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();
}

TEST_F(FilterTest, TradeBooksAskForTheSalesPointEveryTextFieldTakesAnApostropheAndAPanelFailureIsTold)
{
    ASSERT_TRUE(fillDemo(db->db(), 2016));
    // Cancelled at the opening, nothing is loaded: neither every shop's rows nor the
    // totals of none.
    answer([](editors::RecordEditor&) { return false; });
    EXPECT_EQ(
        open(126)->rsStavke().rowCount() + open(125)->findChild<QTreeWidget*>("lvStanje")->topLevelItemCount(), 0);
    answer([](editors::RecordEditor& e) { return e.setShop(demo::Maloprodaja2), true; });
    for (int kind : { 125, 126, 125 }) {
        const int before = filters;
        auto w = open(kind);
        EXPECT_EQ(filters, before + 1) << kind;
        EXPECT_EQ(w->BrojProd(), demo::Maloprodaja2);
        const db::ResultSet& rs = w->rsStavke();
        const int shop = rs.indexOf("BrojProd");
        ASSERT_GT(rs.rowCount(), 0);
        for (int r = 0; r < rs.rowCount(); ++r)
            EXPECT_EQ(rs.integer(r, shop), demo::Maloprodaja2);
        EXPECT_TRUE(w->query().filter.description.contains("Broj prod.: 502 "));
        // The panel's year total is the grid's total: the filter is the whole year.
        const QStringList lines = QString::fromStdString(panel(*w)).split(u'\n');
        ASSERT_EQ(lines.size(), 2);
        EXPECT_EQ(lines[1].section(u'|', 0, 1), "UKUPNO:|" + browser::formatMoney(*w->model().total(5), QLocale()));
        auto* total = w->findChild<QTreeWidget*>("lvStanje")->topLevelItem(1);
        EXPECT_TRUE(total->font(0).bold() && total->font(1).bold());
        EXPECT_EQ(total->font(2).bold(), kind == 126);
        // A new entry is proposed in the remembered shop with its next number.
        w->NoviZapis();
        EXPECT_EQ(other, 1);
        EXPECT_EQ(proposed.first, QString::number(demo::Maloprodaja2));
        const QList<qint64> numbers = rBrojevi(*w);
        EXPECT_EQ(proposed.second, *std::max_element(numbers.begin(), numbers.end()) + 1);
    }

    // An apostrophe in every book's text field finds its rows.
    const int partner = int(db->query("SELECT MIN(SifKomit) AS S FROM dbo.Komitent").integer(0, 0));
    // Each book's text box the filter searches with, by kind; the column is the box's
    // name without its prefix, the asset name's "Naziv".
    const std::pair<int, QString> cases[] = { { 96, "txtIsprava" }, { 109, "txtOpis" }, { 97, "txtIsprava" },
        { 102, "txtOpis" }, { 98, "txtIsprava" }, { 106, "txtOpis" }, { 99, "txtOpis" }, { 100, "txtOpis" },
        { 105, "txtNazivSredstva" }, { 125, "txtOpis" }, { 101, "txtNazivSredstva" }, { 126, "txtOpis" } };
    for (const auto& [kind, control] : cases) {
        const QString column = control == "txtNazivSredstva" ? QStringLiteral("Naziv") : control.mid(3);
        db::RowChange::Values more = { { column, "O'Brien d.o.o." }, { "SifKomit", partner } };
        add(kind, 9000 + kind, kind == 97 || kind == 102 ? more : more.mid(0, 1));
        answer([&](editors::RecordEditor& e) {
            e.setShop(demo::Maloprodaja1);
            return set(e, control + "=O'B"), true;
        });
        auto w = open(kind);
        w->PostaviFilter();
        const QList<qint64> found = rBrojevi(*w);
        // The RS asset list takes its pattern from the hidden name box: every named asset.
        if (kind == 101)
            EXPECT_TRUE(found.contains(9101) && found.size() > 1);
        else
            EXPECT_EQ(found, QList<qint64> { 9000 + kind }) << kind;
    }
    EXPECT_TRUE(script->messages.isEmpty()) << script->texts().join(u'\n').toStdString();

    // A kind without a panel shows it empty; a panel read failure is reported.
    QTreeWidget list;
    EXPECT_TRUE(browser::osvjeziPanel(list, browser::commandQuery(97, 1, 2016, {})));
    EXPECT_TRUE(list.columnCount() == 1 && list.topLevelItemCount() == 0 && list.isVisible());
    db->exec("DROP TABLE dbo.TrgKnjKomisiona");
    EXPECT_FALSE(browser::osvjeziPanel(
        list, browser::commandQuery(126, 1, 2016, std::pair(QDate(2016, 3, 1), QDate(2016, 3, 31)), 3)));
    EXPECT_TRUE(list.columnCount() == 3 && list.topLevelItemCount() == 0);
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(script->messages[0].text, "Desila se greška: u čitanju podataka o prethodnom periodu!");
    EXPECT_EQ(script->messages[0].icon, Icon::Exclamation);
}
