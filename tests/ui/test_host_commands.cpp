// The window commands of the knjige program, run in process: the book drawn into a
// picture, refused command lines, and the advice given without a display.
#include "books/DemoData.h"
#include "host/HostRights.h"
#include "host/HostWindows.h"
#include "session/Session.h"
#include "support/Sandbox.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"

#include <QDate>
#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

using namespace knjige;

namespace
{

// Takes an environment variable away for the life of the object.
class Unset
{
public:
    explicit Unset(const char* name)
        : m_name(name)
        , m_had(qEnvironmentVariableIsSet(name))
        , m_value(qgetenv(name))
    {
        qunsetenv(name);
    }
    ~Unset()
    {
        if (m_had)
            qputenv(m_name, m_value);
        else
            qunsetenv(m_name);
    }

private:
    const char* m_name;
    bool m_had;
    QByteArray m_value;
};

} // namespace

TEST(HostCommands, OpenDrawsTheBookIntoAPictureAndLeavesTheCallersSeam)
{
    const int year = QDate::currentDate().year();
    test::TestDatabase db(demo::BrojPoduzeca, qint16(year));
    QString error;
    ASSERT_TRUE(fillDemoData(db.db(), year, &error)) << error.toStdString();
    db.exec(host::PravaRights::createSql());
    const QString path = db.path();
    session().reset();
    test::ScopedScript script;
    const QString picture = test::scratchDir() + QStringLiteral("/knjiga.png");

    EXPECT_EQ(host::runOpen({ "96", "--db", path, "--screenshot", picture }), 0);
    const QImage image(picture);
    ASSERT_FALSE(image.isNull());
    EXPECT_GT(image.width(), 300);
    EXPECT_EQ(session().RadnaGodina, year);
    EXPECT_EQ(session().ConnString, QStringLiteral("sqlite:") + QFileInfo(path).absoluteFilePath());

    // The scripted person is still the one in charge.
    warn("probna poruka");
    EXPECT_EQ(script->texts(), QStringList { QStringLiteral("probna poruka") });
}

TEST(HostCommands, WrongCommandLinesAreRefusedBeforeAnythingIsMade)
{
    const QString missing = test::scratchDir() + QStringLiteral("/nema.db");
    EXPECT_EQ(host::runOpen({ "104" }), 2);
    EXPECT_EQ(host::runOpen({ "clsNemaTakve" }), 2);
    EXPECT_EQ(host::runOpen({}), 2);
    EXPECT_EQ(host::runOpen({ "96", "--year", "dvije" }), 2);
    EXPECT_EQ(host::runOpen({ "96", "--level", "12" }), 2);
    EXPECT_EQ(host::runChooser({ "--nepoznato" }), 2);
    // A period that is no period, or not of the year; a sales point of a book without one.
    for (const char* period : { "31.03.2016-01.03.2016", "1.3.2016", "01.03.2015-31.03.2015" })
        EXPECT_EQ(host::runOpen({ "96", "--year=2016", "--db", missing, "--period", QString::fromLatin1(period) }), 2)
            << period;
    EXPECT_EQ(host::runOpen({ "96", "--prod", "501" }), 2);
    EXPECT_EQ(host::runOpen({ "125", "--prod", "-1" }), 2);
    EXPECT_EQ(host::runChooser({ "--period", "01.03.2016-31.03.2016" }), 2);
    EXPECT_EQ(host::runOpen({ "96", "--db", missing }), 1);
    EXPECT_EQ(host::runChooser({ "--db", missing, "--conn", missing }), 2);
    EXPECT_FALSE(QFileInfo::exists(missing));
}

TEST(HostCommands, WithoutADisplayOnlyAPictureCanBeMade)
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    Unset display("DISPLAY");
    Unset wayland("WAYLAND_DISPLAY");
    Unset platform("QT_QPA_PLATFORM");
    EXPECT_EQ(host::prepareWindowSystem({}), 1);
    EXPECT_EQ(host::prepareWindowSystem({ "open", "96" }), 1);
    EXPECT_EQ(host::prepareWindowSystem({ "--screenshot", "a.png" }), 0);
    EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), QByteArray("offscreen"));
#else
    GTEST_SKIP() << "a display is always there";
#endif
}
