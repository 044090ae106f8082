#pragma once

#include "editors/widgets/RecordEditor.h"
#include "session/HostServices.h"

namespace knjige::editors
{

// The editor of the records of receivables and liabilities (97 FBiH, 102 RS, one
// table). Each entry names a business partner, chosen through the host's partner
// register, and may point at its entry in the income and expense book (ubKPR).
class frmKnjEvidPotObvFBiH final : public RecordEditor
{
    Q_OBJECT
public:
    explicit frmKnjEvidPotObvFBiH(int bookKind, QWidget* parent = nullptr);

    void PreuzmiStavku(const db::ResultSet& rs, int row) override;
    // The partner as chosen or looked up: code 0 and no name when there is none.
    Partner cKomit() const { return m_komitent; }

    QLineEdit* txtKomitent = nullptr;
    QPushButton* cmdPrKomit = nullptr;
    QLabel* lblKomit = nullptr;
    QComboBox* cboVrsta = nullptr;
    QLineEdit* txtIsprava = nullptr;
    QLineEdit* txtOpis = nullptr;
    MoneyBox* ubIznos = nullptr;
    MoneyBox* ubKPR = nullptr;

protected:
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
    QComboBox* kindList() const override { return cboVrsta; }
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void izaberiKomitenta();
    void nadjiKomitenta(qint32 code);
    void syncKomitent();
    void showKomitent();

    Partner m_komitent;
};

} // namespace knjige::editors
