#include "browser/BrowserRules.h"

#include "books/BookKind.h"
#include "session/Dates.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace knjige::browser
{

QString openingWhere(const QDate& datumOd, int godina, int brojPoduzeca)
{
    return QStringLiteral(" WHERE  K.Datum>='") + dates::sqlLiteral(datumOd) + QStringLiteral("' AND K.GodinaKnj=")
        + QString::number(godina) + QStringLiteral(" AND K.BrojPoduzeca=") + QString::number(brojPoduzeca);
}

QDate periodStart(int godina)
{
    return dates::parseDayFirst(QStringLiteral("01.01.") + QString::number(godina));
}
QDate periodEnd(int godina)
{
    return dates::parseDayFirst(QStringLiteral("31.12.") + QString::number(godina));
}

MenuVisibility menuVisibility(int tipSifarnika, const QString& nivoPristupa)
{
    MenuVisibility m;
    const books::BookKind* book = books::findBook(tipSifarnika);
    if (!book)
        return m;
    m.istaStavka = true;
    m.rekapitulacija = book->menus.recapitulation;
    m.pocetnoStanje = book->menus.openingState;
    m.generiranje = book->menus.generation;
    m.brisPrikPod = book->menus.deleteShownAtLevel2 && nivoPristupa == QStringLiteral("2");
    m.renumeracija = book->renumbers;
    m.renumeracijaPoDat = book->renumbers;
    m.ubaciZapis = book->renumbers;
    return m;
}

LevelRestrictions levelRestrictions(const QString& nivoPristupa)
{
    LevelRestrictions r;
    if (nivoPristupa == QStringLiteral("0"))
        return r;
    r.ubaciZapis = true;
    r.istaStavka = true;
    r.rekapitulacija = nivoPristupa != QStringLiteral("1");
    return r;
}

bool levelSkipsRightsService(const QString& nivoPristupa)
{
    return accessLevelProblem(nivoPristupa).isEmpty()
        && QString::compare(nivoPristupa, QStringLiteral("2"), Qt::CaseSensitive) > 0;
}

QString accessLevelProblem(const QString& nivoPristupa)
{
    if (nivoPristupa.size() == 1 && nivoPristupa[0] >= u'0' && nivoPristupa[0] <= u'9')
        return {};
    return QStringLiteral("Nivo pristupa mora biti jedna znamenka od 0 do 9, a zadan je \"%1\".").arg(nivoPristupa);
}

int twipsToPixels(int twips, int dpi)
{
    return int(std::lround(double(twips) * dpi / 1440.0));
}
int pixelsToTwips(int pixels, int dpi)
{
    return int(std::lround(double(pixels) * 1440.0 / dpi));
}

QRect onScreen(const QRect& window, const QRect& available)
{
    if (available.isEmpty())
        return window;
    const int width = std::clamp(window.width(), 1, available.width());
    const int height = std::clamp(window.height(), 1, available.height());
    const int left = std::clamp(window.left(), available.left(), available.right() + 1 - width);
    const int top = std::clamp(window.top(), available.top(), available.bottom() + 1 - height);
    return QRect(left, top, width, height);
}

QString gridDumpPath()
{
#ifdef Q_OS_WIN
    if (QFileInfo(QStringLiteral("c:/")).isDir())
        return QStringLiteral("c:\\PelunGrid.xls");
#endif
    return QDir::home().filePath(QStringLiteral("PelunGrid.xlsx"));
}

QString gridDumpMessage(const QString& path)
{
    QString text
        = QStringLiteral("Tablica je spremljena kao Excel radna knjiga u datoteku:\n") + QDir::toNativeSeparators(path);
    if (path.endsWith(QLatin1String(".xls"), Qt::CaseInsensitive))
        text += QStringLiteral("\nDatoteka je u formatu .xlsx pod imenom .xls: Excel pri otvaranju pita "
                               "smije li je otvoriti, odgovorite s \"Da\".");
    return text;
}

} // namespace knjige::browser
