// Faults found by using the product end to end, each pinned where it was fixed.

#include "ResultText.h"
#include "browser/BookModel.h"
#include "browser/BrowserRules.h"
#include "output/OfficeExport.h"
#include "output/ReportPages.h"
#include "session/Money.h"
#include "support/Sandbox.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace knjige;

namespace
{

const QString outOfRange = QString::fromUtf8(Money::OutOfRangeText);

} // namespace

// A thousand entries of the largest amount an editor takes sum past the money type's
// range; the sum used to wrap around to a negative total in the grid and the printout.
TEST(Regression, SumsPastTheMoneyRangeNeverShowAWrongAmount)
{
    const Money big = Money::fromWhole(500000000000000);
    const qint64 lowest = std::numeric_limits<qint64>::min(), highest = std::numeric_limits<qint64>::max();
    // Out of range, and stays so (big + big - big), as the server's error would; one
    // past either end of the range is out of it.
    const Money outside[] = { big + big, -big - big, big + big - big, big * 2, Money::fromWhole(1000000000000000),
        Money::fromDouble(1e300), Money::fromUnits(lowest) - Money::fromUnits(1),
        Money::fromUnits(lowest) + Money::fromUnits(-1), -Money::fromUnits(lowest), Money::fromUnits(lowest) * -1,
        Money::fromUnits(highest) + Money::fromUnits(1), Money::fromUnits(highest) - Money::fromUnits(-1) };
    for (const Money& value : outside) {
        EXPECT_TRUE(value.isOutOfRange()) << value.toString().toStdString();
        EXPECT_EQ(value.toDisplayString(), outOfRange);
    }
    // The whole range holds amounts.
    const std::pair<Money, const char*> inside[] = {
        { big + Money::fromUnits(4000000000000001200), "900,000,000,000,000.12" },
        { -big - Money::fromUnits(4223372036854775807), "-922,337,203,685,477.58" },
        { Money::fromUnits(lowest), "-922,337,203,685,477.58" },
        { Money::fromUnits(lowest + 2), "-922,337,203,685,477.58" },
        { Money::fromUnits(-4611686018427387904) * 2, "-922,337,203,685,477.58" },
        { Money::fromUnits(highest) - Money::fromUnits(highest) + Money::fromUnits(lowest), "-922,337,203,685,477.58" },
        { Money::fromUnits(highest), "922,337,203,685,477.58" },
    };
    for (const auto& [value, shown] : inside)
        EXPECT_EQ(value.toDisplayString(), QString::fromLatin1(shown));

    db::ResultSet rs({ { "RBroj", db::FieldType::Integer }, { "GodinaKnj", db::FieldType::Integer },
        { "Datum", db::FieldType::Date }, { "Isprava", db::FieldType::Text }, { "Opis", db::FieldType::Text },
        { "IznosGot", db::FieldType::Currency }, { "IznosCek", db::FieldType::Currency },
        { "I", db::FieldType::Text } });
    output::report::Paginator pages(60, 60, 2);
    for (int r = 0; r < 2; ++r) {
        rs.appendRow();
        rs.setInteger(0, r + 1);
        rs.setMoney(5, big);
        rs.setMoney(6, Money::fromDouble(1.25));
        pages.add(1, { big, Money::fromDouble(1.25) });
    }
    browser::BookModel model;
    model.setBookKind(98);
    model.setLocale(QLocale::c());
    model.setResultSet(rs);
    EXPECT_EQ(model.displayText(0, 5), outOfRange);
    EXPECT_EQ(model.displayText(0, 6), QStringLiteral("2.50"));
    const QVector<output::report::Page> printed = pages.finish();
    EXPECT_TRUE(printed.back().carried.value(0).isOutOfRange());
    EXPECT_EQ(printed.back().carried.value(1), Money::fromDouble(2.5));
}

#ifdef Q_OS_UNIX
// The export wrote into a new file beside the name and renamed it over whatever stood
// there: a named pipe another program reads (or, for root, /dev/null) became a regular
// file and the reader got nothing.
TEST(Regression, AnExportIntoANamedPipeReachesTheReader)
{
    const QString pipe = test::scratchDir() + QStringLiteral("/izvoz.csv");
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const db::ResultSet rs
        = test::resultSet({ { "RBroj", db::FieldType::Integer }, { "Opis", db::FieldType::Text } }, { { 1, "Pazar" } });
    // The reader is there before the export and never waits: the few bytes fit into
    // the pipe.
    const int reader = ::open(QFile::encodeName(pipe).constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    const output::ExportResult result = output::exportToFile(rs, {}, pipe);
    QByteArray received;
    char buffer[256];
    for (ssize_t n; (n = ::read(reader, buffer, sizeof buffer)) > 0;)
        received.append(buffer, n);
    ::close(reader);
    EXPECT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(received, QByteArray("\"RBroj\";\"Opis\"\r\n1;\"Pazar\"\r\n"));
    EXPECT_FALSE(QFileInfo(pipe).isFile());
}
#endif

// A window remembered on a monitor that is no longer there, or under mangled settings,
// used to open off the screen where nobody could see or close it.
TEST(Regression, ARememberedWindowAlwaysOpensOnTheScreen)
{
    const QRect screen(0, 0, 1280, 1024);
    const struct {
        QRect remembered;
        QRect shown;
    } cases[] = {
        { { 40, 30, 643, 387 }, { 40, 30, 643, 387 } }, // fits: unchanged
        { { 2000, 100, 643, 387 }, { 637, 100, 643, 387 } }, // a second monitor to the right, gone
        { { -5000, -3333, 643, 387 }, { 0, 0, 643, 387 } },
        { { 900, 900, 643, 387 }, { 637, 637, 643, 387 } }, // half off: moved in, not shrunk
        { { 10, 10, 5000, 4000 }, { 0, 0, 1280, 1024 } }, // larger than the screen
    };
    for (const auto& c : cases)
        EXPECT_EQ(browser::onScreen(c.remembered, screen), c.shown) << c.remembered.x() << "," << c.remembered.y();
}
