#pragma once

#include "editors/widgets/RecordEditor.h"

namespace knjige::editors
{

// The editor of the inventory list of long-term assets (101 RS, 105 FBiH, one table).
// It never writes RBroj: the table numbers a new asset itself, and a changed number
// in the dialog does not renumber an existing one.
class frmPopListaDImovineFBiH final : public RecordEditor
{
    Q_OBJECT
public:
    explicit frmPopListaDImovineFBiH(int bookKind, QWidget* parent = nullptr);

    void PreuzmiStavku(const db::ResultSet& rs, int row) override;
    // A new asset: the number the table gave it (read back after the insert, 0 when
    // that read failed); a changed one keeps the number it was opened with.
    qint32 spremljeniRBroj() const override;

    QLineEdit* txtBrojDokumenta = nullptr;
    QLineEdit* txtNazivSredstva = nullptr;
    // Kept for the RS list's search, which takes its name pattern from this box; it is
    // never shown and stays empty.
    QLineEdit* txtNaziv = nullptr;
    MoneyBox* ubVijekTrajanja = nullptr;
    MoneyBox* ubNabavna = nullptr;
    MoneyBox* ubKnjigovodstvena = nullptr;

protected:
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
    void afterWrite() override;

private:
    qint32 m_dodijeljeniRBroj = 0;
};

} // namespace knjige::editors
