#include "output/widgets/frmOfficeExportPost.h"

#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/SettingsStore.h"
#include "session/db/DatabaseFiles.h"
#include "session/db/ResultSet.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace knjige::output
{

using namespace output;

namespace
{

#ifdef Q_OS_WIN
constexpr bool kChooseEncoding = false;
const char* const kProgramFilter = "EXE datoteka (*.exe)|*.exe";
const char* const kProgramFolder = "c:\\Program files\\";
#else
constexpr bool kChooseEncoding = true;
const char* const kProgramFilter = "Programi (*)|*";
const char* const kProgramFolder = "/usr/bin";
#endif

QString setting(const QString& key, const QString& fallback)
{
    return settings::text(settings::sharedApplication(), settings::section(), key, fallback);
}

bool settingFlag(const QString& key, bool fallback)
{
    return settings::flag(settings::sharedApplication(), settings::section(), key, fallback);
}

QPushButton* button(const QString& name, const QString& caption)
{
    auto* b = new QPushButton(caption);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

} // namespace

frmOfficeExportPost::frmOfficeExportPost(const db::ResultSet& rows, QWidget* parent)
    : QDialog(parent)
    , m_rows(rows)
{
    setObjectName(QStringLiteral("frmOfficeExportPost"));
    setWindowTitle(QStringLiteral("Prebacivanje podataka u CSV datoteku"));
    napraviKontrole();
    citajPostavke();
    connect(cmdGdjeSpremiti, &QPushButton::clicked, this, [this] { GdjeSpremiti(); });
    connect(cmdLokacija, &QPushButton::clicked, this, [this] { Lokacija(); });
    connect(cmdPrebaciPodatke, &QPushButton::clicked, this, [this] { PrebaciPodatke(); });
    connect(cmdIzlaz, &QPushButton::clicked, this, &QDialog::reject);
}

void frmOfficeExportPost::napraviKontrole()
{
    auto edit = [](const QString& name, int width) {
        auto* e = new QLineEdit;
        e->setObjectName(name);
        if (width > 0)
            e->setMaximumWidth(width);
        return e;
    };
    txtNazivDat = edit(QStringLiteral("txtNazivDat"), 0);
    txtNazivDat->setMinimumWidth(340);
    txtSeparator = edit(QStringLiteral("txtSeparator"), 50);
    txtDecTočka = edit(QStringLiteral("txtDecTočka"), 50);
    txtLokacijaEXE = edit(QStringLiteral("txtLokacijaEXE"), 0);
    chkPrikazNavodnika = new QCheckBox(QStringLiteral("Nazivi i tekstovi u navodnicima (\")"));
    chkPrikazNavodnika->setObjectName(QStringLiteral("chkPrikazNavodnika"));
    chkAutomatskiPokr = new QCheckBox(QStringLiteral("Nakon prebacivanja pokreni program s datotekom"));
    chkAutomatskiPokr->setObjectName(QStringLiteral("chkAutomatskiPokr"));
    cmdGdjeSpremiti = button(QStringLiteral("cmdGdjeSpremiti"), QStringLiteral("..."));
    cmdLokacija = button(QStringLiteral("cmdLokacija"), QStringLiteral("..."));
    for (QPushButton* b : { cmdGdjeSpremiti, cmdLokacija })
        b->setMaximumWidth(b->fontMetrics().horizontalAdvance(b->text()) + 24);
    cmdPrebaciPodatke = button(QStringLiteral("cmdPrebaciPodatke"), QStringLiteral("&Prebaci podatke"));
    cmdIzlaz = button(QStringLiteral("cmdIzlaz"), QStringLiteral("I&zlaz"));

    auto* grid = new QGridLayout;
    int row = 0;
    auto addRow = [&](const QString& label, QWidget* field, QWidget* extra = nullptr) {
        auto* l = new QLabel(label);
        l->setBuddy(field);
        grid->addWidget(l, row, 0);
        grid->addWidget(field, row, 1, 1, extra ? 1 : 2);
        if (extra)
            grid->addWidget(extra, row, 2);
        ++row;
    };
    addRow(QStringLiteral("CSV &datoteka:"), txtNazivDat, cmdGdjeSpremiti);
    addRow(QStringLiteral("&Separator podataka:"), txtSeparator);
    addRow(QStringLiteral("Decimalna &točka:"), txtDecTočka);
    grid->addWidget(chkPrikazNavodnika, row++, 1, 1, 2);
    if (kChooseEncoding) {
        cmbKodiranje = new QComboBox;
        cmbKodiranje->setObjectName(QStringLiteral("cmbKodiranje"));
        cmbKodiranje->addItem(
            QStringLiteral("Windows-1250 (kodna stranica Windowsa)"), encodingName(TextEncoding::Windows1250));
        cmbKodiranje->addItem(QStringLiteral("UTF-8 s oznakom (BOM)"), encodingName(TextEncoding::Utf8WithBom));
        addRow(QStringLiteral("&Kodiranje:"), cmbKodiranje);
    }
    addRow(QStringLiteral("P&rogram:"), txtLokacijaEXE, cmdLokacija);
    grid->addWidget(chkAutomatskiPokr, row++, 1, 1, 2);
    grid->setColumnStretch(1, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdPrebaciPodatke);
    buttons->addWidget(cmdIzlaz);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(6);
    layout->addLayout(buttons);
}

void frmOfficeExportPost::citajPostavke()
{
    txtNazivDat->setText(setting(keys::nazivDat(), defaultFileName()));
    txtSeparator->setText(setting(keys::separator(), QStringLiteral(";")));
    txtDecTočka->setText(setting(keys::decTocka(), QStringLiteral(",")));
    chkPrikazNavodnika->setChecked(settingFlag(keys::prikazNavodnika(), true));
    txtLokacijaEXE->setText(setting(keys::exeDat(), QDir::toNativeSeparators(desktopOpener())));
    chkAutomatskiPokr->setChecked(settingFlag(keys::automPokr(), false));
    if (cmbKodiranje) {
        const int at = cmbKodiranje->findData(setting(keys::kodiranje(), encodingName(TextEncoding::Windows1250)));
        cmbKodiranje->setCurrentIndex(std::max(at, 0));
    }
}

void frmOfficeExportPost::spremiPostavke() const
{
    const QString app = settings::sharedApplication();
    const QString section = settings::section();
    settings::setText(app, section, keys::nazivDat(), txtNazivDat->text());
    settings::setText(app, section, keys::separator(), txtSeparator->text());
    settings::setText(app, section, keys::decTocka(), txtDecTočka->text());
    settings::setFlag(app, section, keys::prikazNavodnika(), chkPrikazNavodnika->isChecked());
    settings::setText(app, section, keys::exeDat(), txtLokacijaEXE->text());
    settings::setFlag(app, section, keys::automPokr(), chkAutomatskiPokr->isChecked());
    if (cmbKodiranje)
        settings::setText(app, section, keys::kodiranje(), cmbKodiranje->currentData().toString());
}

ExportOptions frmOfficeExportPost::opcije() const
{
    ExportOptions o;
    o.separator = txtSeparator->text();
    o.decimalMark = txtDecTočka->text();
    o.quoteTexts = chkPrikazNavodnika->isChecked();
    if (cmbKodiranje)
        o.encoding = encodingFromName(cmbKodiranje->currentData().toString()).value_or(TextEncoding::Windows1250);
    return o;
}

bool frmOfficeExportPost::PrebaciPodatke()
{
    const QString problem = firstFailedCheck({ txtNazivDat->text(), txtSeparator->text(), txtDecTočka->text(),
        txtLokacijaEXE->text(), chkAutomatskiPokr->isChecked() });
    if (!problem.isEmpty()) {
        warn(problem, windowTitle());
        return false;
    }
    spremiPostavke();
    const QString name = txtNazivDat->text().trimmed();
    if (QFileInfo(name).isDir()) {
        warn(failureText(name + QStringLiteral(" je mapa, a ne datoteka.")), windowTitle());
        return false;
    }
    if (db::isOpenDatabaseFile(name)) {
        warn(failureText(db::openDatabaseRefusal(name)), windowTitle());
        return false;
    }
    // The system's own words would name the failure in English only once writing began.
    const QFileInfo folder(QFileInfo(name).absolutePath());
    if (!folder.isDir() || !folder.isWritable()) {
        warn(failureText((folder.isDir() ? QStringLiteral("u mapu %1 nije dopušteno pisati.")
                                         : QStringLiteral("mapa %1 ne postoji."))
                             .arg(QDir::toNativeSeparators(folder.absoluteFilePath())),
                 QStringLiteral(" Izaberite drugu mapu za datoteku.")),
            windowTitle());
        return false;
    }
    if (QFileInfo::exists(name) && !pitajZaPrepisivanje(name))
        return false;
    ExportResult result;
    if (!upisi(name, &result))
        return false;
    if (!result.unmappable.isEmpty())
        warn(unmappableNote(result.unmappable, result.firstUnmappableLine), QStringLiteral("Napomena"));
    if (chkAutomatskiPokr->isChecked())
        pokreniProgram(name);
    inform(reportText(name, result.rows), windowTitle(), Icon::Information);
    accept();
    return true;
}

bool frmOfficeExportPost::pitajZaPrepisivanje(const QString& name) const
{
    return askYesNo(
        QStringLiteral("Datoteka: ") + name + QStringLiteral(" već postoji. Želite li je prepisati?"), windowTitle());
}

bool frmOfficeExportPost::upisi(const QString& name, ExportResult* result) const
{
    *result = exportToFile(m_rows, opcije(), name);
    // Stopped by the person: the file stays as it was and the form open.
    if (!result->ok() && !result->cancelled)
        warn(failureText(result->error), windowTitle());
    return result->ok();
}

void frmOfficeExportPost::pokreniProgram(const QString& name) const
{
    const QString program = resolveProgram(txtLokacijaEXE->text());
    const QString file = QDir::toNativeSeparators(QFileInfo(name).absoluteFilePath());
    if (!interaction().startProgram(program, { file }))
        warn(failureText(QStringLiteral("program ") + txtLokacijaEXE->text().trimmed()
                 + QStringLiteral(" nije moguće pokrenuti.")),
            windowTitle());
}

void frmOfficeExportPost::GdjeSpremiti()
{
    const QFileInfo current(txtNazivDat->text().trimmed());
    FileChoice choice;
    choice.title = QStringLiteral("Gdje spremiti podatke");
    choice.directory = current.absolutePath();
    choice.fileName = current.fileName();
    choice.filter = QStringLiteral("CSV datoteka (*.csv)|*.csv");
    choice.defaultSuffix = QStringLiteral("csv");
    const QString chosen = interaction().chooseSaveFile(choice);
    if (!chosen.isEmpty())
        txtNazivDat->setText(QDir::toNativeSeparators(chosen));
}

void frmOfficeExportPost::Lokacija()
{
    FileChoice choice;
    choice.title = QStringLiteral("Program za otvaranje datoteke");
    choice.directory = QString::fromLatin1(kProgramFolder);
    choice.filter = QString::fromLatin1(kProgramFilter);
    const QString chosen = interaction().chooseOpenFile(choice);
    if (!chosen.isEmpty())
        txtLokacijaEXE->setText(QDir::toNativeSeparators(chosen));
}

} // namespace knjige::output
