// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/statustable.h"

#include "support/logcollector.h"
#include "support/testmain.h"

#include <QLoggingCategory>
#include <QtTest>

Q_DECLARE_METATYPE(QtMsgType)

namespace {

enum class Verb { Go, Stop };
using Table = StatusTable<Verb>;

constexpr Table::Row rows[] = {
    { 1, QtInfoMsg, nullptr, Verb::Go },
    { 110, QtWarningMsg, "server error", Verb::Stop },
};
constexpr Table table(rows);
static_assert(table.namesEachStatusOnce());

constexpr Table::Row ambiguousRows[] = {
    { 1, QtInfoMsg, nullptr, Verb::Go },
    { 1, QtInfoMsg, nullptr, Verb::Stop },
};
static_assert(!Table(ambiguousRows).namesEachStatusOnce());

} // namespace

/** The table that says what the statuses of a reply mean. */
class StatusTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStatusHasTheRowThatNamesIt()
    {
        const Table::Row *const row = table.find(110);
        QVERIFY(row);
        QVERIFY(row->verb == Verb::Stop);
        QCOMPARE(row->text, "server error");
        QVERIFY(!table.find(111));
        QVERIFY(!Table().find(1));
    }

    void aTextIsWrittenAtItsLevel_data()
    {
        QTest::addColumn<QtMsgType>("level");
        QTest::newRow("debug") << QtDebugMsg;
        QTest::newRow("info") << QtInfoMsg;
        QTest::newRow("warning") << QtWarningMsg;
        QTest::newRow("critical") << QtCriticalMsg;
    }

    void aTextIsWrittenAtItsLevel()
    {
        QFETCH(QtMsgType, level);
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*.debug=true"));
        LogCollector log;
        logStatusText(level, "Folder does not exist: %1 on the server", QStringLiteral("5%1:7"));
        QLoggingCategory::setFilterRules(QString());
        QVERIFY(log.contains(level, { QStringLiteral("Folder does not exist: 5%1:7 on the server") }));
    }

    void aRowWithoutTextWritesNothing()
    {
        LogCollector log;
        logStatusText(QtCriticalMsg, nullptr, QStringLiteral("5:7"));
        QVERIFY(!log.contains(QStringLiteral("5:7")));
    }
};

FENNEL_REGISTER_TEST(StatusTableTest)
#include "statustabletest.moc"
