#include "output/widgets/frmPrikazTeksta.h"

#include "output/CodePage.h"
#include "session/Interaction.h"
#include "session/db/DatabaseFiles.h"
#include "session/widgets/DialogInteraction.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace knjige::output
{
namespace
{

QPushButton* button(QWidget* parent, const char* name, const QString& caption)
{
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    return b;
}

// The save dialog starts on drive C where there is one, else in the home folder.
QString startFolder()
{
#ifdef Q_OS_WIN
    if (QFileInfo(QStringLiteral("c:/")).isDir())
        return QStringLiteral("c:\\");
#endif
    return QDir::homePath();
}

} // namespace

frmPrikazTeksta::frmPrikazTeksta(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint)
{
    setObjectName(QStringLiteral("frmPrikazTeksta"));
    setSizeGripEnabled(true);
    resize(640, 420);
    auto* box = new QVBoxLayout(this);

    auto* bar = new QMenuBar(this);
    QMenu* datoteka = bar->addMenu(QStringLiteral("&Datoteka"));
    mnuSpremiTekst = datoteka->addAction(QStringLiteral("&Spremi tekst"));
    mnuSpremiTekst->setObjectName(QStringLiteral("mnuSpremiTekst"));
    box->setMenuBar(bar);

    txtPoruka = new QPlainTextEdit(this);
    txtPoruka->setObjectName(QStringLiteral("txtPoruka"));
    txtPoruka->setReadOnly(true);
    box->addWidget(txtPoruka, 1);

    lblPitanje = new QLabel(this);
    lblPitanje->setObjectName(QStringLiteral("lblPitanje"));
    lblPitanje->setWordWrap(true);
    box->addWidget(lblPitanje);

    auto* buttons = new QHBoxLayout;
    cmdSpremiTekst = button(this, "cmdSpremiTekst", QStringLiteral("&Spremi tekst"));
    cmdDa = button(this, "cmdDa", QStringLiteral("&Da"));
    cmdNe = button(this, "cmdNe", QStringLiteral("&Ne"));
    OKButton = button(this, "OKButton", QStringLiteral("U redu"));
    cmdDa->setVisible(false);
    cmdNe->setVisible(false);
    buttons->addWidget(cmdSpremiTekst);
    buttons->addStretch(1);
    buttons->addWidget(cmdDa);
    buttons->addWidget(cmdNe);
    buttons->addWidget(OKButton);
    box->addLayout(buttons);

    connect(cmdDa, &QPushButton::clicked, this, [this] {
        m_odgovor = true;
        accept();
    });
    connect(cmdNe, &QPushButton::clicked, this, [this] { reject(); });
    connect(OKButton, &QPushButton::clicked, this, [this] { reject(); });
    connect(cmdSpremiTekst, &QPushButton::clicked, this, [this] { SpremiTekst(); });
    connect(mnuSpremiTekst, &QAction::triggered, this, [this] { SpremiTekst(); });
}

void frmPrikazTeksta::Prikaži(const QString& naslov, const QString& tekst, bool pitaj, const QString& pitanje)
{
    m_odgovor = false;
    m_tekst = tekst;
    setWindowTitle(naslov);
    txtPoruka->setPlainText(tekst);
    lblPitanje->setText(pitanje);
    lblPitanje->setVisible(!pitanje.isEmpty());
    if (pitaj) {
        cmdDa->setVisible(true);
        cmdNe->setVisible(true);
        OKButton->setVisible(false);
        cmdNe->setDefault(true);
    } else {
        OKButton->setDefault(true);
    }
    interaction().exec(*this);
}

void frmPrikazTeksta::SpremiTekst()
{
    FileChoice choice;
    choice.title = QStringLiteral("Izaberite uređaj i direktoriju TXT datoteke za spremanje");
    choice.directory = startFolder();
    choice.fileName = QStringLiteral("Tekst poruke.txt");
    choice.filter = QStringLiteral("TXT datoteka (*.txt)|*.txt");
    choice.defaultSuffix = QStringLiteral("txt");
    const QString path = interaction().chooseSaveFile(choice);
    if (path.isEmpty())
        return;
    if (db::isOpenDatabaseFile(path)) {
        warn(db::openDatabaseRefusal(path), windowTitle());
        return;
    }
    if (QFileInfo::exists(path)) {
        Message ask;
        ask.text = QStringLiteral("Datoteka sa tim imenom već postoji ! Želite li je prepisati?");
        ask.icon = Icon::Question;
        ask.buttons = Buttons::YesNo;
        ask.defaultAnswer = Answer::Yes;
        if (interaction().show(ask) != Answer::Yes)
            return;
        QFile::remove(path);
    }
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(toCp1250(m_tekst));
}

void useTextViewerForLongTexts()
{
    setTextViewer([](QWidget* owner, const QString& title, const QString& text, bool ask, const QString& question) {
        frmPrikazTeksta viewer(owner);
        viewer.Prikaži(title, text, ask, question);
        return viewer.Odgovor();
    });
}

} // namespace knjige::output
