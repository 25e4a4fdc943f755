// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailheadertext.h"
#include "support/testmain.h"

#include <QtTest>

using namespace MailHeaderText;

class MailHeaderTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsOutsideQuotes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<char>("separator");
        QTest::addColumn<QStringList>("entries");

        QTest::newRow("nothing") << "" << ',' << QStringList();
        QTest::newRow("one address") << "a@b.c" << ',' << QStringList { "a@b.c" };
        QTest::newRow("blanks around the entries go")
            << " a@b.c ,  d@e.f " << ',' << QStringList { "a@b.c", "d@e.f" };
        QTest::newRow("a comma in a quoted name stays")
            << "\"Doe, John\" <j@x.org>, b@x.org" << ','
            << QStringList { "\"Doe, John\" <j@x.org>", "b@x.org" };
        QTest::newRow("an escaped quote does not end the name")
            << "\"Doe \\\", John\" <j@x.org>,b@x.org" << ','
            << QStringList { "\"Doe \\\", John\" <j@x.org>", "b@x.org" };
        QTest::newRow("a lone quote hides no address")
            << "5\" Disk <d@x.org>, b@x.org" << ',' << QStringList { "5\" Disk <d@x.org>", "b@x.org" };
        QTest::newRow("semicolons") << "a@b.c; d@e.f" << ';' << QStringList { "a@b.c", "d@e.f" };
    }
    void splitsOutsideQuotes()
    {
        QFETCH(QString, text);
        QFETCH(char, separator);
        QFETCH(QStringList, entries);
        QCOMPARE(splitMailList(text, separator), entries);
    }

    void addressesLeaveEmptyEntriesOut()
    {
        const QList<QMailAddress> list = addresses(QStringLiteral("a@b.c, ,\"Doe, J\" <j@x.org>,"), ',');
        QCOMPARE(list.size(), 2);
        QCOMPARE(list.at(1).name(), QStringLiteral("Doe, J"));
        QCOMPARE(list.at(1).address(), QStringLiteral("j@x.org"));
    }

    void aLineBreakBecomesABlank_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");

        QTest::newRow("plain") << "Hello"
                               << "Hello";
        QTest::newRow("a header cannot begin") << "Hello\r\nBcc: victim@example.org"
                                               << "Hello Bcc: victim@example.org";
        QTest::newRow("a zero byte") << QString("a") + QChar(0) + "b"
                                     << "a b";
        QTest::newRow("a line separator") << QString("a") + QChar(0x2028) + "b"
                                          << "a b";
        QTest::newRow("right-to-left marks are text")
            << QString("a") + QChar(0x202E) + "b" << QString("a") + QChar(0x202E) + "b";
        QTest::newRow("four kilobytes stay") << QString(4096, 'x') << QString(4096, 'x');
    }
    void aLineBreakBecomesABlank()
    {
        QFETCH(QString, text);
        QFETCH(QString, line);
        QCOMPARE(singleLine(text), line);
    }
};

FENNEL_REGISTER_TEST(MailHeaderTextTest)
#include "mailheadertexttest.moc"
