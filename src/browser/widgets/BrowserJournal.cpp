// The book's own evidence: the book check's report and the closing of a period.
#include "browser/widgets/frmSifarnikKnj.h"
#include "journal/BookCheck.h"
#include "journal/PeriodLock.h"
#include "output/widgets/frmPrikazTeksta.h"
#include "session/Failure.h"
#include "session/Interaction.h"
#include "session/Session.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace knjige::browser
{

void frmSifarnikKnj::ProvjeraKnjige()
{
    const journal::bookcheck::Report report
        = journal::bookcheck::check(session().db(), { m_query.bookKind, m_query.company, m_query.year, BrojProd() });
    output::frmPrikazTeksta viewer(this);
    viewer.Prikaži(QStringLiteral("Provjera knjige"), report.text, false, {});
}

void frmSifarnikKnj::lockPeriod()
{
    const Session& s = session();
    if (s.NivoPristupa != journal::periodlock::kLevel) {
        warn(QStringLiteral("Razdoblje knjige mogu zaključati samo operateri s nivoom pristupa 0."));
        return;
    }
    db::Database& db = session().db();
    const journal::Scope scope { m_query.bookKind, m_query.company, m_query.year, 0 };
    QDate current;
    QString error;
    if (!journal::periodlock::lockDate(db, scope, &current, &error)) {
        warn(failureText(error));
        return;
    }
    QDialog dialog(this);
    dialog.setObjectName(QStringLiteral("frmZakljucavanje"));
    dialog.setWindowTitle(QStringLiteral("Zaključaj razdoblje"));
    auto* form = new QFormLayout(&dialog);
    auto* lblStanje = new QLabel(current.isValid()
            ? QStringLiteral("Knjiga je zaključana do %1.").arg(current.toString(QStringLiteral("dd.MM.yyyy")))
            : QStringLiteral("Knjiga nije zaključana."),
        &dialog);
    lblStanje->setObjectName(QStringLiteral("lblStanje"));
    form->addRow(lblStanje);
    auto* dpDo = new QDateEdit(current.isValid() ? current : QDate(s.RadnaGodina, 1, 31), &dialog);
    dpDo->setObjectName(QStringLiteral("dpZakljucanoDo"));
    dpDo->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    form->addRow(QStringLiteral("Zaključati do:"), dpDo);
    auto* chkOtkljucaj = new QCheckBox(QStringLiteral("Otključati razdoblje"), &dialog);
    chkOtkljucaj->setObjectName(QStringLiteral("chkOtkljucaj"));
    form->addRow(chkOtkljucaj);
    auto* txtRazlog = new QLineEdit(&dialog);
    txtRazlog->setObjectName(QStringLiteral("txtRazlog"));
    form->addRow(QStringLiteral("Razlog otključavanja:"), txtRazlog);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    buttons->setObjectName(QStringLiteral("buttons"));
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    if (interaction().exec(dialog) != QDialog::Accepted)
        return;
    const bool opened = chkOtkljucaj->isChecked();
    const bool done = opened ? journal::periodlock::unlock(db, scope, txtRazlog->text(), &error)
                             : journal::periodlock::lock(db, scope, dpDo->date(), &error);
    if (!done) {
        warn(failureText(error));
        return;
    }
    inform(opened
            ? QStringLiteral("Razdoblje knjige je otključano.")
            : QStringLiteral("Knjiga je zaključana do %1.").arg(dpDo->date().toString(QStringLiteral("dd.MM.yyyy"))),
        {}, Icon::Information);
}

} // namespace knjige::browser
