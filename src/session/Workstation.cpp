#include "session/Workstation.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QTranslator>

namespace knjige
{

QLocale componentLocale(const QLocale& workstation)
{
    if (workstation.language() == QLocale::C)
        return QLocale(QLocale::Bosnian, QLocale::BosniaAndHerzegovina);
    return workstation;
}

QLocale componentLocale()
{
    return componentLocale(QLocale());
}

QString qtCatalogueName(const QLocale& workstation)
{
    const QLocale l = componentLocale(workstation);
    switch (l.language()) {
    case QLocale::Bosnian:
    case QLocale::Croatian:
        return QStringLiteral("qtbase_hr");
    case QLocale::Serbian:
        return l.script() == QLocale::CyrillicScript ? QStringLiteral("qtbase_sr") : QStringLiteral("qtbase_hr");
    case QLocale::English:
        return {};
    default:
        return QStringLiteral("qtbase_") + l.name();
    }
}

namespace
{

// A Qt catalogue is in force when one of Qt's own button texts reads otherwise than
// in English.
bool qtTextsTranslated()
{
    return QCoreApplication::translate("QPlatformTheme", "Cancel") != QLatin1String("Cancel");
}

} // namespace

bool installQtTranslations()
{
    static bool installed = false;
    if (installed || qtTextsTranslated())
        return true;
    const QString name = qtCatalogueName(QLocale());
    if (name.isEmpty() || !QCoreApplication::instance())
        return false;
    // Every book window asks; a catalogue that was not there is not looked for again.
    static bool looked = false;
    if (looked)
        return false;
    looked = true;
    // Qt's own folder, then a "translations" folder beside the program (a Windows
    // installation carries its catalogues there).
    const QStringList folders = { QLibraryInfo::path(QLibraryInfo::TranslationsPath),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("translations")) };
    auto* translator = new QTranslator(QCoreApplication::instance());
    for (const QString& folder : folders) {
        // "qtbase_de_DE" falls back to "qtbase_de" by itself.
        if (translator->load(name, folder) && QCoreApplication::installTranslator(translator)) {
            installed = true;
            return true;
        }
    }
    delete translator;
    return false;
}

} // namespace knjige
