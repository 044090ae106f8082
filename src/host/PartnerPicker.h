#pragma once

#include "session/HostServices.h"

#include <QDialog>
#include <QVector>
#include <optional>

class QLineEdit;
class QLabel;
class QTreeWidget;

namespace knjige::host
{

// The host's chooser of a business partner (or shop): a list of code and name that
// narrows as the person types into the search field. Enter or a double click takes
// the current row.
class PartnerPickerDialog final : public QDialog
{
    Q_OBJECT
public:
    PartnerPickerDialog(const QString& title, const QVector<Partner>& partners, QWidget* parent = nullptr);

    // The partners shown under the current search text, in list order.
    QVector<Partner> visiblePartners() const;
    // The partner taken; set only when the dialog was accepted on a row.
    std::optional<Partner> chosen() const { return m_chosen; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void applyFilter();
    void takeCurrent();

    QLineEdit* m_search;
    QTreeWidget* m_list;
    QLabel* m_count;
    std::optional<Partner> m_chosen;
};

// Case- and accent-insensitive form of a text for searching ("Ilidža" → "ilidza").
QString searchForm(const QString& text);

// Partners or shops from dbo.Komitent on the session's database. choose() shows the
// picker through the interaction seam; a failed read is reported and gives nothing.
// The shops are the partners the company's trade books already keep as sales points
// (the table has no mark for a shop); while no trade book has an entry, every partner
// is offered, and the title says so.
class KomitentRegister final : public PartnerRegister
{
public:
    enum class Kind { Partners, Shops };
    explicit KomitentRegister(Kind kind)
        : m_kind(kind)
    {
    }

    std::optional<Partner> choose() override;
    std::optional<Partner> find(qint32 code) override;

    QString title() const;
    static QString listSql(Kind kind = Kind::Partners);
    // Every partner (or shop), or nothing (with the failure reported) when the read fails.
    static std::optional<QVector<Partner>> readAll(Kind kind = Kind::Partners);

private:
    Kind m_kind;
};

} // namespace knjige::host
