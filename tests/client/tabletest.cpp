// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/table.h"

#include "client/textwidth.h"
#include "client/timetext.h"
#include "support/testmain.h"

#include <QJsonObject>
#include <QtTest>

/** Rows as lines for people: columns stand below each other whatever the characters, and fit the terminal. */
class TableTest : public QObject
{
    Q_OBJECT

private:
    static QJsonArray rows(const QList<QPair<QString, QString>> &values)
    {
        QJsonArray array;
        for (const auto &value : values)
            array.append(QJsonObject {
                { QStringLiteral("one"), value.first }, { QStringLiteral("two"), value.second } });
        return array;
    }
    static QStringList lines(const QList<QPair<QString, QString>> &values, int width)
    {
        return Table::lines({ { "one", "ONE" }, { "two", "TWO" } }, rows(values), width);
    }

private Q_SLOTS:
    void aCharacterTakesItsColumns_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("width");
        QTest::newRow("letters") << QStringLiteral("Müller") << 6;
        QTest::newRow("wide characters") << QStringLiteral("日本語") << 6;
        QTest::newRow("a combining accent") << QStringLiteral("e\u0301") << 1;
        QTest::newRow("a picture of two code units") << QStringLiteral("\U0001F600") << 2;
    }

    void aCharacterTakesItsColumns()
    {
        QFETCH(QString, text);
        QTEST(TextWidth::of(text), "width");
    }

    void whatIsCutIsMarked()
    {
        QCOMPARE(TextWidth::cut(QStringLiteral("abcdef"), 6), QStringLiteral("abcdef"));
        QCOMPARE(TextWidth::cut(QStringLiteral("abcdefg"), 6), QStringLiteral("abcde\u2026"));
        // A wide character that fits by half is left out.
        QCOMPARE(TextWidth::cut(QStringLiteral("日本語"), 4), QStringLiteral("日\u2026"));
    }

    void columnsStandBelowEachOther()
    {
        const QStringList table = lines({ { "日本語", "x" }, { "ab", "y" } }, 0);
        QCOMPARE(table, QStringList({ "ONE     TWO", "日本語  x", "ab      y" }));
    }

    void aTableFitsTheTerminal()
    {
        const QString text(200, QLatin1Char('a'));
        for (const QString &line : lines({ { text, text } }, 60))
            QVERIFY2(TextWidth::of(line) <= 60, qPrintable(line));
        // Into a file all of it goes.
        QVERIFY(lines({ { text, text } }, 0).last().contains(text));
    }

    void aMomentIsShownInTheZoneOfTheDevice()
    {
        const QDateTime moment(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC);
        const QString written = TimeText::forPrograms(moment);
        QCOMPARE(QDateTime::fromString(written, Qt::ISODate), moment);
        QCOMPARE(Table::text(written), moment.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
        QCOMPARE(Table::text(QStringLiteral("2024-05-01")), QStringLiteral("2024-05-01"));
        QCOMPARE(Table::text(QStringLiteral("at 2024-05-01T10:00:00Z")),
            QStringLiteral("at 2024-05-01T10:00:00Z"));
    }
};

FENNEL_REGISTER_TEST(TableTest)
#include "tabletest.moc"
