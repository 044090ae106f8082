#pragma once

#include "editors/widgets/RecordEditor.h"
#include "session/HostServices.h"

namespace knjige::editors
{

// What the two trade book editors share: entries are kept per shop (BrojProd), chosen
// through the host's register of shops, and numbered per shop. A new entry takes the
// next number of its shop whenever the shop is set.
class TrgKnjigaEditor : public RecordEditor
{
    Q_OBJECT
public:
    void setShop(qint32 shop) override;
    // The shop as chosen or looked up: code 0 and no name when there is none.
    Partner cSkladište() const;

    QLineEdit* txtSkladište = nullptr;
    QPushButton* cmdPrSkladište = nullptr;
    QLabel* lblShop = nullptr;
    QLineEdit* txtOpis = nullptr;

protected:
    TrgKnjigaEditor(int bookKind, QWidget* parent);
    // The rows common to both books; the amounts follow.
    void addHeadRows();
    QString readStatement() const override;
    void prepare() override;
    void fillHead(const db::ResultSet& rs);
    void copyHead(const db::ResultSet& rs, int row);
    editors::TrgInput input() const;
    // A typed shop that dbo.Komitent does not know is refused: the browser lists the
    // trade books joined to it and would hide the entry.
    editors::Findings unknownShop() const;
    db::RowChange::Values headValues() const;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void chooseShop();
    void lookUpShop();
    void predloziBroj();
    qint32 shopCode() const;

    Partner m_shop;
};

// The trade book of services (125).
class frmKnjUsluga final : public TrgKnjigaEditor
{
    Q_OBJECT
public:
    explicit frmKnjUsluga(QWidget* parent = nullptr);
    void PreuzmiStavku(const db::ResultSet& rs, int row) override;

    MoneyBox* ubIznos = nullptr;

protected:
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
};

// The trade book of goods on commission (126).
class frmKnjKomisiona final : public TrgKnjigaEditor
{
    Q_OBJECT
public:
    explicit frmKnjKomisiona(QWidget* parent = nullptr);
    void PreuzmiStavku(const db::ResultSet& rs, int row) override;

    MoneyBox* ubZaduženje = nullptr;
    MoneyBox* ubRazduženje = nullptr;

protected:
    void fill(const db::ResultSet& rs) override;
    editors::Findings checks() override;
    db::RowChange::Values rowValues() const override;
};

} // namespace knjige::editors
