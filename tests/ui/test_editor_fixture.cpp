#include "test_editor_fixture.h"

#include "session/HostServices.h"
#include "session/Session.h"

#include <QApplication>
#include <QTest>

namespace knjige::test
{

void EditorTest::SetUp()
{
    m_db = std::make_unique<TestDatabase>(1, 2016);
    dbPath = m_db->path();
    exec(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit,ImeKomit1) VALUES (1,'Prodavnica Centar')"));
    exec(QStringLiteral("INSERT INTO dbo.Komitent (SifKomit,ImeKomit1) VALUES (2,'Prodavnica Zapad')"));
    installHostServices({});
}

void EditorTest::TearDown()
{
    installHostServices({});
    m_db.reset();
}

void EditorTest::run(RecordEditor& editor, const std::function<void()>& inside)
{
    script->onDialog = [&](QDialog& d) {
        d.show();
        QApplication::setActiveWindow(&d);
        inside();
        const int result = d.result();
        d.hide();
        return result;
    };
    editor.Prikaži(1);
    script->onDialog = nullptr;
}

void EditorTest::type(QLineEdit* box, const QString& text, bool leave)
{
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
    if (leave)
        QTest::keyClick(box, Qt::Key_Tab);
}

ResultSet EditorTest::rows(const QString& sql)
{
    ResultSet rs;
    const bool ok = session().db().open(sql, rs);
    EXPECT_TRUE(ok) << sql.toStdString() << ": " << session().db().errorDescription().toStdString();
    return rs;
}

void EditorTest::exec(const QString& sql)
{
    const bool ok = session().db().execute(sql);
    ASSERT_TRUE(ok) << sql.toStdString() << ": " << session().db().errorDescription().toStdString();
}

int EditorTest::count(const QString& table)
{
    const ResultSet rs = rows(QStringLiteral("SELECT COUNT(*) AS N FROM ") + table);
    return rs.isEmpty() ? -1 : int(rs.integer(0, 0));
}

QString EditorTest::focusOf(RecordEditor& editor)
{
    QWidget* w = editor.focusWidget();
    return w ? w->objectName() : QString();
}

} // namespace knjige::test
