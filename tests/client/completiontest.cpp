// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/completion.h"

#include "client/commandtable.h"
#include "client/contactfieldtable.h"
#include "support/buildpaths.h"
#include "support/testmain.h"

#include <QProcess>
#include <QtTest>

/** A shell is offered the words of the table of commands. */
class CompletionTest : public QObject
{
    Q_OBJECT

private:
    static QStringList candidates(const QString &line)
    {
        return Completion::candidates(line.split(QLatin1Char(' ')), [] {
            return QStringList { QStringLiteral("1"), QStringLiteral("alice") };
        });
    }

private Q_SLOTS:
    void aWordIsCompletedByWhatStandsBefore_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("candidates");
        QTest::newRow("the begin of a command") << "pu"
                                                << "push";
        QTest::newRow("a second word") << "push "
                                       << "off on status";
        QTest::newRow("a whole word") << "push o"
                                      << "off on";
        QTest::newRow("behind options") << "--json --account alice push s"
                                        << "status";
        QTest::newRow("an option of the program") << "--j"
                                                  << "--json";
        QTest::newRow("an account behind its option") << "--account a"
                                                      << "alice";
        QTest::newRow("an account") << "push on "
                                    << "1 alice";
        QTest::newRow("an option of the command") << "mail list --un"
                                                  << "--unread";
        QTest::newRow("a value that is one of several") << "folders --kind c"
                                                        << "calendar contacts";
        QTest::newRow("an option among alternatives") << "contact add --car"
                                                      << "--car-phone";
        QTest::newRow("options of another command") << "contact edit 7 --work-ci"
                                                    << "--work-city";
        QTest::newRow("values of another command's options") << "account edit alice --folders "
                                                             << "all inbox marked";
        QTest::newRow("a fixed argument") << "log d"
                                          << "debug";
        QTest::newRow("a command to be helped with") << "help pol"
                                                     << "policy";
        QTest::newRow("the second word of it") << "help policy "
                                               << "show";
        QTest::newRow("a number that only the user knows") << "mail show "
                                                           << "";
        QTest::newRow("a value that only the user knows") << "password --password-fd "
                                                          << "";
        QTest::newRow("no such command") << "burn "
                                         << "";
    }

    void aWordIsCompletedByWhatStandsBefore()
    {
        QFETCH(QString, line);
        QFETCH(QString, candidates);
        QCOMPARE(CompletionTest::candidates(line).join(QLatin1Char(' ')), candidates);
    }

    void everyCommandIsOffered()
    {
        for (const Command &command : CommandTable::commands()) {
            const QString name = QString::fromLatin1(command.name);
            QVERIFY2(candidates(name).contains(name.section(QLatin1Char(' '), -1)), command.name);
        }
    }

    void everyFieldOfAContactIsOffered()
    {
        const QStringList offered = candidates(QStringLiteral("contact add --"));
        for (const ContactTextField &field : ContactFieldTable::texts())
            QVERIFY2(offered.contains(QLatin1String("--") + QLatin1String(field.option)), field.option);
        for (const ContactPhoneField &field : ContactFieldTable::phones())
            QVERIFY2(offered.contains(QLatin1String("--") + QLatin1String(field.option)), field.option);
    }

    void bashAsksTheProgram()
    {
        QProcess bash;
        bash.start(QStringLiteral("bash"),
            { QStringLiteral("--norc"), QStringLiteral("-c"),
                QStringLiteral("source \"$1\"; COMP_WORDS=(fennel-easctl push o); COMP_CWORD=2; "
                               "_fennel_easctl \"$2\"; printf '%s\\n' \"${COMPREPLY[@]}\""),
                QStringLiteral("bash"), BuildPaths::source(QStringLiteral("client/fennel-easctl.bash")),
                BuildPaths::binary(QStringLiteral("bin/fennel-easctl")) });
        QVERIFY(bash.waitForFinished());
        QCOMPARE(bash.readAllStandardOutput(), QByteArray("off\non\n"));
        QCOMPARE(bash.readAllStandardError(), QByteArray());
    }
};

FENNEL_REGISTER_TEST(CompletionTest)
#include "completiontest.moc"
