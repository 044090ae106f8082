// What the books write for a person to keep: "Prebaci u Excel" from the browser (the
// dialog's checks in order, the overwrite question, the file as written, the program
// start, the remembered options, a filtered and sorted book writing only its rows in
// the order shown) and the text viewer (its answer, saving in Windows-1250 with the
// overwrite question, and the real message seam sending long texts to it); neither ever
// writes over the open database.
#include "host/ExportCommand.h"
#include "output/OfficeExport.h"
#include "output/widgets/frmOfficeExportPost.h"
#include "output/widgets/frmPrikazTeksta.h"
#include "session/SettingsStore.h"
#include "session/widgets/DialogInteraction.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "test_browser_fixture.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <filesystem>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::test;

namespace
{

class OfficeExportTest : public BrowserTest
{
protected:
    void SetUp() override
    {
        BrowserTest::SetUp();
        addPrihRash(1, 2016, 1, { 2016, 1, 10 }, 11, 1234567.5, 170, "Pazar; \"Centar\" ČĆĐŠŽ");
        addPrihRash(1, 2016, 2, { 2016, 1, 12 }, 12, 2340.25, 340.07, "banka");
        addPrihRash(1, 2016, 3, { 2016, 2, 1 }, 11, 585, 85, "Nabavka");
        path = scratchDir() + QStringLiteral("/knjiga.csv");
    }
    // Opens the dialog from the browser's menu and lets `steps` work in it.
    void exportFrom(browser::frmSifarnikKnj& w, const std::function<void(output::frmOfficeExportPost&)>& steps)
    {
        script->onDialog = [&](QDialog& d) {
            steps(dynamic_cast<output::frmOfficeExportPost&>(d));
            return d.result();
        };
        w.menuItem("mnuPrebaciUExcel")->trigger();
    }
    static QString setting(const char* key) { return settings::text("Arbosa", "Settings", QString::fromUtf8(key)); }
    QString path;
};

} // namespace

TEST_F(OfficeExportTest, ChecksInOrderThenTheFileTheProgramAndTheReport)
{
    auto w = open(96);
    const QString program = QCoreApplication::applicationFilePath();
    exportFrom(*w, [&](output::frmOfficeExportPost& f) {
        EXPECT_EQ(f.txtNazivDat->text(), output::defaultFileName());
        EXPECT_TRUE(QFileInfo(QFileInfo(output::defaultFileName()).absolutePath()).isDir());
        QString chosen;
        const QString missing = scratchDir() + QStringLiteral("/nema");
        EXPECT_EQ(f.txtSeparator->text(), ";");
        EXPECT_EQ(f.txtDecTočka->text(), ",");
        struct Step {
            std::function<void()> change;
            const char* message;
        };
        const Step steps[] = {
            { [&] { f.txtNazivDat->clear(); }, "Mora se upisati ime CSV datoteke podataka!" },
            { [&] {
                 script->files.enqueue(path);
                 f.cmdGdjeSpremiti->click();
                 f.txtSeparator->clear();
             },
                "Mora se upisati separator podataka!" },
            { [&] {
                 f.txtSeparator->setText(",");
                 f.txtDecTočka->setText(";");
             },
                "Znak za decimalnu točku za brojeve može biti točka ili zarez !" },
            { [&] { f.txtDecTočka->setText(","); },
                "Separator podataka i znak za decimalnu točku ne mogu biti isti !" },
            { [&] {
                 f.txtSeparator->setText(";");
                 f.chkAutomatskiPokr->setChecked(true);
                 f.txtLokacijaEXE->clear();
             },
                "Mora se upisati ime EXE datoteke!" },
            { [&] { f.txtLokacijaEXE->setText("/nema/ovog/programa"); }, "Uneseno ime EXE datoteke je neispravno !" },
            { [&] {
                 f.txtLokacijaEXE->setText(program);
                 chosen = f.txtNazivDat->text();
                 f.txtNazivDat->setText(missing + QStringLiteral("/knjiga.csv"));
             },
                "" },
        };
        for (const Step& s : steps) {
            s.change();
            f.cmdPrebaciPodatke->click();
            ASSERT_FALSE(script->messages.isEmpty());
            EXPECT_EQ(script->messages.last().text,
                *s.message ? QString::fromUtf8(s.message)
                           : QStringLiteral("Desila se greška: mapa %1 ne postoji. Izaberite drugu mapu za datoteku.")
                                 .arg(QDir::toNativeSeparators(missing)));
            EXPECT_EQ(script->messages.last().icon, Icon::Exclamation);
            EXPECT_FALSE(QFile::exists(path)) << s.message;
        }
        EXPECT_EQ(chosen, QDir::toNativeSeparators(path));
        f.txtNazivDat->setText(chosen);
        script->files.enqueue(program);
        f.cmdLokacija->click();
        f.chkPrikazNavodnika->setChecked(false);
        script->clear();
        f.cmdPrebaciPodatke->click();
    });
    EXPECT_EQ(
        script->texts(), QStringList { QStringLiteral("U datoteku: %1 prebačeno 3 zapisa u CSV formatu!").arg(path) });
    EXPECT_EQ(script->startedPrograms, (QList<QStringList> { { program, QDir::toNativeSeparators(path) } }));
    const QByteArray file = readFile(path);
    EXPECT_TRUE(file.startsWith("RBroj;GodinaKnj;Datum;Isprava;Opis;Vrsta;NazivVrste;Prihodi;PDVPrihodi;Rashodi;"
                                "PDVRashodi;I\r\n1;2016;10.01.2016;D-1;Pazar; \"Centar\" \xC8\xC6\xD0\x8A\x8E;11;"))
        << file.left(200).toStdString();
    EXPECT_TRUE(file.contains(";1234567,5;170;0;0;\r\n2;2016;12.01.2016;D-2;banka;12;"));
    EXPECT_EQ(file.count("\r\n"), 4);
    EXPECT_EQ(setting("ExpNazivDat"), QDir::toNativeSeparators(path));
    EXPECT_EQ(setting("ExpSeparator") + setting("ExpDecTočka"), ";,");
    EXPECT_EQ(setting("ExpPrikazNavodnika") + setting("ExpAutomPokr"), "FalseTrue");
    EXPECT_EQ(setting("ExpEXEDat"), QDir::toNativeSeparators(program));
}

