// The number boxes as people type and paste into them on Bosnian and English
// workstations, and what the editors do with what the boxes could not read.
#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "editors/widgets/frmKnjPRashFBiHPregled.h"
#include "editors/widgets/frmPopListaDImovineFBiH.h"
#include "session/Session.h"
#include "test_editor_fixture.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QVBoxLayout>

using namespace knjige;
using namespace knjige::test;

namespace
{

const QLocale kBosnian(QLocale::Bosnian, QLocale::BosniaAndHerzegovina);
const QLocale kEnglish(QLocale::English, QLocale::UnitedStates);

enum class Way { Type, Paste, Keypad };

struct Case {
    const QLocale& locale;
    Way way;
    const char* input;
    qint64 units;      // the value afterwards (0 when nothing was taken)
    const char* shown; // the text once the box is left
    bool marked;       // refused or unreadable: a visible sign and a reason
    bool whole = false;
};

void enter(MoneyBox* box, Way way, const QString& input)
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
        {kBosnian, Way::Type, "1.234,56", 12345600, "1.234,56", false},
        {kBosnian, Way::Paste, "1.234,56", 12345600, "1.234,56", false},
        {kBosnian, Way::Type, "12.500", 125000000, "12.500,00", false},
        {kBosnian, Way::Paste, "-0,5", -5000, "-0,50", false},
        {kBosnian, Way::Keypad, "12.5", 125000, "12,50", false},
        {kBosnian, Way::Type, "1,234.56", 12300, "1,23", true},    // the fourth decimal digit refused
        {kBosnian, Way::Paste, "1,234.56", 0, "0,00", true},       // the paste refused whole
        {kBosnian, Way::Type, "1234567890123", 1234567890120000, "123.456.789.012,00", true},
        {kBosnian, Way::Paste, "1234567890123", 0, "0,00", true},
        {kBosnian, Way::Type, "1.2", 10000, "1.2", true},          // left incomplete, kept as typed
        {kBosnian, Way::Type, "0,5", 0, "0,5", true, true},        // no fractions in a whole number
        {kBosnian, Way::Type, "1.234", 12340000, "1.234", false, true},
        {kEnglish, Way::Type, "1,234.56", 12345600, "1,234.56", false},
        {kEnglish, Way::Paste, "1.234,56", 0, "0.00", true},
        {kEnglish, Way::Type, "12.500", 125000, "12.50", true},
        {kEnglish, Way::Type, "-0,5", 0, "-0,5", true},
        {kEnglish, Way::Keypad, "-0.5", -5000, "-0.50", false},
        {kEnglish, Way::Paste, "123456789012.99", 1234567890129900, "123,456,789,012.99", false},
    };
    for (const Case& c : cases) {
        QWidget window;
        window.setLocale(c.locale);
        auto* layout = new QVBoxLayout(&window);
        auto* box = new MoneyBox(&window, c.whole);
        auto* next = new QLineEdit(&window);
        layout->addWidget(box);
        layout->addWidget(next);
        window.show();
        QApplication::setActiveWindow(&window);
        const QString what = QStringLiteral("%1 %2 \"%3\"").arg(c.locale.name()).arg(int(c.way)).arg(c.input);
        enter(box, c.way, QString::fromUtf8(c.input));
        QTest::keyClick(box, Qt::Key_Tab);
        EXPECT_EQ(box->value().units(), c.units) << what.toStdString();
        EXPECT_EQ(box->text(), QString::fromUtf8(c.shown)) << what.toStdString();
        EXPECT_EQ(!box->problem().isEmpty(), c.marked) << what.toStdString() << " " << box->problem().toStdString();
        EXPECT_EQ(box->toolTip(), box->problem()) << what.toStdString();
    }
}

using NumberEditors = EditorTest;

