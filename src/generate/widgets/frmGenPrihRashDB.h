#pragma once

#include "generate/Generation.h"
#include "generate/SourceDatabase.h"

#include <QDialog>
#include <optional>

class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace knjige::generate
{

// The generator of the DB income and expense book: collects the date range, the
// source database and the kind's filter (organisational unit, supplier, warehouse or
// shop and receiver) and runs one generation (generiraj) on OKButton. The
// browser sets the kind with setVrsta, shows the dialog modally through the
// interaction seam and reloads when it closes.
//
// The source's server and database are kept per kind under the application "Arbosa";
// with the server left empty the database field names an embedded database file. The
// password of "sa" is asked here when the password store holds none; it is kept in
// that store once a connection with it succeeded, never in the settings.
class frmGenPrihRashDB final : public QDialog
{
    Q_OBJECT
public:
    explicit frmGenPrihRashDB(QWidget* parent = nullptr);

    // Captions, labels, fields and the remembered source for the kind (0 to 6).
    void setVrsta(int vrsta);
    int Vrsta() const { return m_vrsta; }
    // The run's values as the fields hold them now.
    generate::Parametri parametri() const;
    // The entries the last run wrote.
    int zapisano() const { return m_zapisano; }

    QDateEdit* dpDatum = nullptr;
    QDateEdit* dpDatum1 = nullptr;
    QLineEdit* txtImeServera = nullptr;
    QLineEdit* txtBazaPodataka = nullptr;
    QLineEdit* txtLozinka = nullptr;
    QLineEdit* txtOrgJed = nullptr;
    QLineEdit* txtKomit = nullptr;
    QPushButton* cmdPrKomit = nullptr;
    QLineEdit* txtSkladište = nullptr;
    QPushButton* cmdPrSkladište = nullptr;
    QLineEdit* txtPrima = nullptr;
    QPushButton* OKButton = nullptr;
    QPushButton* CancelButton = nullptr;

private:
    void napraviKontrole();
    void OKButton_Click();
    void showSource();
    void izaberiDatoteku();
    void izaberi(bool supplier);
    void showName(QLineEdit* polje, QLabel* naziv, bool partner);
    generate::IzvorPodataka izvor() const;
    // The password for the source; nothing when one is needed and none is known
    // (the person is told).
    std::optional<QString> lozinka();

    int m_vrsta = -1;
    int m_zapisano = 0;
    std::optional<bool> m_imaLozinku;
    QLabel* m_uputa = nullptr;
    QGroupBox* m_fraServer = nullptr;
    QLabel* m_lblBaza = nullptr;
    QLabel* m_lblLozinka = nullptr;
    QPushButton* m_cmdBaza = nullptr;
    QList<QWidget*> m_orgJed;
    QList<QWidget*> m_supplier;
    QList<QWidget*> m_shop;
    QLabel* m_lblKomit = nullptr;
    QLabel* m_lblShop = nullptr;
    QLabel* m_lblPrima = nullptr;
    QLabel* m_nazivKomit = nullptr;
    QLabel* m_shopName = nullptr;
    QLabel* m_nazivPrima = nullptr;
};

} // namespace knjige::generate
