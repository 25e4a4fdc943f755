// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/statustext.h"
#include "support/testmain.h"

#include <QtTest>

/** @short A failed request tells its name, what happened and what to do. */
class StatusTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStatusHasItsName_data();
    void aStatusHasItsName();
    void anExplanationEndsWithNameAndNumber();
    void aRefusedPasswordSaysHowToGoOn();
    void aForeignAnswerNamesTheLoginOfANetwork();
};

void StatusTextTest::aStatusHasItsName_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("name");
    QTest::newRow("an outcome of the engine") << -9 << QStringLiteral("RequestStatusNoNetwork");
    QTest::newRow("a common status of the server") << 110 << QStringLiteral("CommonStatusServerError");
    QTest::newRow("a failure of the transport") << 10204 << QStringLiteral("AuthenticationRequiredError");
    QTest::newRow("a status of one command") << 12 << QStringLiteral("status 12");
    QTest::newRow("an unknown failure of the transport") << 19999 << QStringLiteral("19999");
}

void StatusTextTest::aStatusHasItsName()
{
    QFETCH(int, status);
    QFETCH(QString, name);
    QCOMPARE(StatusText::name(status), name);
}

void StatusTextTest::anExplanationEndsWithNameAndNumber()
{
    QVERIFY(StatusText::explanation(-6).endsWith(QStringLiteral("[RequestStatusServerStorageFull, -6]")));
}

void StatusTextTest::aRefusedPasswordSaysHowToGoOn()
{
    for (const QString &text : { StatusText::blocked(), StatusText::explanation(10204) })
        QVERIFY(text.contains(QStringLiteral("fennel-easctl password")));
}

void StatusTextTest::aForeignAnswerNamesTheLoginOfANetwork()
{
    QVERIFY(StatusText::explanation(10299).contains(QStringLiteral("log in")));
}

FENNEL_REGISTER_TEST(StatusTextTest)
#include "statustexttest.moc"
