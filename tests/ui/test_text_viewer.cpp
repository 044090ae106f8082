// The text viewer: its answer, saving in Windows-1250 with the overwrite question, and
// the real message seam sending long texts to it.
#include "output/widgets/frmPrikazTeksta.h"
#include "session/widgets/DialogInteraction.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

using namespace knjige;
using namespace knjige::test;

namespace
{

QByteArray contents(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<nema datoteke>");
}

} // namespace

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
        frmPrikazTeksta viewer;
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
        EXPECT_EQ(contents(file), QByteArray("Prvi red: \xE8\xE6\x9E\x9A\xF0\r\nDrugi red: \xC8\xC6\x8E\x8A\xD0"));
        EXPECT_TRUE(script->messages.isEmpty());
    }

    frmPrikazTeksta viewer;
    script->onDialog = [](QDialog&) { return 0; };
    viewer.Prikaži("Prazno", QString(), false, {});
    QFile old(file);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly | QIODevice::Truncate));
    old.write("stari tekst");
    old.close();
    script->files.enqueue(file);
    script->answers.enqueue(Answer::No);
    viewer.mnuSpremiTekst->trigger();
    ASSERT_EQ(script->messages.size(), 1);
    EXPECT_EQ(script->messages[0].text, "Datoteka sa tim imenom već postoji ! Želite li je prepisati?");
    EXPECT_EQ(script->messages[0].icon, Icon::Question);
    EXPECT_EQ(script->messages[0].buttons, Buttons::YesNo);
    EXPECT_EQ(contents(file), QByteArray("stari tekst"));
    script->files.enqueue(file);
    script->answers.enqueue(Answer::Yes);
    viewer.cmdSpremiTekst->click();
    EXPECT_TRUE(QFile::exists(file));
    EXPECT_EQ(contents(file), QByteArray()); // the empty text makes an empty file
    // No file chosen: nothing asked, nothing written.
    script->clear();
    viewer.cmdSpremiTekst->click();
    EXPECT_TRUE(script->messages.isEmpty());
}

// A person at the real message boxes: a long question comes in the viewer, its last line
// as the question under the text.
TEST(TextViewer, TheRealSeamShowsLongTextsInTheViewer)
{
    auto previous = setInteraction(std::make_unique<DialogInteraction>());
    QString question;
    QString body;
    QTimer::singleShot(0, [&] {
        auto* viewer = qobject_cast<frmPrikazTeksta*>(QApplication::activeModalWidget());
        if (!viewer)
            return;
        question = viewer->lblPitanje->text();
        body = viewer->txtPoruka->toPlainText();
        viewer->cmdDa->click();
    });
    // Should the viewer not come, the box that came instead is closed and the test fails.
    QTimer guard;
    guard.setSingleShot(true);
    QObject::connect(&guard, &QTimer::timeout, [] {
        if (QWidget* w = QApplication::activeModalWidget())
            w->close();
    });
    guard.start(5000);
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
