#include "editors/widgets/EditorFactory.h"
#include "editors/widgets/MoneyBox.h"
#include "test_editor_fixture.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>

using namespace knjige;
using namespace knjige::test;

namespace
{

// One picture per editor and mode for the documentation. Runs only when
// KNJIGE_EDITOR_SCREENSHOTS names the folder to write to.
class EditorScreenshots : public EditorTest
{
protected:
    void shoot(
        int book, int mode, const QString& name, qint32 redniBroj, const std::function<void(RecordEditor&)>& fill)
    {
        auto e = createEditor(book);
        e->setTipRada(mode);
        e->sRedniBroj = redniBroj;
        run(*e, [&] {
            fill(*e);
            e->adjustSize();
            QApplication::processEvents();
            const QString file = QDir(m_out).filePath(QStringLiteral("editor-%1-%2.png").arg(name).arg(mode));
            EXPECT_TRUE(e->grab().save(file)) << file.toStdString();
        });
    }
    template <typename T> static T* f(RecordEditor& e, const char* name)
    {
        return qobject_cast<T*>(e.control(QString::fromUtf8(name)));
    }
    QString m_out = qEnvironmentVariable("KNJIGE_EDITOR_SCREENSHOTS");
};

} // namespace

TEST_F(EditorScreenshots, EveryEditor)
{
    if (m_out.isEmpty())
        GTEST_SKIP() << "set KNJIGE_EDITOR_SCREENSHOTS to a folder";
    exec(QStringLiteral("INSERT INTO dbo.KnjPrihRashFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Isprava,Opis,Vrsta,Iznos,"
                        "IznosPDV) VALUES (1,12,'03.15.2016',2016,'KIF-0312','Prodaja robe - gotovina',11,1170,170)"));
    exec(QStringLiteral("INSERT INTO dbo.KnjPopListaDugImovFBiH (BrojPoduzeca,GodinaKnj,RBroj,Naziv,Datum,Isprava,"
                        "NabVrijednost,KnjigVrijednost,VijekTr) VALUES (1,2016,1,'Kombi vozilo VW',"
                        "'02.01.2016','117',35000,28000,5)"));
    exec(QStringLiteral("INSERT INTO dbo.KnjPrometaFBiH (BrojPoduzeca,RBroj,Datum,GodinaKnj,Opis,Isprava,IznosGot,"
                        "IznosCek) VALUES (1,31,'05.31.2016',2016,'Dnevni promet','DP-31',1234.5,250)"));
    const auto text = [](RecordEditor& e, const char* name, const char* value) {
        f<QLineEdit>(e, name)->setText(QString::fromUtf8(value));
    };
    const auto amount = [](RecordEditor& e, const char* name, qint64 units) {
        f<MoneyBox>(e, name)->setValue(Money::fromUnits(units));
    };
    const auto common = [](RecordEditor& e, int rbroj) {
        e.ubRBroj->setValue(Money::fromWhole(rbroj));
        e.dpDatum->setDate(QDate(2016, 12, 31));
    };
    shoot(96, 2, QStringLiteral("frmKnjPRashFBiHPregled"), 12, [](RecordEditor&) {});
    shoot(96, 3, QStringLiteral("frmKnjPRashFBiHPregled"), 0, [](RecordEditor&) {});
    shoot(109, 1, QStringLiteral("frmKnjPRashFBiHPregled-DB"), 0, [&](RecordEditor& e) {
        common(e, 4);
        text(e, "txtIsprava", "Izvod 44");
        text(e, "txtOpis", "Uplata kupca");
        f<QComboBox>(e, "cmbVrsta")->setCurrentIndex(1);
        amount(e, "ubIznos", 4500000);
    });
    shoot(97, 1, QStringLiteral("frmKnjEvidPotObvFBiH"), 0, [&](RecordEditor& e) {
        common(e, 8);
        text(e, "txtKomitent", "1");
        f<QLabel>(e, "lblKomit")->setText(QStringLiteral(" Prodavnica Centar"));
        f<QComboBox>(e, "cboVrsta")->setCurrentIndex(0);
        text(e, "txtIsprava", "IR-2016-08");
        text(e, "txtOpis", "Isporuka robe");
        amount(e, "ubIznos", 23400000);
        amount(e, "ubKPR", 120000);
    });
    shoot(105, 2, QStringLiteral("frmPopListaDImovineFBiH"), 1, [](RecordEditor&) {});
    shoot(98, 1, QStringLiteral("frmKnjPrometa"), 0, [&](RecordEditor& e) {
        common(e, 31);
        text(e, "txtIsprava", "DP-31");
        text(e, "txtOpis", "Dnevni promet");
        amount(e, "ubGotovina", 12345000);
        amount(e, "ubCek", 2500000);
    });
    shoot(99, 1, QStringLiteral("frmKnjPrihodaRashodaRS"), 0, [&](RecordEditor& e) {
        common(e, 5);
        text(e, "txtOpis", "Prodaja usluga");
        f<QComboBox>(e, "cboVrsta")->setCurrentIndex(2);
        amount(e, "ubIznos", 8000000);
        amount(e, "ubIznosPDV", 1162390);
    });
    shoot(125, 1, QStringLiteral("frmKnjUsluga"), 0, [&](RecordEditor& e) {
        e.setSkladište(2);
        e.dpDatum->setDate(QDate(2016, 12, 31));
        text(e, "txtOpis", "Naknada za usluge");
        amount(e, "ubIznos", 1500000);
    });
    shoot(126, 1, QStringLiteral("frmKnjKomisiona"), 0, [&](RecordEditor& e) {
        e.setSkladište(1);
        e.dpDatum->setDate(QDate(2016, 12, 31));
        text(e, "txtOpis", "Preuzeta roba u komision");
        amount(e, "ubZaduženje", 12500000);
    });
    shoot(106, 4, QStringLiteral("frmKnjPrometa-RS"), 31,
        [](RecordEditor& e) { f<QLabel>(e, "lblČekovi")->setText(QStringLiteral("Račun:")); });
}
