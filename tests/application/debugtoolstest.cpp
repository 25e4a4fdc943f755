// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/debugtools.h"
#include "application/base/logging.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QSettings>
#include <QtTest>

namespace {

QString settingsFile()
{
    const QString application = QStringLiteral("eas-fennel");
    return QSettings(QSettings::UserScope, application, application).fileName();
}

void writeLevel(const QString &category, const QString &level)
{
    const QString application = QStringLiteral("eas-fennel");
    QSettings settings(QSettings::UserScope, application, application);
    settings.setValue(QStringLiteral("logging/") + category, level);
    settings.sync();
}

QString enabledLevels(const QLoggingCategory &category)
{
    QString letters;
    if (category.isDebugEnabled())
        letters += QLatin1Char('d');
    if (category.isInfoEnabled())
        letters += QLatin1Char('i');
    if (category.isWarningEnabled())
        letters += QLatin1Char('w');
    if (category.isCriticalEnabled())
        letters += QLatin1Char('c');
    return letters;
}

} // namespace

class DebugToolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        for (const char *name : { "Fennel.eas", "Fennel.easwbxml", "Fennel.easnetwork" })
            writeLevel(QString::fromLatin1(name), QStringLiteral("d"));
        LogCollector log;
        DebugTools::init();
        QFile::remove(settingsFile());
    }

    void categoriesHaveTheirNames()
    {
        QCOMPARE(eas().categoryName(), "Fennel.eas");
        QCOMPARE(easWbxml().categoryName(), "Fennel.easwbxml");
        QCOMPARE(easNetwork().categoryName(), "Fennel.easnetwork");
        QCOMPARE(&eas(), &eas());
    }

    void linesCarryFileAndFunction()
    {
        QString file;
        QString function;
        static QString *target[2];
        target[0] = &file;
        target[1] = &function;
        const auto previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &) {
                *target[0] = QString::fromLatin1(context.file);
                *target[1] = QString::fromLatin1(context.function);
            });
        qCWarning(eas()) << "line";
        qInstallMessageHandler(previous);
        QVERIFY(file.endsWith(QStringLiteral("debugtoolstest.cpp")));
        QVERIFY(function.contains(QStringLiteral("linesCarryFileAndFunction")));
    }

    void withoutSettingsTheFileIsMadeWithItsDefault()
    {
        LogCollector log;
        QVERIFY(!QFile::exists(settingsFile()));
        QVERIFY(settingsFile().endsWith(QStringLiteral("/eas-fennel/eas-fennel.conf")));
        DebugTools::init();
        QVERIFY(QFile::exists(settingsFile()));
        const QString application = QStringLiteral("eas-fennel");
        QSettings settings(QSettings::UserScope, application, application);
        QCOMPARE(settings.allKeys(), QStringList { QStringLiteral("logging/Fennel.eas") });
        QCOMPARE(settings.value(QStringLiteral("logging/Fennel.eas")).toString(), QStringLiteral("w"));
        QCOMPARE(enabledLevels(eas()), QStringLiteral("wc"));
        QCOMPARE(enabledLevels(easWbxml()), QStringLiteral("wc"));
        QCOMPARE(enabledLevels(easNetwork()), QStringLiteral("wc"));
    }

    void theFirstLetterFoundInOrderIsTheLevel_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("enabled");

        QTest::newRow("debug") << QStringLiteral("d") << QStringLiteral("diwc");
        QTest::newRow("info") << QStringLiteral("i") << QStringLiteral("iwc");
        QTest::newRow("warning") << QStringLiteral("w") << QStringLiteral("wc");
        QTest::newRow("critical") << QStringLiteral("c") << QStringLiteral("c");
        QTest::newRow("debug before warning") << QStringLiteral("dw") << QStringLiteral("diwc");
        QTest::newRow("the search's order, not the text's") << QStringLiteral("wd") << QStringLiteral("diwc");
        QTest::newRow("a word") << QStringLiteral("critical") << QStringLiteral("iwc");
        QTest::newRow("capitals do not count") << QStringLiteral("DIWC") << QString();
        QTest::newRow("none of the letters") << QStringLiteral("no") << QString();
        QTest::newRow("nothing") << QString() << QString();
    }

    void theFirstLetterFoundInOrderIsTheLevel()
    {
        QFETCH(QString, value);
        QFETCH(QString, enabled);
        LogCollector log;
        writeLevel(QStringLiteral("Fennel.eas"), value);
        writeLevel(QStringLiteral("Fennel.easwbxml"), value);
        DebugTools::init();
        QCOMPARE(enabledLevels(eas()), enabled);
        QCOMPARE(enabledLevels(easWbxml()), enabled);
        QCOMPARE(enabledLevels(easNetwork()), QStringLiteral("wc"));
    }

    void theFirstCategoryKeepsItsLevelWithoutAKey()
    {
        LogCollector log;
        writeLevel(QStringLiteral("Fennel.eas"), QStringLiteral("d"));
        DebugTools::init();
        QFile::remove(settingsFile());
        writeLevel(QStringLiteral("Fennel.easnetwork"), QStringLiteral("i"));
        DebugTools::init();
        QCOMPARE(enabledLevels(eas()), QStringLiteral("diwc"));
        QCOMPARE(enabledLevels(easNetwork()), QStringLiteral("iwc"));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Filename: "), settingsFile() }));
    }

    void otherCategoriesKeepThePreviousFilterAlsoAfterSeveralCalls()
    {
        LogCollector log;
        DebugTools::init();
        DebugTools::init();
        const QLoggingCategory other("test.other", QtInfoMsg);
        QCOMPARE(enabledLevels(other), QStringLiteral("iwc"));
    }

    void hexDumpsHaveSixteenBytesALine()
    {
        LogCollector log;
        QByteArray data;
        for (int i = 0; i < 18; ++i)
            data.append(static_cast<char>(i * 15));
        DebugTools::dumpHexData(data);
        QCOMPARE(log.texts(QtInfoMsg),
            (QStringList {
                QStringLiteral("00000000 0x00, 0x0f, 0x1e, 0x2d, 0x3c, 0x4b, 0x5a, 0x69, "
                               "0x78, 0x87, 0x96, 0xa5, 0xb4, 0xc3, 0xd2, 0xe1,"),
                QStringLiteral("00000010 0xf0, 0xff"),
            }));
        log.clear();
        DebugTools::dumpHexData(QByteArray());
        QVERIFY(log.lines().isEmpty());
    }

    void headersGoToTheLogWithoutTheirSecrets()
    {
        const QString text = DebugTools::headersForLog({
            { "MS-ASProtocolVersion", "14.1" },
            { "Authorization", "Basic c2VjcmV0" },
            { "proxy-authorization", "Basic c2VjcmV0" },
            { "Cookie", "session=c2VjcmV0" },
            { "SET-COOKIE", "session=c2VjcmV0" },
            { "X-MS-PolicyKey", "c2VjcmV0" },
            { "X-Long", QByteArray(10000, 'x') },
        });
        QVERIFY(text.contains(QStringLiteral("MS-ASProtocolVersion: 14.1")));
        QVERIFY(text.contains(QStringLiteral("Authorization: ...")));
        QVERIFY(text.contains(QStringLiteral("X-MS-PolicyKey: ...")));
        QVERIFY(!text.contains(QStringLiteral("c2VjcmV0")));
        QVERIFY(text.size() < 1000);
    }
};

FENNEL_REGISTER_TEST(DebugToolsTest)
#include "debugtoolstest.moc"
