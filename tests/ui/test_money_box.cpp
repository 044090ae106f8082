// The number boxes as people type and paste into them on Bosnian and English
// workstations, and what the editors do with what the boxes could not read.
#include "editors/widgets/MoneyBox.h"
#include "test_editor_fixture.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

using namespace knjige;
using namespace knjige::test;

namespace
{

const QLocale kBosnian(QLocale::Bosnian, QLocale::BosniaAndHerzegovina);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);
const QLocale kC = QLocale::c();

enum class Way { Type, Paste, Keypad };

struct Case {
    const QLocale& locale;
    Way way;
    const char* input;
    qint64 units; // the value afterwards (0 when nothing was taken)
    const char* shown; // the text once the box is left
    bool marked; // refused or unreadable: a visible sign and a reason
    bool whole = false;
};

void enter(editors::MoneyBox* box, Way way, const QString& input)
{
    box->setFocus();
    box->selectAll();
    if (way == Way::Paste) {
        QApplication::clipboard()->setText(input);
        QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
        return;
    }
    for (QChar c : input) {
        if (way == Way::Keypad && (c == u'.' || c == u','))
            QTest::keyClick(box, Qt::Key_Period, Qt::KeypadModifier);
        else
            QTest::keyClicks(box, QString(c));
    }
}

} // namespace

TEST(MoneyBoxInput, TypedAndPastedNumbersFollowTheWorkstation)
{
    const Case cases[] = {
        { kBosnian, Way::Type, "1.234,56", 12345600, "1.234,56", false },
        { kBosnian, Way::Paste, "1.234,56", 12345600, "1.234,56", false },
        { kBosnian, Way::Type, "12.500", 125000000, "12.500,00", false },
        { kBosnian, Way::Paste, "-0,5", -5000, "-0,50", false },
        { kBosnian, Way::Keypad, "12.5", 125000, "12,50", false },
        { kBosnian, Way::Type, "1,234.56", 12300, "1,23", true }, // the fourth decimal digit refused
        { kBosnian, Way::Paste, "1,234.56", 0, "0,00", true }, // the paste refused whole
        { kBosnian, Way::Type, "1234567890123", 1234567890120000, "123.456.789.012,00", true },
        { kBosnian, Way::Type, "1.2", 10000, "1.2", true }, // left incomplete, kept as typed
        { kBosnian, Way::Type, "0,5", 0, "0,5", true, true }, // no fractions in a whole number
        { kC, Way::Type, "1.234,56", 12345600, "1.234,56", false }, // C: the Bosnian form
        { kEnglish, Way::Type, "1,234.56", 12345600, "1,234.56", false },
        { kEnglish, Way::Paste, "1.234,56", 0, "0.00", true },
        { kEnglish, Way::Type, "12.500", 125000, "12.50", true },
        { kEnglish, Way::Type, "-0,5", 0, "-0,5", true },
        { kEnglish, Way::Paste, "123456789012.99", 1234567890129900, "123,456,789,012.99", false },
    };
    for (const Case& c : cases) {
        QWidget window;
        window.setLocale(c.locale);
        QVBoxLayout layout(&window);
        auto* box = new editors::MoneyBox(&window, c.whole);
        layout.addWidget(box);
        layout.addWidget(new QLineEdit(&window)); // where the Tab goes
        window.show();
        QApplication::setActiveWindow(&window);
        enter(box, c.way, QString::fromUtf8(c.input));
        QTest::keyClick(box, Qt::Key_Tab);
        EXPECT_EQ(box->value().units(), c.units) << c.input << " " << int(c.way);
        EXPECT_EQ(box->text(), QString::fromUtf8(c.shown)) << c.input << " " << int(c.way);
        EXPECT_EQ(box->problem().isEmpty(), !c.marked) << c.input << " " << int(c.way);
        EXPECT_EQ(box->toolTip(), box->problem()) << c.input;
    }
}

