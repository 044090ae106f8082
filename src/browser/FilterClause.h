#pragma once

#include "session/Money.h"
#include "session/Workstation.h"

#include <QDate>
#include <QLocale>
#include <QString>
#include <optional>
#include <utility>

namespace knjige::browser
{

// What the operator left in a record editor's controls in its filter mode. Each member
// is named after the control it is read from; a book kind reads only the controls of
// its own editor and ignores the rest.
struct FilterInput {
    bool chkPoDatumima = false;
    QDate dpDatum; // period start when chkPoDatumima is set
    QDate dpDatumDo; // period end when chkPoDatumima is set
    QString txtIsprava;
    QString txtOpis;
    QString vrsta; // the text of cmbVrsta (96, 109) or cboVrsta (97, 99, 100, 102)
    QString txtKomitent; // the partner code as typed (97, 102)
    QString imeKomitenta; // the partner picker's name (102)
    QString txtNazivSredstva; // asset lists
    QString txtNaziv; // the RS asset list's name pattern (see buildFilter)
    QString txtBrojDokumenta; // asset lists
    qint32 prodavnica = 0; // the shop picker's code (125, 126); 0: none chosen
    QString imeProdavnice; // the shop picker's name
    Money ubIznos;
    Money ubIznosPDV;
    Money ubKPR;
    Money ubGotovina;
    Money ubCek;
    Money ubNabavna;
    Money ubKnjigovodstvena;
    Money ubVijekTrajanja;
    Money ubZaduženje;
    Money ubRazduženje;
};

// The browser's filter: the WHERE clause placed between the book's SELECT and its
// ORDER BY, the conditions it was made of (joined by " AND "), their description in
// words (joined by ","), the reporting period, and for the trade books the chosen
// sales point (0: none chosen, the remembered one stays in force).
struct FilterState {
    QString where;
    QString conditions;
    QString description;
    QDate periodStart;
    QDate periodEnd;
    qint32 salesPoint = 0;
};

// Whether a book kind has a filter form (every book of the catalogue has one).
bool isFilterable(int bookKind);

// Turns a confirmed filter form into the filter. The date condition comes first, then
// the kind's own conditions in a fixed order; a text field gives a prefix match, the
// kind list its two-character code as a prefix, the partner code and the asset
// document number an equality, an amount an equality unless it is 0 (so zero amounts
// cannot be filtered for). Apostrophes typed into a text are doubled in the condition,
// so they never end the SQL string; % and _ stay wildcards as typed. The description
// shows the texts as typed and amounts as `locale` shows money.
//
// The RS asset list (101) takes its name condition when txtNazivSredstva is filled but
// its pattern from txtNaziv; the FBiH list (105) takes both from txtNazivSredstva.
//
// The WHERE clause always begins " WHERE K.BrojPoduzeca=" + company + " AND ", and the
// conditions begin with a blank, so the clause holds "AND  K.Datum" (two blanks).
FilterState buildFilter(
    int bookKind, qint16 company, qint16 year, const FilterInput& input, const QLocale& locale = componentLocale());

// The filter of a confirmed form that holds only the period from..to (both valid, from
// not after to) and, for the trade books, the sales point with the name its picker
// shows. What scripts and reports use to narrow a book to a period as the operator would.
FilterState periodFilter(int bookKind, const QDate& from, const QDate& to, qint16 company, qint16 year,
    qint32 salesPoint = 0, const QString& salesPointName = {});

// "Filter : " + description, or "Filter: Svi" without one: the filter line of the
// browser and of report headers.
QString filterLine(const QString& description);

// Reads a period given as "dd.mm.yyyy-dd.mm.yyyy" (one or two digits for day and
// month). Nothing, with a sentence for the person in `error`, for text that is not two
// real dates, a start after the end, or (when `year` is given) a period that does not
// reach into that working year.
std::optional<std::pair<QDate, QDate>> parsePeriod(const QString& text, int year = 0, QString* error = nullptr);

} // namespace knjige::browser
