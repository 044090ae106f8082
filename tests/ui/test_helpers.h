#pragma once

#include "demo/DemoData.h"
#include "session/Interaction.h"
#include "session/db/ResultSet.h"

#include <QFile>
#include <QStringList>
#include <gtest/gtest.h>

namespace knjige::test
{

// The rows of a result as text, a row's values joined by '|' and the rows by new lines,
// each value in its plain form ("12.5", "2016-03-15", nothing for NULL), so that one
// comparison checks every value of every row.
inline QString dump(const db::ResultSet& rs)
{
    QStringList rows;
    for (int r = 0; r < rs.rowCount(); ++r) {
        QStringList values;
        for (int c = 0; c < rs.fieldCount(); ++c)
            values << rs.text(r, c);
        rows << values.join(u'|');
    }
    return rows.join(u'\n');
}

// Fills `db` with the demonstration company's books of `year`; false (and a test
// failure with the reason) when that fails.
inline bool fillDemo(db::Database& db, int year)
{
    QString error;
    const bool ok = demo::fillDemoData(db, year, &error);
    EXPECT_TRUE(ok) << error.toStdString();
    return ok;
}

// The one message shown: its text starts with `start` and goes on with the reason
// (the data layer's words), under `icon`. An empty message when there was not one.
inline Message expectOneError(const QList<Message>& messages, const QString& start, Icon icon = Icon::Exclamation)
{
    EXPECT_EQ(messages.size(), 1);
    const Message m = messages.value(0);
    EXPECT_TRUE(m.text.startsWith(start)) << m.text.toStdString();
    EXPECT_GT(m.text.size(), start.size()) << "the reason follows: " << m.text.toStdString();
    EXPECT_EQ(m.icon, icon);
    return m;
}

// A file's bytes, or "<nema datoteke>" when it cannot be read.
inline QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<nema datoteke>");
}

// Writes `bytes` as the whole of the file; false when that fails.
inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

} // namespace knjige::test