TEST_F(OfficeExportTest, OverwriteQuestionThenAFilteredSortedBookInUtf8AsShown)
{
    ASSERT_TRUE(writeFile(path, "staro"));
    auto w = open(96);
    for (Answer answer : { Answer::No, Answer::Yes }) {
        script->clear();
        script->answers.enqueue(answer);
        exportFrom(*w, [&](output::frmOfficeExportPost& f) {
            f.txtNazivDat->setText(QStringLiteral("  ") + path + QStringLiteral(" "));
            f.cmdPrebaciPodatke->click();
        });
        ASSERT_FALSE(script->messages.isEmpty());
        const Message& question = script->messages.first();
        EXPECT_EQ(question.text, QStringLiteral("Datoteka: %1 već postoji. Želite li je prepisati?").arg(path));
        EXPECT_EQ(question.title, "Prebacivanje podataka u CSV datoteku");
        EXPECT_EQ(question.icon, Icon::Question);
        EXPECT_EQ(question.buttons, Buttons::YesNo);
        EXPECT_EQ(script->messages.size(), answer == Answer::No ? 1 : 2);
        if (answer == Answer::No) {
            EXPECT_EQ(readFile(path), "staro");
        }
    }
    // Stopped halfway the export leaves the file as it was and the form open, silent.
    const QByteArray written = readFile(path);
    ASSERT_TRUE(writeFile(path, "staro"));
    script->clear();
    script->answers.enqueue(Answer::Yes);
    script->cancelAt = QStringLiteral("Izvoz: 2 od");
    exportFrom(*w, [&](output::frmOfficeExportPost& f) {
        f.txtNazivDat->setText(path);
        f.cmdPrebaciPodatke->click();
        EXPECT_NE(f.result(), QDialog::Accepted);
    });
    EXPECT_EQ(script->messages.size(), 1);
    ASSERT_EQ(script->progress.size(), 1);
    EXPECT_EQ(script->progress[0].title, QStringLiteral("Izvoz"));
    EXPECT_EQ(script->progress[0].texts, QStringList { QStringLiteral("Izvoz: 2 od 3 redova") });
    EXPECT_TRUE(script->progress[0].cancelled && script->progress[0].finished);
    EXPECT_EQ(readFile(path), "staro");
    EXPECT_EQ(QDir(QFileInfo(path).absolutePath()).entryList(QDir::Files), QStringList { "knjiga.csv" });
    EXPECT_TRUE(written.startsWith("\"RBroj\";\"GodinaKnj\";"));
    EXPECT_TRUE(written.contains(";\"Pazar; \"\"Centar\"\" \xC8\xC6\xD0\x8A\x8E\";"));

    // A filtered, sorted book writes only its rows, in UTF-8, as shown.
    QFile::remove(path);
    change(*w, [](browser::BookQuery& q) { q.filter.where = " WHERE K.BrojPoduzeca=1 AND  K.Vrsta LIKE '11%'"; });
    w->OsvjeziZapise();
    w->fg_HeaderClick(1);
    w->fg_HeaderClick(1); // RBroj descending
    ASSERT_EQ(rBrojevi(*w), (QList<qint64> { 3, 1 }));
    exportFrom(*w, [&](output::frmOfficeExportPost& f) {
        f.txtNazivDat->setText(path);
        f.txtDecTočka->setText(".");
        f.cmbKodiranje->setCurrentIndex(f.cmbKodiranje->findData("utf-8"));
        f.cmdPrebaciPodatke->click();
    });
    const QList<QByteArray> lines = readFile(path).split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].startsWith("\xEF\xBB\xBF\"RBroj\";"));
    EXPECT_TRUE(lines[1].startsWith("3;2016;01.02.2016;\"D-3\";\"Nabavka\";11;"));
    EXPECT_EQ(lines[2],
        QStringLiteral("1;2016;10.01.2016;\"D-1\";\"Pazar; \"\"Centar\"\" ČĆĐŠŽ\";11;\"Prihod - Gotovina\";"
                       "1234567.5;170;0;0;\r")
            .toUtf8());
    // The next opening shows the remembered choices.
    exportFrom(*w, [&](output::frmOfficeExportPost& f) {
        EXPECT_EQ(f.txtNazivDat->text(), path);
        EXPECT_EQ(f.txtDecTočka->text(), ".");
        EXPECT_EQ(f.cmbKodiranje->currentData().toString(), "utf-8");
        EXPECT_TRUE(f.chkPrikazNavodnika->isChecked());
    });
}

