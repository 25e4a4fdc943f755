// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/addresslist.h"
#include "support/testmain.h"

#include <QtTest>

/** Which addresses mail can be sent to, and what they are then. */
class AddressListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsAreRead_data()
    {
        QTest::addColumn<QStringList>("lists");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QStringList &lists, const QString &expected) {
            QTest::newRow(name) << lists << expected;
        };
        row("an address", { "a@b.org" }, "a@b.org");
        row("a name", { "Bob <bob@b.org>" }, "Bob <bob@b.org>");
        row("a quoted name with a comma", { "\"Doe, John\" <j@x.org>, k@x.org" },
            "\"Doe, John\" <j@x.org>|k@x.org");
        row("several options", { "a@b.org", "c@d.org; e@f.org" }, "a@b.org|c@d.org|e@f.org");
        row("one twice", { "a@b.org, Ann <A@b.org>" }, "a@b.org");
        row("umlauts in a name", { QString::fromUtf8("Jürgen Müller <j@x.org>") },
            QString::fromUtf8("Jürgen Müller <j@x.org>"));
        row("an @ in a name", { "\"a@b\" <c@d.org>" }, "\"a@b\" <c@d.org>");
        row("umlauts in a domain", { QString::fromUtf8("j@müller.example") }, "j@xn--mller-kva.example");
        row("a group", { "Friends: a@b.org, c@d.org;" }, "a@b.org|c@d.org");
        row("a quoted mailbox", { "\"a b\"@x.org" }, "\"a b\"@x.org");
        row("an address of an IP", { "a@[192.168.0.1]" }, "a@[192.168.0.1]");
    }

    void listsAreRead()
    {
        QFETCH(QStringList, lists);
        QFETCH(QString, expected);
        QList<QMailAddress> addresses;
        QVERIFY(AddressList::read(lists, QStringLiteral("to"), &addresses));
        QCOMPARE(QMailAddress::toStringList(addresses).join(QLatin1Char('|')), expected);
    }

    void whatCannotBeSentToIsRefused_data()
    {
        QTest::addColumn<QString>("list");
        QTest::newRow("nothing") << QString();
        QTest::newRow("blanks and commas") << QStringLiteral(" , ; ");
        QTest::newRow("a name alone") << QStringLiteral("Bob");
        QTest::newRow("no domain") << QStringLiteral("bob@");
        QTest::newRow("no mailbox") << QStringLiteral("@b.org");
        QTest::newRow("two @") << QStringLiteral("a@b@c.org");
        QTest::newRow("a blank inside") << QStringLiteral("a b@c.org");
        QTest::newRow("no comma between") << QStringLiteral("Bob <a@b.org> c@d.org");
        QTest::newRow("no end of the address") << QStringLiteral("Bob <a@b.org");
        QTest::newRow("no end of the quotes") << QStringLiteral("\"Bob <a@b.org>, c@d.org");
        QTest::newRow("one good, one bad") << QStringLiteral("a@b.org, Bob");
        QTest::newRow("a line break in a name") << QStringLiteral("Bob\r\nBcc: x@y.org <a@b.org>");
        QTest::newRow("a line break behind") << QStringLiteral("a@b.org\nX-Header: y");
        QTest::newRow("a line separator")
            << QStringLiteral("Bob") + QChar(0x2028) + QStringLiteral("<a@b.org>");
        QTest::newRow("a NUL") << QStringLiteral("Bob") + QChar(0) + QStringLiteral("<a@b.org>");
        QTest::newRow("umlauts in a mailbox") << QString::fromUtf8("jürgen@x.org");
        QTest::newRow("4000 letters") << QString(4000, QLatin1Char('x')) + QStringLiteral("@x.org");
        QTest::newRow("an empty group") << QStringLiteral("Friends:;");
    }

    void whatCannotBeSentToIsRefused()
    {
        QFETCH(QString, list);
        QList<QMailAddress> addresses;
        QVERIFY(!AddressList::read({ list }, QStringLiteral("to"), &addresses));
    }

    void ofWhatWasReceivedTheUsableIsLeft()
    {
        const QList<QMailAddress> received { QMailAddress(QStringLiteral("Bob <bob@b.org>")),
            QMailAddress(QStringLiteral("undisclosed-recipients:;")),
            QMailAddress(QStringLiteral("a\nb"), QStringLiteral("c@d.org")),
            QMailAddress(QStringLiteral("no address")), QMailAddress() };
        QCOMPARE(QMailAddress::toStringList(AddressList::sendable(received)).join(QLatin1Char('|')),
            QStringLiteral("Bob <bob@b.org>|a b <c@d.org>"));
    }
};

FENNEL_REGISTER_TEST(AddressListTest)
#include "addresslisttest.moc"
