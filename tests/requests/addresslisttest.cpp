// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/addresslist.h"

#include "support/testmain.h"

#include <QtTest>

/** Addresses in one text. */
class AddressListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addressesAreTakenApart_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("addresses");
        const QStringList both { "a@example.com", "b@example.com" };
        QTest::newRow("empty") << QString() << QStringList();
        QTest::newRow("one") << " a@example.com " << QStringList("a@example.com");
        QTest::newRow("commas") << "a@example.com,b@example.com" << both;
        QTest::newRow("semicolons") << "a@example.com; b@example.com;" << both;
        QTest::newRow("line ends") << "a@example.com\r\nb@example.com\n" << both;
        QTest::newRow("empty places") << ",;\n,a@example.com,,b@example.com" << both;
        QTest::newRow("display names") << "Ann Lee <a@example.com>, Bo < b@example.com >" << both;
        QTest::newRow("separators in quotes")
            << "\"Lee, Ann; \\\"x\\\"\" <a@example.com>;b@example.com" << both;
        QTest::newRow("brackets in quotes") << "\"<no@example.com>\" <a@example.com>, b@example.com" << both;
        QTest::newRow("quoted name before @") << "\"a,b\"@example.com" << QStringList("\"a,b\"@example.com");
        QTest::newRow("quotes that nothing closes")
            << "\"a@example.com, b@example.com" << QStringList({ "\"a@example.com", "b@example.com" });
        QTest::newRow("a bracket that nothing closes") << "Ann <a@example.com, b@example.com" << both;
        QTest::newRow("empty brackets") << "Ann <>, b@example.com" << QStringList("b@example.com");
        QTest::newRow("twice") << "a@example.com, A@Example.com" << QStringList("a@example.com");
        QTest::newRow("control characters")
            << QStringLiteral("a\t@example.com,b@example.com\u0000x,c@example.com")
            << QStringList("c@example.com");
    }

    void aLongTextTakesNoLongerThanItsLength()
    {
        // Each of these would be looked through to the end for what closes it.
        QCOMPARE(
            AddressList::addresses(QLatin1Char('"') + QStringLiteral("\\\",").repeated(100000)).size(), 2);
        QStringList many;
        for (int i = 0; i < 50000; ++i)
            many.append(QString::number(i) + QStringLiteral("@example.com"));
        QCOMPARE(AddressList::addresses(many.join(',')), many);
    }

    void addressesAreTakenApart()
    {
        QFETCH(QString, text);
        QTEST(AddressList::addresses(text), "addresses");
    }
};

FENNEL_REGISTER_TEST(AddressListTest)
#include "addresslisttest.moc"