// The database the browser works on is never an output, under any of its names and
// whatever the person answers: neither the export nor the text viewer's save.
TEST_F(OfficeExportTest, TheOpenDatabaseIsNeverWrittenUnderAnyOfItsNames)
{
    auto w = open(96);
    const QString folder = QFileInfo(db->path()).absolutePath();
    ASSERT_TRUE(QFile::link(db->path(), folder + QStringLiteral("/veza.db")));
    std::error_code linked;
    std::filesystem::create_hard_link(QFile::encodeName(db->path()).toStdString(),
        QFile::encodeName(folder + QStringLiteral("/tvrda.db")).toStdString(), linked);
    ASSERT_FALSE(linked) << linked.message();
    const QByteArray before = readFile(db->path());
    output::frmPrikazTeksta viewer;
    for (const char* name : { "/knjige.db", "/./knjige.db", "/veza.db", "/tvrda.db", "/knjige.db-wal", "/knjige.db-shm",
             "/knjige.db-journal" }) {
        const QString target = folder + QLatin1String(name);
        const QString refusal = QStringLiteral("Datoteka %1 je baza podataka s kojom program radi (ili njena pomoćna "
                                               "datoteka) i ne smije se prepisati. Izaberite drugu datoteku.")
                                    .arg(target);
        script->clear();
        script->answers << Answer::Yes << Answer::Yes;
        exportFrom(*w, [&](output::frmOfficeExportPost& f) {
            f.txtNazivDat->setText(target);
            f.cmdPrebaciPodatke->click();
        });
        script->files.enqueue(target);
        viewer.cmdSpremiTekst->click();
        EXPECT_EQ(script->texts().join(u'\n').toStdString(),
            (QStringLiteral("Desila se greška: ") + refusal + u'\n' + refusal).toStdString());
    }
    EXPECT_EQ(readFile(db->path()), before);
    EXPECT_FALSE(QFile::exists(folder + QStringLiteral("/knjige.db-journal")));
    EXPECT_EQ(db->count(QStringLiteral("dbo.KnjPrihRashFBiH")), 3);
}

