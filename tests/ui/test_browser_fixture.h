#pragma once

#include "browser/widgets/frmSifarnikKnj.h"
#include "session/HostServices.h"
#include "support/ScriptedInteraction.h"
#include "support/TestDatabase.h"
#include "test_helpers.h"

#include <gtest/gtest.h>
#include <memory>

namespace knjige::test
{

// Records what the browser asks the rights service and answers from its own lists.
struct RecordingRights final : OperatorRights {
    struct Log {
        QString connectionString;
        QString operatorName;
        QList<int> asked; // 0 for mayOpenBook, else the group
    };
    std::shared_ptr<Log> log = std::make_shared<Log>();
    bool mayOpen = true;
    QList<Group> denied;

    void setConnectionString(const QString& s) override { log->connectionString = s; }
    void setOperatorName(const QString& s) override { log->operatorName = s; }
    bool mayOpenBook(int) override
    {
        log->asked << 0;
        return mayOpen;
    }
    bool hasRight(int, Group g) override
    {
        log->asked << int(g);
        return !denied.contains(g);
    }
};

// A fresh database for company 1 and year 2016, fresh settings, the built-in host
// services and a scripted person.
class BrowserTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // One entry of the FBiH income and expense book.
    void addPrihRash(int company, int year, int rBroj, const QDate& datum, int vrsta, double iznos, double pdv = 0,
        const QString& opis = {});
    // A valid entry `i` of company 1, year 2016 in `book`: amounts varied and now and then
    // zero, the text opening with the marker S<book>-<i> (every tenth long enough to wrap
    // when printed), partner 1001 and shop 501. `more` replaces or adds columns.
    static db::RowChange::Values entry(int book, int i, const db::RowChange::Values& more = {});
    void add(int book, int i, const db::RowChange::Values& more = {});
    void addPartner(int code, const QString& name);
    // The company's header and the partners the entries name.
    void addCompany();
    // A browser for `kind`, opened (mode 0) with the access level.
    std::unique_ptr<browser::frmSifarnikKnj> open(int kind, const QString& level = "0");
    // The rows of a statement as text (see dump).
    QString table(const QString& sql) { return dump(db->query(sql)); }
    // RBroj of the entries in grid order.
    static QList<qint64> rBrojevi(browser::frmSifarnikKnj& w);
    // Changes the query the window reads with next.
    template <typename Edit> static void change(browser::frmSifarnikKnj& w, Edit edit)
    {
        browser::BookQuery q = w.query();
        edit(q);
        w.setQuery(q);
    }
    std::shared_ptr<RecordingRights::Log> installRights(bool mayOpen, QList<OperatorRights::Group> denied = {});

    std::unique_ptr<TestDatabase> db;
    ScopedScript script;
};

} // namespace knjige::test
