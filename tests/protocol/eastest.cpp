// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/base/eas.h"
#include "easitems/easitemscommon.h"
#include "support/testmain.h"

#include <QMetaEnum>
#include <QtTest>

namespace {

template <typename Enum> QString printed(Enum value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

} // namespace

class EasTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysPrintWithTheirScope()
    {
        QCOMPARE(
            printed(Eas::CommonStatusInvalidDeviceId), QStringLiteral("Eas::CommonStatusInvalidDeviceId"));
        QCOMPARE(printed(Eas::SyncStatusRetry), QStringLiteral("Eas::SyncStatusRetry"));
        QCOMPARE(
            printed(Eas::FolderSyncStatusWrongSyncKey), QStringLiteral("Eas::FolderSyncStatusWrongSyncKey"));
        QCOMPARE(printed(Eas::MoveItemsStatusSuccess), QStringLiteral("Eas::MoveItemsStatusSuccess"));
        QCOMPARE(printed(Eas::ItemOperationsStatusWrongAction),
            QStringLiteral("Eas::ItemOperationsStatusWrongAction"));
        QCOMPARE(printed(Eas::ChangesOccurred), QStringLiteral("Eas::ChangesOccurred"));
        QCOMPARE(printed(ItemsCommon::Calendar), QStringLiteral("ItemsCommon::Calendar"));
        QCOMPARE(printed(EasItemsCommon::TUndefined), QStringLiteral("EasItemsCommon::TUndefined"));
    }

    void numbersWithoutAKeyPrintBare()
    {
        QCOMPARE(printed(static_cast<Eas::SyncStatus>(17)), QStringLiteral("17"));
        QCOMPARE(printed(static_cast<Eas::CommonStatus>(-2)), QStringLiteral("-2"));
        QCOMPARE(printed(static_cast<Eas::ProvisionStatus>(10005)), QStringLiteral("10005"));
    }

    void printingLeavesTheStreamsSpacingAlone()
    {
        QString text;
        QDebug(&text) << "status" << Eas::SyncStatusSuccess << "of" << static_cast<Eas::SyncStatus>(99)
                      << "end";
        QCOMPARE(text.trimmed(), QStringLiteral("status Eas::SyncStatusSuccess of 99 end"));
    }

    void valuesAreThoseOfTheProtocol_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("expected");

        QTest::newRow("first common") << int(Eas::CommonStatusInvalidContent) << 101;
        QTest::newRow("provision needed") << int(Eas::CommonStatusDeviceNotProvisioned) << 142;
        QTest::newRow("last common") << int(Eas::CommonStatusMaximumDevicesReached) << 177;
        QTest::newRow("storage full") << int(Eas::CommonStatusHttpInsufficientStorageError) << 507;
        QTest::newRow("folders changed") << int(Eas::SyncStatusFoldersChanged) << 12;
        QTest::newRow("move destination") << int(Eas::MoveItemsInvalidDestinationId) << 2;
        QTest::newRow("move locked") << int(Eas::MoveItemsStatusSrcOrDstLocked) << 7;
        QTest::newRow("fetch action") << int(Eas::ItemOperationsStatusWrongAction) << 156;
        QTest::newRow("ping folders") << int(Eas::FolderHierarchySyncRequired) << 7;
    }

    void valuesAreThoseOfTheProtocol()
    {
        QFETCH(int, value);
        QTEST(value, "expected");
    }

    void theCommonTableIsComplete()
    {
        const auto common = QMetaEnum::fromType<Eas::CommonStatus>();
        QCOMPARE(common.keyCount(), 82);
        for (int status = 101; status <= 177; ++status) {
            const bool isGap = status > 156 && status < 160;
            QCOMPARE(common.valueToKey(status) == nullptr, isGap);
        }
    }
};

FENNEL_REGISTER_TEST(EasTest)
#include "eastest.moc"
