#pragma once

#include <QLocale>
#include <QString>

namespace knjige
{

// The one place that decides the conventions the component writes numbers and dates
// in: the workstation's own, except where the workstation has none of its own (the
// C or POSIX locale of many Linux installations and of every container), where the
// component, whose every text is Bosnian, takes the Bosnian ones: "1.234,56".
QLocale componentLocale();
// The same decision for a locale given explicitly (a widget's, a test's).
QLocale componentLocale(const QLocale& workstation);

// The catalogue of Qt's own texts (print dialog, file chooser, standard buttons) for
// a workstation: Qt has no Bosnian or Serbian Latin catalogue, Croatian serves them
// (and the C locale, where the component speaks Bosnian); other languages name
// their own. Empty for English, which needs none.
QString qtCatalogueName(const QLocale& workstation);

// Installs Qt's translations for the workstation's language once per process, unless
// the host has already installed a Qt translator of its own. Returns whether Qt's
// texts are now translated (by the host's catalogue or ours).
bool installQtTranslations();

} // namespace knjige