TEST(TextViewer, AnswersAndSavesTheTextAsItStands)
{
    ScopedScript script;
    const QString text = "Prvi red: čćžšđ\r\nDrugi red: ČĆŽŠĐ";
    const QString file = scratchDir() + QStringLiteral("/poruka.txt");
    struct Step {
        bool ask;
        const char* button; // pressed in the window; nullptr: closed by its box
        bool answer;
    };
    for (const Step& step : { Step { true, "cmdDa", true }, Step { true, "cmdNe", false },
             Step { true, nullptr, false }, Step { false, "OKButton", false } }) {
        output::frmPrikazTeksta viewer;
        script->onDialog = [&](QDialog& d) {
            EXPECT_EQ(d.windowTitle(), "Upozorenje");
            EXPECT_EQ(viewer.txtPoruka->toPlainText(), "Prvi red: čćžšđ\nDrugi red: ČĆŽŠĐ");
            EXPECT_EQ(viewer.lblPitanje->text(), "Nastaviti?");
            EXPECT_EQ(viewer.cmdDa->isVisibleTo(&d), step.ask);
            EXPECT_EQ(viewer.OKButton->isVisibleTo(&d), !step.ask);
            if (step.button)
                d.findChild<QPushButton*>(QString::fromLatin1(step.button))->click();
            else
                d.reject();
            return d.result();
        };
        viewer.Prikaži("Upozorenje", text, step.ask, "Nastaviti?");
        EXPECT_EQ(viewer.Odgovor(), step.answer) << (step.button ? step.button : "close box");

        // Saving: a new file; over it answering No (kept); then Yes (replaced).
        QFile::remove(file);
        script->files.enqueue(file);
        viewer.cmdSpremiTekst->click();
        EXPECT_EQ(readFile(file), QByteArray("Prvi red: \xE8\xE6\x9E\x9A\xF0\r\nDrugi red: \xC8\xC6\x8E\x8A\xD0"));
        EXPECT_TRUE(script->messages.isEmpty());
    }

    output::frmPrikazTeksta viewer;
    script->onDialog = [](QDialog&) { return 0; };
    viewer.Prikaži("Prazno", QString(), false, {});
    ASSERT_TRUE(writeFile(file, "stari tekst"));
    script->files.enqueue(file);
    script->answers.enqueue(Answer::No);
    viewer.mnuSpremiTekst->trigger();
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(script->messages[0].text, "Datoteka sa tim imenom već postoji ! Želite li je prepisati?");
    EXPECT_EQ(script->messages[0].icon, Icon::Question);
    EXPECT_EQ(script->messages[0].buttons, Buttons::YesNo);
    EXPECT_EQ(readFile(file), QByteArray("stari tekst"));
    script->files.enqueue(file);
    script->answers.enqueue(Answer::Yes);
    viewer.cmdSpremiTekst->click();
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(readFile(file), QByteArray()); // the empty text makes an empty file
    // No file chosen: nothing asked, nothing written.
    script->clear();
    viewer.cmdSpremiTekst->click();
    EXPECT_TRUE(script->messages.isEmpty());
}

// A person at the real message boxes: a long question comes in the viewer, its last line
// as the question under the text.
TEST(TextViewer, TheRealSeamShowsLongTextsInTheViewer)
{
    output::useTextViewerForLongTexts();
    auto previous = setInteraction(std::make_unique<DialogInteraction>());
    QString question;
    QString body;
    QTimer::singleShot(0, [&] {
        auto* viewer = qobject_cast<output::frmPrikazTeksta*>(QApplication::activeModalWidget());
        if (!viewer)
            return;
        question = viewer->lblPitanje->text();
        body = viewer->txtPoruka->toPlainText();
        viewer->cmdDa->click();
    });
    // Should the viewer not come, the box that came instead is closed and the test fails;
    // the guard goes with the test.
    QObject guard;
    QTimer::singleShot(5000, &guard, [] {
        if (QWidget* w = QApplication::activeModalWidget())
            w->close();
    });
    QString text;
    for (int i = 1; i <= 40; ++i)
        text += QStringLiteral("Stavka %1 nije knjižena.\n").arg(i);
    const bool yes = askYesNo(text + QStringLiteral("Želite li nastaviti?"), "Provjera");
    setInteraction(std::move(previous));
    EXPECT_TRUE(yes);
    EXPECT_EQ(question, "Želite li nastaviti?");
    EXPECT_TRUE(body.startsWith("Stavka 1 nije knjižena."));
    EXPECT_TRUE(body.endsWith("Stavka 40 nije knjižena."));
}
