#pragma once

#include "output/OfficeExport.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace knjige::db
{
class ResultSet;
} // namespace knjige::db

namespace knjige::output
{

// Writes the rows the browser shows (its result set, filter and order in force) into
// a delimited text file for office programs, and can start a program on the file.
// The options are kept under "Arbosa"/"Settings" and written back at each export
// that passes the checks.
//
// The rows are read, not copied: they must outlive the dialog.
class frmOfficeExportPost final : public QDialog
{
    Q_OBJECT
public:
    explicit frmOfficeExportPost(const db::ResultSet& rows, QWidget* parent = nullptr);

    // cmdPrebaciPodatke: the checks, the overwrite question, the file, the program,
    // the report. True when the file was written; the dialog then closes.
    bool PrebaciPodatke();
    // cmdGdjeSpremiti and cmdLokacija: choose the file and the program.
    void GdjeSpremiti();
    void Lokacija();

    // The options as the controls hold them.
    output::ExportOptions opcije() const;

    QLineEdit* txtNazivDat = nullptr;
    QLineEdit* txtSeparator = nullptr;
    QLineEdit* txtDecTočka = nullptr;
    QCheckBox* chkPrikazNavodnika = nullptr;
    QLineEdit* txtLokacijaEXE = nullptr;
    QCheckBox* chkAutomatskiPokr = nullptr;
    // Only where the system has no Windows-1250 code page (everywhere but Windows).
    QComboBox* cmbKodiranje = nullptr;
    QPushButton* cmdGdjeSpremiti = nullptr;
    QPushButton* cmdLokacija = nullptr;
    QPushButton* cmdPrebaciPodatke = nullptr;
    QPushButton* cmdIzlaz = nullptr;

private:
    void napraviKontrole();
    void citajPostavke();
    void spremiPostavke() const;
    bool pitajZaPrepisivanje(const QString& name) const;
    bool upisi(const QString& name, output::ExportResult* result) const;
    void pokreniProgram(const QString& name) const;

    const db::ResultSet& m_rows;
};

} // namespace knjige::output
