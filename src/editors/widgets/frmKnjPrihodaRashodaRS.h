#pragma once

#include "editors/widgets/RecordEditor.h"

namespace knjige::editors
{

// The editor of the RS income book (99) and expense book (100), two tables served by
// one dialog.
class frmKnjPrihodaRashodaRS final : public RecordEditor
{
    Q_OBJECT
public:
    explicit frmKnjPrihodaRashodaRS(int bookKind, QWidget* parent = nullptr);

    void PreuzmiStavku(const db::ResultSet& rs, int row) override;
    // "Knjiga prihoda RS" or "Knjiga rashoda RS".
    QString naslov() const;

    QLabel* lblNaslov = nullptr;
    QLineEdit* txtOpis = nullptr;
    QComboBox* cboVrsta = nullptr;
    MoneyBox* ubIznos = nullptr;
    MoneyBox* ubIznosPDV = nullptr;

protected:
    void prepare() override;
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
    QComboBox* kindList() const override { return cboVrsta; }

private:
    void fillKinds();
    int m_kindsFor = 0;
};

} // namespace knjige::editors
