// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/policytable.h"

#include "easitems/containers/easprovisiondoc.h"
#include "easitems/containers/provisiondocfields.h"
#include "support/testmain.h"

#include <QJsonObject>
#include <QtTest>

/** Numbers and values of policies become words. */
class PolicyTableTest : public QObject
{
    Q_OBJECT

private:
    static QString of(const QJsonArray &rows, int row, const char *key)
    {
        return rows.at(row).toObject().value(QLatin1String(key)).toString();
    }
    static QStringList failedNames(const QVariantMap &document, const FailedPolicyMap &failed)
    {
        QStringList names;
        const QJsonArray rows = PolicyTable::describe(document, failed);
        for (const QJsonValue &row : rows) {
            if (!row.toObject().value(QStringLiteral("met")).toBool())
                names.append(row.toObject().value(QStringLiteral("name")).toString());
        }
        return names;
    }

private Q_SLOTS:
    void aVerdictIsKnownByWhatFails_data()
    {
        QTest::addColumn<FailedPolicyMap>("failed");
        QTest::addColumn<int>("verdict");
        QTest::newRow("nothing") << FailedPolicyMap() << int(PolicyTable::Verdict::Met);
        QTest::newRow("the camera") << FailedPolicyMap { { 8, false } }
                                    << int(PolicyTable::Verdict::PartlyMet);
        QTest::newRow("letters in the code")
            << FailedPolicyMap { { 2, true } } << int(PolicyTable::Verdict::PartlyMet);
        for (const int number : { 1, 3, 5, 35 })
            QTest::addRow("lock, number %d", number) << FailedPolicyMap { { number, 1U }, { 8, false } }
                                                     << int(PolicyTable::Verdict::CriticalFailed);
    }

    void aVerdictIsKnownByWhatFails()
    {
        QFETCH(FailedPolicyMap, failed);
        QFETCH(int, verdict);
        QCOMPARE(int(PolicyTable::verdictOf(failed)), verdict);
    }

    void aValueIsReadInWords_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("words");
        const auto row = [](const char *name, const QVariant &value, const char *words) {
            QTest::addRow("%s %s", name, qPrintable(value.toString()))
                << QString::fromLatin1(name) << value << QString::fromLatin1(words);
        };
        row("AllowBluetooth", 1, "hands-free sets only");
        row("AllowBluetooth", -1, "left open");
        row("AllowBluetooth", 9, "9");
        row("MaxEmailAgeFilter", 0, "all");
        row("MaxInactivityTimeDeviceLock", 300U, "300 s at most");
        row("MaxInactivityTimeDeviceLock", 9998U, "9998 s at most");
        row("MaxInactivityTimeDeviceLock", 9999U, "no limit");
        row("DevicePasswordExpiration", 0U, "no limit");
        row("MaxEmailBodyTruncationSize", -1, "whole");
        row("MaxEmailBodyTruncationSize", 0, "0 bytes at most");
        row("ApprovedApplicationList", QStringList { QStringLiteral("a"), QStringLiteral("b") }, "a, b");
        row("SomethingNew", 5, "5");
    }

    void aValueIsReadInWords()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, value);
        QFETCH(QString, words);
        const QJsonArray rows = PolicyTable::describe({ { name, value } }, {});
        QCOMPARE(rows.size(), 1);
        QCOMPARE(of(rows, 0, "name"), name);
        QCOMPARE(of(rows, 0, "demands"), words);
    }

    void aNumberOfTwoPoliciesIsToldApartByTheValues_data()
    {
        QTest::addColumn<QVariantMap>("document");
        QTest::addColumn<FailedPolicyMap>("failed");
        QTest::addColumn<QStringList>("names");
        const auto letters = QStringLiteral("AlphanumericDevicePasswordRequired");
        const auto kinds = QStringLiteral("MinDevicePasswordComplexCharacters");
        const auto only = QStringLiteral("ApprovedApplicationList");
        const auto none = QStringLiteral("UnapprovedInROMApplicationList");
        const QStringList some { QStringLiteral("x") };
        QTest::newRow("letters alone") << QVariantMap { { letters, true }, { kinds, 1U } }
                                       << FailedPolicyMap { { 2, true } } << QStringList { letters };
        QTest::newRow("kinds alone") << QVariantMap { { letters, false }, { kinds, 3U } }
                                     << FailedPolicyMap { { 2, 3U } } << QStringList { kinds };
        QTest::newRow("both") << QVariantMap { { letters, true }, { kinds, 3U } }
                              << FailedPolicyMap { { 2, 3U } } << QStringList { letters, kinds };
        QTest::newRow("one list") << QVariantMap { { only, QStringList() }, { none, some } }
                                  << FailedPolicyMap { { 42, some } } << QStringList { none };
        QTest::newRow("a number alone")
            << QVariantMap() << FailedPolicyMap { { 2, 3U } } << QStringList { kinds };
        QTest::newRow("an unknown number")
            << QVariantMap() << FailedPolicyMap { { 99, 3U } } << QStringList { QStringLiteral("policy 99") };
    }

    void aNumberOfTwoPoliciesIsToldApartByTheValues()
    {
        QFETCH(QVariantMap, document);
        QFETCH(FailedPolicyMap, failed);
        QFETCH(QStringList, names);
        QCOMPARE(failedNames(document, failed), names);
    }

    void everyValueOfADocumentHasWordsAndTheEnginesNumber()
    {
        const EasProvisionDoc document;
        for (const ProvisionDocField &field : ProvisionDocFields::all()) {
            const QVariant value = field.value(document);
            const QJsonArray rows = PolicyTable::describe({ { field.name(), value } }, {});
            QVERIFY2(of(rows, 0, "policy") != field.name(), qPrintable(field.name()));
            if (field.failedPolicy == 0)
                continue;
            const QVariant some = value.type() == QVariant::StringList ? QStringList { "x" } : value;
            QCOMPARE(failedNames({ { field.name(), some } }, { { field.failedPolicy, some } }),
                QStringList { field.name() });
        }
    }

    void whatIsLeftOpenIsTheAdministrators()
    {
        const QJsonArray rows =
            PolicyTable::describe({ { QStringLiteral("MaxEmailAgeFilter"), -1 } }, { { 36, -1 } });
        QVERIFY2(!of(rows, 0, "help").contains(QStringLiteral("past-time")), qPrintable(of(rows, 0, "help")));
    }
};

FENNEL_REGISTER_TEST(PolicyTableTest)
#include "policytabletest.moc"
