// Draws the pictures of docs/screenshots on the demonstration company (see
// scripts/screenshots, which runs it): knjige_pictures <folder> <group>...
// Groups: browsers, editors (drawn offscreen), renumbering, generator, export, print
// (drawn on a display server). Asserts nothing; it stops at the first failed group.
#include "Pictures.h"
#include "books/Schema.h"
#include "demo/DemoData.h"
#include "session/HostServices.h"
#include "session/Session.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QLocale>
#include <QPixmap>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>
#include <map>

namespace knjige::pictures
{

namespace
{

QTemporaryDir& work()
{
    static QTemporaryDir dir;
    return dir;
}

QString settingsDir()
{
    return work().path() + QStringLiteral("/settings");
}

void tell(const QString& text)
{
    QTextStream(stderr) << text << '\n';
}

} // namespace

Answer Answering::show(const Message& message)
{
    messages << message.text;
    return message.defaultAnswer;
}

int Answering::exec(QDialog& dialog)
{
    return onDialog ? onDialog(dialog) : int(QDialog::Rejected);
}

Scene::Scene(const QString& out)
    : m_out(out)
{
    QDir(settingsDir()).removeRecursively();
    QDir().mkpath(settingsDir());
    installHostServices({});
    static int count = 0;
    m_dir = work().path() + QStringLiteral("/scene%1").arg(++count);
    QDir().mkpath(m_dir);
    const QString path = m_dir + QStringLiteral("/knjige.db");
    QString error;
    check(books::createEmbeddedDatabase(path, &error), QStringLiteral("schema: ") + error);
    Session& s = session();
    s.reset();
    s.ConnString = path;
    s.BrojPoduzeca = 1;
    s.RadnaGodina = 2016;
    check(demo::fillDemoData(s.db(), 2016, &error), QStringLiteral("demo data: ") + error);
    auto answering = std::make_unique<Answering>();
    person = answering.get();
    m_previous = setInteraction(std::move(answering));
}

Scene::~Scene()
{
    setInteraction(std::move(m_previous));
    session().reset();
    installHostServices({});
}

std::unique_ptr<browser::frmSifarnikKnj> Scene::open(int kind)
{
    session().NivoPristupa = QStringLiteral("0");
    session().ImeOperatera = QStringLiteral("Ana");
    auto w = std::make_unique<browser::frmSifarnikKnj>();
    w->setTipSifarnika(kind);
    w->Prikaži(0, {});
    check(w->jePrikazan(), QStringLiteral("the browser of book %1 did not open").arg(kind));
    return w;
}

bool Scene::exec(const QString& tsql)
{
    return check(session().db().execute(tsql), tsql + QStringLiteral(" -> ") + session().db().errorDescription());
}

QString Scene::file(const QString& name) const
{
    return QDir(m_out).filePath(name);
}

bool Scene::save(const QPixmap& picture, const QString& name)
{
    return check(!picture.isNull() && picture.save(file(name)), QStringLiteral("not saved: ") + file(name));
}

bool Scene::save(const QImage& picture, const QString& name, int quality)
{
    return check(picture.save(file(name), "PNG", quality), QStringLiteral("not saved: ") + file(name));
}

bool Scene::check(bool ok, const QString& what)
{
    if (!ok) {
        tell(what);
        failed = true;
    }
    return ok;
}

void Scene::noMessages()
{
    check(person->messages.isEmpty(), QStringLiteral("unexpected messages:\n") + person->messages.join(u'\n'));
}

} // namespace knjige::pictures

int main(int argc, char** argv)
{
    using namespace knjige::pictures;
    QApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    const std::map<QString, void (*)(Scene&)> groups = { { "browsers", browsers }, { "editors", editors },
        { "renumbering", renumbering }, { "generator", generator }, { "export", exportDialog }, { "print", printing } };
    if (args.size() < 2) {
        tell(QStringLiteral("usage: knjige_pictures <folder> browsers|editors|renumbering|generator|export|print..."));
        return 2;
    }
    // Never a developer's real settings.
    qputenv("XDG_CONFIG_HOME", settingsDir().toLocal8Bit());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsDir());
    // The windows as on the workstations they are made for.
    QLocale::setDefault(QLocale(QLocale::Bosnian, QLocale::BosniaAndHerzegovina));
    QDir().mkpath(args[0]);
    for (const QString& name : args.mid(1)) {
        const auto group = groups.find(name);
        if (group == groups.end()) {
            tell(QStringLiteral("no such group of pictures: ") + name);
            return 2;
        }
        Scene scene(args[0]);
        group->second(scene);
        if (scene.failed) {
            tell(QStringLiteral("the pictures of ") + name + QStringLiteral(" failed"));
            return 1;
        }
    }
    return 0;
}
