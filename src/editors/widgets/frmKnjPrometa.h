#pragma once

#include "editors/widgets/RecordEditor.h"

namespace knjige::editors
{

// The editor of the turnover books (98 FBiH, 106 RS, one table): cash and cheque (or,
// in RS, invoice) turnover of a day.
class frmKnjPrometa final : public RecordEditor
{
    Q_OBJECT
public:
    explicit frmKnjPrometa(int bookKind, QWidget* parent = nullptr);

    void PreuzmiStavku(const db::ResultSet& rs, int row) override;

    QLineEdit* txtIsprava = nullptr;
    QLineEdit* txtOpis = nullptr;
    MoneyBox* ubGotovina = nullptr;
    MoneyBox* ubCek = nullptr;
    QLabel* lblČekovi = nullptr;

protected:
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
};

} // namespace knjige::editors
