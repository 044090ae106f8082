#pragma once

#include <QDate>
#include <QRect>
#include <QString>

namespace knjige::browser
{

// The order every book is listed in; the filter replaces only the WHERE clause.
inline QString orderBy()
{
    return QStringLiteral(" ORDER BY K.RBroj");
}

// The WHERE clause a book opens with: entries of the company booked to the year and
// dated on or after `datumOd`. There is deliberately no upper date bound: an entry of
// the book year dated in a later year is still listed.
QString openingWhere(const QDate& datumOd, int godina, int brojPoduzeca);

// The reporting period of a working year, made from "01.01." and "31.12." + year read
// day first, as the period of an unfiltered book.
QDate periodStart(int godina);
QDate periodEnd(int godina);

// Which book-specific menu entries a kind shows once Prikaži has set them up.
struct MenuVisibility {
    bool rekapitulacija = false; // mnuRekapKnjPrihRash
    bool istaStavka = false; // mnuIstaStavka
    bool renumeracija = true; // mnuRenumeracija
    bool renumeracijaPoDat = true; // mnuRenumeracijaPoDat
    bool ubaciZapis = true; // mnuUbaciZapis
    bool pocetnoStanje = false; // mnuPocetnoStanje
    bool generiranje = false; // mnuGen
    bool uvozIzvozPod = false; // mnuUvozIzvozPod
    bool brisPrikPod = false; // mnuBrisPrikPod
};
MenuVisibility menuVisibility(int tipSifarnika, const QString& nivoPristupa);

// Entries an access level disables after the rights check: "0" none; "1" insertion and
// the copy; any other level also the recapitulation.
struct LevelRestrictions {
    bool ubaciZapis = false;
    bool istaStavka = false;
    bool rekapitulacija = false;
};
LevelRestrictions levelRestrictions(const QString& nivoPristupa);

// A level above "2" is trusted without asking the rights service.
bool levelSkipsRightsService(const QString& nivoPristupa);

// A host's access level is one ASCII digit. Anything else (empty, "12", a full-width
// "０" or an Arabic-Indic "٠", which Unicode counts as digits and which compare above
// "2" as text) is no level: no book opens for it. The message says so; empty for a level.
QString accessLevelProblem(const QString& nivoPristupa);

// Window positions are kept in twips, the unit the settings have always used.
int twipsToPixels(int twips, int dpi);
int pixelsToTwips(int pixels, int dpi);
// The remembered window as it can be shown on a screen of the given free area: no
// larger than the area and wholly inside it, moved as little as it takes. A window
// remembered on a monitor that is gone, or with a mangled setting, still appears.
QRect onScreen(const QRect& window, const QRect& available);

// Settings of the browser. The window's own keys live under an application named
// after the window caption, so each book remembers its own; the display options are
// shared by all books under settings::sharedApplication().
namespace keys
{
inline QString velNazivaSifri()
{
    return QStringLiteral("VelNazivaSifri");
}
inline QString postaviFilterNaPocetku()
{
    return QStringLiteral("PostaviFilterNaPočetku");
}
inline QString selektiranjeKretanjemMisa()
{
    return QStringLiteral("SelektiranjeKretanjemMiša");
}
inline QString opisiNaTipkama()
{
    return QStringLiteral("OpisiNaTipkama");
}
inline QString neKoristiNoviGrid()
{
    return QStringLiteral("mnuNeKoristiNoviGrid");
}
inline QString mainLeft()
{
    return QStringLiteral("MainLeft");
}
inline QString mainTop()
{
    return QStringLiteral("MainTop");
}
inline QString mainWidth()
{
    return QStringLiteral("MainWidth");
}
inline QString mainHeight()
{
    return QStringLiteral("MainHeight");
}
} // namespace keys

// Defaults, in twips for the window geometry.
constexpr int kDefaultLeft = 0;
constexpr int kDefaultTop = 0;
constexpr int kDefaultWidth = 9645;
constexpr int kDefaultHeight = 5800;
constexpr int kDefaultVelNazivaSifri = 3500;

// The fixed path of the grid dump: "c:\PelunGrid.xls" where there is a drive C, else
// PelunGrid.xlsx in the home folder (the workbook is Office Open XML: no other system
// opens it under the old name without a question).
QString gridDumpPath();
// What the operator is told once the grid is written: where, and for the fixed old
// name, why Excel asks before opening it.
QString gridDumpMessage(const QString& path);

} // namespace knjige::browser