TEST_F(NumberEditors, WhatABoxCouldNotReadIsRefusedOnSave)
{
    auto a = std::unique_ptr<frmPopListaDImovineFBiH>(
        static_cast<frmPopListaDImovineFBiH*>(createEditor(105).release()));
    a->setTipRada(1);
    a->setPTip(105);
    run(*a, [&] {
        a->dpDatum->setDate(QDate(2016, 4, 1));
        a->txtBrojDokumenta->setText(QStringLiteral("UR-1"));
        a->ubNabavna->setValue(Money::fromWhole(900));
        a->ubKnjigovodstvena->setValue(Money::fromWhole(900));
        enter(a->ubVijekTrajanja, Way::Type, QStringLiteral("0,5"));
        a->cmdSpremi->click();
        EXPECT_EQ(texts(), QStringList{QStringLiteral("Broj \"0,5\" nije moguće pročitati.\n"
                                                      "Ovdje se upisuje cijeli broj, bez decimala.")});
        EXPECT_EQ(focusOf(*a), QStringLiteral("ubVijekTrajanja"));
        EXPECT_EQ(count(QStringLiteral("dbo.KnjPopListaDugImovFBiH")), 0);
        enter(a->ubVijekTrajanja, Way::Type, QStringLiteral("5"));
        a->cmdSpremi->click();
    });
    EXPECT_FALSE(a->IzišaoSaPrekidom());
    const ResultSet rs = rows(QStringLiteral("SELECT VijekTr FROM dbo.KnjPopListaDugImovFBiH"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.integer(0, 0), 5);

    // A refused keystroke leaves less than was typed: the save waits for a correction.
    auto e = std::unique_ptr<frmKnjPRashFBiHPregled>(
        static_cast<frmKnjPRashFBiHPregled*>(createEditor(96).release()));
    e->setTipRada(1);
    e->setTipSifarnika(96);
    e->ubRBroj->setValue(Money::fromWhole(1));
    script->messages.clear();
    run(*e, [&] {
        e->dpDatum->setDate(QDate(2016, 4, 1));
        e->txtIsprava->setText(QStringLiteral("KIF-1"));
        e->cmbVrsta->setCurrentIndex(0);
        enter(e->ubIznos, Way::Type, QStringLiteral("1,234.56"));
        e->cmdSpremi->click();
        ASSERT_EQ(texts().size(), 1);
        EXPECT_TRUE(texts()[0].startsWith(QStringLiteral("Dio upisa u polje nije prihvaćen (ostalo je \"1,23\")")));
        EXPECT_EQ(count(QStringLiteral("dbo.KnjPrihRashFBiH")), 0);
    });
    EXPECT_TRUE(e->IzišaoSaPrekidom());
}

TEST_F(NumberEditors, AProposedNumberTakenMeanwhileIsReplacedAndReported)
{
    for (const bool typed : {false, true}) {
        exec(QStringLiteral("DELETE FROM dbo.KnjPrihRashFBiH"));
        script->messages.clear();
        auto e = std::unique_ptr<frmKnjPRashFBiHPregled>(
            static_cast<frmKnjPRashFBiHPregled*>(createEditor(96).release()));
        e->setTipRada(1);
        e->setTipSifarnika(96);
        e->ubRBroj->setValue(Money::fromWhole(4)); // as the browser proposes it
        run(*e, [&] {
            if (typed)
                enter(e->ubRBroj, Way::Type, QStringLiteral("4"));
            e->dpDatum->setDate(QDate(2016, 4, 1));
            e->txtIsprava->setText(QStringLiteral("KIF-1"));
            e->cmbVrsta->setCurrentIndex(0);
            e->ubIznos->setValue(Money::fromWhole(50));
            // Another operator saves number 4 (and 5) while the dialog is open.
            exec(QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Vrsta,"
                                "Iznos) VALUES (1,4,'04.01.2016',2016,'Tuđa',11,1)"));
            exec(QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Vrsta,"
                                "Iznos) VALUES (1,5,'04.01.2016',2016,'Tuđa',11,1)"));
            e->cmdSpremi->click();
        });
        EXPECT_FALSE(e->IzišaoSaPrekidom());
        const ResultSet mine = rows(QStringLiteral("SELECT RBroj FROM dbo.KnjPrihRashFBiH WHERE Isprava='KIF-1'"));
        ASSERT_EQ(mine.rowCount(), 1);
        if (typed) {
            EXPECT_EQ(mine.integer(0, 0), 4) << "a number the operator typed is kept";
            EXPECT_TRUE(texts().isEmpty());
            continue;
        }
        EXPECT_EQ(mine.integer(0, 0), 6);
        EXPECT_EQ(e->spremljeniRBroj(), 6);
        EXPECT_EQ(texts(), QStringList{QStringLiteral("Redni broj 4 je u međuvremenu dobila stavka koju je upisao drugi "
                                                      "korisnik.\nOva stavka je spremljena pod sljedećim slobodnim "
                                                      "rednim brojem: 6.")});
        EXPECT_EQ(lastMessage().title, QStringLiteral("Napomena"));
    }
}
