#pragma once

#include "session/Interaction.h"
#include "session/Money.h"
#include "session/db/ResultSet.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>
#include <utility>

namespace knjige::editors
{

// The work modes of every record editor.
enum TipRada { Novi = 1, Izmjena = 2, Pretrazivanje = 3, Brisanje = 4 };

// What one save check found: the message to show and the control (by objectName) that
// takes the focus. A warning is titled "Napomena" and lets the save go on; anything
// else refuses the save.
struct Finding {
    QString text;
    QString focus;
    bool warning = false;
    QString title; // a warning's is always "Napomena"
    Icon icon = Icon::Exclamation;
};
using Findings = QVector<Finding>;

// The checks run in order and stop at the first refusal, so a list holds any number
// of warnings and at most one refusal, at its end.
bool refuses(const Findings& findings);

// The entry-kind lists of the editors, in list order, as their combo boxes show them.
// Each text begins with the stored code. Empty for a book without entry kinds.
QStringList vrstaTexts(int bookKind);
// The numeric value of the first two characters of a list text (leading blanks
// skipped, digits read up to the first non-digit); 0 when there is none.
int vrstaCode(const QString& text);
// The list position that the digits typed into a kind list name: the kind with
// exactly that code, else the first whose code begins with them (typing "1" on the
// way to "16"); -1 when no code fits. Blanks that align the texts do not matter.
int vrstaTyped(const QStringList& texts, const QString& digits);
// The list position that shows a stored code, -1 when the list has none. The
// income/expense books use the position arithmetic of their lists; the others look
// the code up.
int vrstaPosition(int bookKind, int code);

// The statement that reads the entry an editor works on, exactly as the system sends it.
QString readEntrySql(int bookKind, qint16 year, qint16 company, qint32 rbroj, qint32 shop = 0);
// The row of `candidates` (an entry read by its number) that is the entry shown in row
// `listRow` of the browser's `list`: ordinal numbers need not be unique, so the row
// that agrees with the list on the most columns both carry (by name) wins, the first
// of equals. 0 without a list row; -1 when there are no candidates.
int matchingRow(const db::ResultSet& candidates, const db::ResultSet* list, int listRow);
// A result set holding row `row` of `rs` alone.
db::ResultSet singleRow(const db::ResultSet& rs, int row);

// The table an editor writes, as the system names it.
QString entryTable(int bookKind);
// The text after the mode word in the dialog caption (" stavke knjige prometa").
QString captionSuffix(int bookKind);
// The dialog caption for a mode; empty for a mode the editors do not know.
QString modeCaption(int mode, int bookKind);
// The caption of the confirm button for a mode.
QString confirmCaption(int mode);

// The 17 % VAT contained in a gross amount: amount x 17 / 117 in four-decimal currency,
// exact for any amount the money type holds.
Money vatContained(Money gross);

// The period a search starts with: from today - 30 days, to today, each pulled back
// into the working year only when it lies after it.
std::pair<QDate, QDate> searchPeriod(const QDate& today, int workingYear);
// The date a new entry proposes: today, or 31 December of a past working year.
QDate newEntryDate(const QDate& today, int workingYear);

// The save checks of each editor, in the order they run.
struct PrihRashInput {
    qint64 rbroj = 0;
    QDate datum;
    QString isprava;
    QString vrsta; // the selected list text
    Money iznos;
};
Findings checkPrihRash(const PrihRashInput& in, int workingYear);

struct EvidInput {
    qint64 rbroj = 0;
    QDate datum;
    qint32 komitent = 0;
    QString vrsta;
    qint64 kpr = 0;
    QString isprava;
    Money iznos;
};
Findings checkEvid(const EvidInput& in, int workingYear);

struct PopisInput {
    QDate datum;
    QString isprava;
    qint64 vijek = 0; // whole years, as the column keeps them
    Money nabavna;
    Money knjigovodstvena;
};
Findings checkPopis(const PopisInput& in, int workingYear);

struct PrometInput {
    qint64 rbroj = 0;
    QDate datum;
    QString isprava;
    Money gotovina;
    Money cek;
};
Findings checkPromet(const PrometInput& in, int workingYear);

struct TrgInput {
    QString skladiste; // the shop text as typed
    qint64 rbroj = 0;
    QDate datum;
    Money iznos; // services
    Money zaduzenje; // commission
    Money razduzenje;
};
Findings checkUsluga(const TrgInput& in, int workingYear);
Findings checkKomisiona(const TrgInput& in, int workingYear);

struct PrihRashRSInput {
    qint64 rbroj = 0;
    QDate datum;
    QString vrsta;
    Money iznos;
};
Findings checkPrihRashRS(const PrihRashRSInput& in, int workingYear);

// Search mode: the period must not end before it starts.
Findings checkSearchPeriod(const QDate& from, const QDate& to);

} // namespace knjige::editors
