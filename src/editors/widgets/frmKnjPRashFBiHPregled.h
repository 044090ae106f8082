#pragma once

#include "editors/widgets/RecordEditor.h"

class QAction;
class QMenu;
class QMenuBar;

namespace knjige::editors
{

// The editor of the income and expense books: FBiH (96, with the VAT it contains) and
// DB (109, without VAT).
class frmKnjPRashFBiHPregled final : public RecordEditor
{
    Q_OBJECT
public:
    explicit frmKnjPRashFBiHPregled(int bookKind, QWidget* parent = nullptr);

    void PreuzmiStavku(const db::ResultSet& rs, int row) override;

    QLineEdit* txtIsprava = nullptr;
    QLineEdit* txtOpis = nullptr;
    QComboBox* cmbVrsta = nullptr;
    MoneyBox* ubIznos = nullptr;
    MoneyBox* ubIznosPDV = nullptr;
    QLabel* lblIznosPDV = nullptr;
    QLabel* lblPDVPosto = nullptr;
    QMenuBar* menuBar = nullptr;
    QMenu* mnuPostavke = nullptr;
    QAction* mnuNeIzrPDV = nullptr;

protected:
    void prepare() override;
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
    bool mayDelete() override;
    void afterWrite() override;
    QComboBox* kindList() const override { return cmbVrsta; }

private:
    void fillKinds();
    void onIznosChanged();
    void onIznosLeft();
    bool isFBiH() const;
    int kindsBook() const;

    int m_kindsFor = 0;
};

} // namespace knjige::editors