class NumberEditors : public EditorTest
{
protected:
    static std::unique_ptr<editors::RecordEditor> newEntry(int book)
    {
        auto e = editor(book, 1);
        // The number as the browser proposes it.
        set(*e,
            QString("ubRBroj=4;dpDatum=2016-04-01;") + (book == 105 ? "txtBrojDokumenta" : "txtIsprava") + "=KIF-1");
        return e;
    }
};

TEST_F(NumberEditors, WhatABoxCouldNotReadIsRefusedOnSave)
{
    auto a = newEntry(105);
    auto* vijek = qobject_cast<editors::MoneyBox*>(a->control("ubVijekTrajanja"));
    run(*a, [&] {
        set(*a, "ubNabavna=900;ubKnjigovodstvena=900");
        enter(vijek, Way::Type, "0,5");
        a->cmdSpremi->click();
        EXPECT_EQ(texts(),
            QStringList { "Broj \"0,5\" nije moguće pročitati.\nOvdje se upisuje cijeli broj, bez decimala." });
        EXPECT_EQ(focusOf(*a), "ubVijekTrajanja");
        enter(vijek, Way::Type, "5");
        a->cmdSpremi->click();
    });
    EXPECT_EQ(rows("SELECT VijekTr FROM dbo.KnjPopListaDugImovFBiH").integer(0, 0), 5);

    // A refused keystroke leaves less than was typed: the save waits for a correction.
    auto e = newEntry(96);
    script->messages.clear();
    run(*e, [&] {
        set(*e, "cmbVrsta=#0");
        enter(qobject_cast<editors::MoneyBox*>(e->control("ubIznos")), Way::Type, "1,234.56");
        e->cmdSpremi->click();
        EXPECT_TRUE(texts().value(0).startsWith("Dio upisa u polje nije prihvaćen (ostalo je \"1,23\")"));
    });
    EXPECT_EQ(count("dbo.KnjPrihRashFBiH"), 0);

    // A partner's code takes digits only, and a refused key says so.
    auto r = newEntry(97);
    auto* komitent = qobject_cast<QLineEdit*>(r->control("txtKomitent"));
    run(*r, [&] {
        komitent->setFocus();
        QTest::keyClicks(komitent, "1.2");
        EXPECT_EQ(komitent->text(), "12");
        EXPECT_TRUE(QToolTip::text().startsWith("Šifra je cijeli broj"));
    });
}

TEST_F(NumberEditors, AProposedNumberTakenMeanwhileIsReplacedAndReported)
{
    for (const bool typed : { false, true }) {
        exec("DELETE FROM dbo.KnjPrihRashFBiH");
        script->messages.clear();
        auto e = newEntry(96);
        run(*e, [&] {
            if (typed)
                enter(e->ubRBroj, Way::Type, "4");
            set(*e, "cmbVrsta=#0;ubIznos=50");
            // Another operator saves numbers 4 and 5 while the dialog is open.
            exec("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,GodinaKnj,Isprava) "
                 "VALUES (1,4,2016,'Tuđa'),(1,5,2016,'Tuđa')");
            e->cmdSpremi->click();
        });
        const db::ResultSet mine = rows("SELECT RBroj FROM dbo.KnjPrihRashFBiH WHERE Isprava='KIF-1'");
        ASSERT_EQ(mine.rowCount(), 1);
        EXPECT_EQ(mine.integer(0, 0), typed ? 4 : 6) << "a number the operator typed is kept";
        EXPECT_EQ(e->spremljeniRBroj(), typed ? 4 : 6);
        EXPECT_EQ(texts(),
            typed ? QStringList {}
                  : QStringList { "Redni broj 4 je u međuvremenu dobila stavka koju je upisao drugi "
                                  "korisnik.\nOva stavka je spremljena pod sljedećim slobodnim rednim "
                                  "brojem: 6." });
        EXPECT_EQ(lastMessage().title, typed ? QString() : "Napomena");
    }
}
