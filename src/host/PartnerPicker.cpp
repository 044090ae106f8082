#include "host/PartnerPicker.h"

#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"
#include "session/widgets/DialogInteraction.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace knjige::host
{

QString searchForm(const QString& text)
{
    const QString decomposed = text.toLower().normalized(QString::NormalizationForm_D);
    QString out;
    out.reserve(decomposed.size());
    for (QChar c : decomposed) {
        if (c.category() == QChar::Mark_NonSpacing)
            continue;
        out += c == u'đ' ? QChar(u'd') : c;
    }
    return out;
}

PartnerPickerDialog::PartnerPickerDialog(const QString& title, const QVector<Partner>& partners, QWidget* parent)
    : QDialog(parent)
    , m_search(new QLineEdit(this))
    , m_list(new QTreeWidget(this))
    , m_count(new QLabel(this))
{
    setObjectName(QStringLiteral("frmIzborKomitenta"));
    setWindowTitle(title);
    m_search->setObjectName(QStringLiteral("txtTrazi"));
    m_search->setPlaceholderText(QStringLiteral("Traži po šifri ili nazivu"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);

    m_list->setObjectName(QStringLiteral("lvKomitenti"));
    m_list->setHeaderLabels({ QStringLiteral("Šifra"), QStringLiteral("Naziv") });
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_list->header()->setStretchLastSection(true);
    for (const Partner& p : partners) {
        auto* item = new QTreeWidgetItem(m_list, { QString::number(p.SifKomit), p.ImeKomit1 });
        item->setData(0, Qt::UserRole, p.SifKomit);
        item->setTextAlignment(0, Qt::AlignRight | Qt::AlignVCenter);
    }

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QStringLiteral("Izaberi"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdIzaberi"));
    ok->setDefault(true);
    QPushButton* cancel = buttons->addButton(QStringLiteral("Odustani"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdOdustani"));
    m_count->setObjectName(QStringLiteral("lblBroj"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(m_list, 1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_count, 1);
    bottom->addWidget(buttons);
    layout->addLayout(bottom);
    resize(460, 420);

    connect(m_search, &QLineEdit::textChanged, this, [this] { applyFilter(); });
    connect(m_list, &QTreeWidget::itemActivated, this, [this] { takeCurrent(); });
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { takeCurrent(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    applyFilter();
}

void PartnerPickerDialog::applyFilter()
{
    const QString needle = searchForm(m_search->text().trimmed());
    QTreeWidgetItem* first = nullptr;
    int shown = 0;
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = m_list->topLevelItem(i);
        const bool match
            = needle.isEmpty() || item->text(0).startsWith(needle) || searchForm(item->text(1)).contains(needle);
        item->setHidden(!match);
        if (match && !first)
            first = item;
        shown += match ? 1 : 0;
    }
    QTreeWidgetItem* current = m_list->currentItem();
    if (!current || current->isHidden())
        m_list->setCurrentItem(first);
    m_count->setText(QStringLiteral("Prikazano: %1 od %2").arg(shown).arg(m_list->topLevelItemCount()));
}

QVector<Partner> PartnerPickerDialog::visiblePartners() const
{
    QVector<Partner> out;
    for (int i = 0; i < m_list->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_list->topLevelItem(i);
        if (!item->isHidden())
            out.append({ item->data(0, Qt::UserRole).toInt(), item->text(1) });
    }
    return out;
}

void PartnerPickerDialog::takeCurrent()
{
    const QTreeWidgetItem* item = m_list->currentItem();
    if (!item || item->isHidden())
        return;
    m_chosen = Partner { item->data(0, Qt::UserRole).toInt(), item->text(1) };
    accept();
}

// The search field keeps the focus; the arrow and page keys move through the list.
bool PartnerPickerDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown: {
            QKeyEvent copy(key->type(), key->key(), key->modifiers());
            QCoreApplication::sendEvent(m_list, &copy);
            return true;
        }
        case Qt::Key_Return:
        case Qt::Key_Enter:
            takeCurrent();
            return true;
        default:
            break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

QString KomitentRegister::listSql(Kind kind)
{
    if (kind == Kind::Partners)
        return QStringLiteral("SELECT SifKomit,ImeKomit1 FROM dbo.Komitent ORDER BY SifKomit");
    const QString company = QString::number(session().BrojPoduzeca);
    return QStringLiteral(
        "SELECT P.BrojProd AS SifKomit,K.ImeKomit1 FROM (SELECT BrojProd FROM dbo.TrgKnjUsluga "
        "WHERE BrojPoduzeca=%1 UNION SELECT BrojProd FROM dbo.TrgKnjKomisiona WHERE BrojPoduzeca=%1) P "
        "LEFT JOIN dbo.Komitent K ON K.SifKomit=P.BrojProd ORDER BY P.BrojProd")
        .arg(company);
}

QString KomitentRegister::title() const
{
    return m_kind == Kind::Shops ? QStringLiteral("Izbor maloprodaje / skladišta") : QStringLiteral("Izbor komitenta");
}

std::optional<QVector<Partner>> KomitentRegister::readAll(Kind kind)
{
    db::Database& db = session().db();
    db::ResultSet rs;
    if (!db.open(listSql(kind), rs)) {
        warn(failureText(db.errorDescription()));
        return std::nullopt;
    }
    QVector<Partner> out;
    out.reserve(rs.rowCount());
    for (int r = 0; r < rs.rowCount(); ++r)
        out.append({ qint32(rs.integer(r, 0)), rs.isNull(r, 1) ? QString() : rs.text(r, 1).trimmed() });
    return out;
}

std::optional<Partner> KomitentRegister::choose()
{
    auto all = readAll(m_kind);
    QString caption = title();
    if (all && all->isEmpty() && m_kind == Kind::Shops) {
        all = readAll(Kind::Partners);
        caption += QStringLiteral(" (trgovačke knjige još nemaju stavki: svi komitenti)");
    }
    if (!all)
        return std::nullopt;
    PartnerPickerDialog dialog(caption, *all, dialogOwner());
    if (interaction().exec(dialog) != QDialog::Accepted)
        return std::nullopt;
    return dialog.chosen();
}

std::optional<Partner> KomitentRegister::find(qint32 code)
{
    db::ResultSet rs;
    if (!session().db().open(
            QStringLiteral("SELECT SifKomit,ImeKomit1 FROM dbo.Komitent WHERE SifKomit=") + QString::number(code), rs)
        || rs.isEmpty())
        return std::nullopt;
    return Partner { qint32(rs.integer(0, 0)), rs.text(0, 1).trimmed() };
}

} // namespace knjige::host
