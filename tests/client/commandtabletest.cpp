// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandtable.h"

#include "client/commandrunner.h"
#include "client/exitstatus.h"
#include "client/passwordinput.h"
#include "support/testmain.h"

#include <QtTest>

#include <unistd.h>

/** @short Commands are found by their words, and a password comes from a descriptor. */
class CommandTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCommandOfTwoWordsIsTakenOffTheArguments();
    void anUnknownCommandIsNone();
    void everyCommandStandsInTheHelp();
    void wrongArgumentsAreAUsageError_data();
    void wrongArgumentsAreAUsageError();
    void aPasswordIsReadUpToTheEndOfItsLine();
    void aPasswordIsTheFirstLineOfACommandsOutput();
    void aPasswordCommandThatFailsGivesNone_data();
    void aPasswordCommandThatFailsGivesNone();
    void aClosedDescriptorIsToldOf();
};

void CommandTableTest::aCommandOfTwoWordsIsTakenOffTheArguments()
{
    QStringList arguments { QStringLiteral("mail"), QStringLiteral("show"), QStringLiteral("12") };
    const Command *command = CommandTable::take(arguments);
    QVERIFY(command);
    QCOMPARE(command->name, "mail show");
    QCOMPARE(arguments, QStringList { QStringLiteral("12") });
}

void CommandTableTest::anUnknownCommandIsNone()
{
    QStringList arguments { QStringLiteral("mail"), QStringLiteral("burn") };
    QVERIFY(!CommandTable::take(arguments));
    QCOMPARE(arguments.size(), 2);
}

void CommandTableTest::everyCommandStandsInTheHelp()
{
    const QString help = CommandTable::help(CommandTable::commands(), true);
    for (const Command &command : CommandTable::commands())
        QVERIFY2(help.contains(QLatin1String(command.purpose)), command.name);
}

void CommandTableTest::wrongArgumentsAreAUsageError_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("a password is no argument")
        << QStringList { QStringLiteral("password"), QStringLiteral("--password"), QStringLiteral("x") };
    QTest::newRow("an account needs an address")
        << QStringList { QStringLiteral("account"), QStringLiteral("add") };
    QTest::newRow("a message needs a number")
        << QStringList { QStringLiteral("mail"), QStringLiteral("show") };
    QTest::newRow("a service is one of three")
        << QStringList { QStringLiteral("sync"), QStringLiteral("--service"), QStringLiteral("tasks") };
    QTest::newRow("a level is one of four") << QStringList { QStringLiteral("log"), QStringLiteral("loud") };
    QTest::newRow("a request is a number") << QStringList { QStringLiteral("cancel"), QStringLiteral("it") };
}

void CommandTableTest::wrongArgumentsAreAUsageError()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(CommandRunner::run(arguments), int(ExitUsage));
}

void CommandTableTest::aPasswordIsReadUpToTheEndOfItsLine()
{
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    const QByteArray line = QStringLiteral("pässword with blanks\nrest").toUtf8();
    QCOMPARE(::write(ends[1], line.constData(), size_t(line.size())), ssize_t(line.size()));
    ::close(ends[1]);
    QString password;
    QString error;
    QVERIFY(PasswordInput::fromDescriptor(ends[0], &password, &error) == PasswordInput::Outcome::Read);
    QCOMPARE(password, QStringLiteral("pässword with blanks"));
    ::close(ends[0]);
}

void CommandTableTest::aPasswordIsTheFirstLineOfACommandsOutput()
{
    QString password;
    QString error;
    // More than a pipe holds: the program must not die of what nobody reads.
    const QString command = QStringLiteral("printf 's3cret with blanks\\n'; head -c 100000 /dev/zero");
    QVERIFY2(PasswordInput::fromCommand(command, &password, &error) == PasswordInput::Outcome::Read,
        qPrintable(error));
    QCOMPARE(password, QStringLiteral("s3cret with blanks"));
}

void CommandTableTest::aPasswordCommandThatFailsGivesNone_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("reason");
    QTest::newRow("without output") << "true"
                                    << "empty";
    QTest::newRow("with a status") << "echo s3cret; exit 3"
                                   << "status 3";
    QTest::newRow("not there") << "exec /nowhere/at/all 2>/dev/null"
                               << "status 127";
}

void CommandTableTest::aPasswordCommandThatFailsGivesNone()
{
    QFETCH(QString, command);
    QFETCH(QString, reason);
    QString password;
    QString error;
    QVERIFY(PasswordInput::fromCommand(command, &password, &error) == PasswordInput::Outcome::Failed);
    QVERIFY2(error.contains(reason), qPrintable(error));
    QVERIFY(password.isEmpty());
}

void CommandTableTest::aClosedDescriptorIsToldOf()
{
    QString password;
    QString error;
    QVERIFY(PasswordInput::fromDescriptor(987, &password, &error) == PasswordInput::Outcome::Failed);
    QVERIFY(error.contains(QStringLiteral("987")));
}

FENNEL_REGISTER_TEST(CommandTableTest)
#include "commandtabletest.moc"
