// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/provisionresponseparser.h"
#include "easitems/containers/provisiondocfields.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

WbxmlNode policy(const QVector<WbxmlNode> &values, const char *key = "temporary")
{
    return node(Provision::Policy,
        { node(Provision::PolicyType, "MS-EAS-Provisioning-WBXML"), node(Provision::Status, "1"),
            node(Provision::PolicyKey, key),
            node(Provision::Data, { node(Provision::EASProvisionDoc, values) }) });
}

QByteArray reply(const QVector<WbxmlNode> &policies)
{
    return document(
        node(Provision::Provision, { node(Provision::Status, "1"), node(Provision::Policies, policies) }));
}

/** The document of a reply with these values. */
EasProvisionDoc read(const QVector<WbxmlNode> &values)
{
    ProvisionResponseParser parser;
    parser.parse(reply({ policy(values) }));
    return parser.policyList().value(0).data();
}

} // namespace

/** What a server answers to a Provision. */
class ProvisionResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPolicyIsRead()
    {
        ProvisionResponseParser parser;
        parser.parse(document(node(Provision::Provision,
            { node(Settings::DeviceInformation, { node(Settings::Status, "5") }),
                node(Provision::Status, "1"),
                node(Provision::Policies,
                    { policy({ node(Provision::DevicePasswordEnabled, "1"),
                        node(Provision::MinDevicePasswordLength, "4") }) }) })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 1U);
        QCOMPARE(parser.deviceInformatonStatus(), 5U);
        QVERIFY(!parser.remoteWipeRecieved());
        QVERIFY(!parser.accountOnlyRemoteWipeReceived());
        QCOMPARE(parser.policyList().size(), 1);
        const EasPolicyContainer container = parser.policyList().first();
        QCOMPARE(container.policyType(), QStringLiteral("MS-EAS-Provisioning-WBXML"));
        QCOMPARE(container.policyKey(), QStringLiteral("temporary"));
        QCOMPARE(container.status(), EasPolicyContainer::ResponseStatusSuccess);
        QVERIFY(container.data().devicePasswordEnabled());
        QCOMPARE(container.data().minDevicePasswordLength(), 4U);
    }

    void eachElementHasItsValue_data()
    {
        QTest::addColumn<int>("row");
        const auto &fields = ProvisionDocFields::all();
        QCOMPARE(fields.size(), 42);
        for (int row = 0; row < fields.size(); ++row)
            QTest::newRow(qPrintable(fields.at(row).name())) << row;
    }

    void eachElementHasItsValue()
    {
        QFETCH(int, row);
        const ProvisionDocField &field = ProvisionDocFields::all().at(row);
        const EasProvisionDoc none;
        const EasProvisionDoc doc = read({ node(field.element, "3") });
        QVERIFY(doc != none);
        for (const ProvisionDocField &other : ProvisionDocFields::all())
            QCOMPARE(other.value(doc) == other.value(none), other.element.key() != field.element.key());
        const QVariant value = field.value(doc);
        switch (static_cast<int>(value.type())) {
        case QMetaType::Bool:
            QCOMPARE(value, QVariant(true));
            break;
        case QMetaType::Int:
            QCOMPARE(value, QVariant(3));
            break;
        case QMetaType::UInt:
            QCOMPARE(value, QVariant(3U));
            break;
        default:
            QCOMPARE(value, QVariant(QStringList { "3" }));
        }
        EasProvisionDoc cleared = doc;
        cleared.clear();
        QVERIFY(cleared == none);
    }

    void whatIsLeftOutIsNotAllowed()
    {
        const EasProvisionDoc doc = read({});
        QVERIFY(doc == EasProvisionDoc());
        const QVariantMap values = ProvisionDocFields::values(doc);
        QCOMPARE(values.size(), 42);
        for (auto value = values.cbegin(); value != values.cend(); ++value) {
            if (static_cast<QMetaType::Type>(value->type()) == QMetaType::Bool)
                QVERIFY2(!value->toBool(), qPrintable(value.key()));
        }
        QCOMPARE(values.value("AllowBrowser"), QVariant(false));
        QCOMPARE(values.value("AllowBluetooth"), QVariant(-1));
        QCOMPARE(values.value("MaxCalendarAgeFilter"), QVariant(-1));
        QCOMPARE(values.value("MaxEmailAgeFilter"), QVariant(-1));
        QCOMPARE(values.value("MaxEmailBodyTruncationSize"), QVariant(0));
        QCOMPARE(values.value("MaxEmailHTMLBodyTruncationSize"), QVariant(0));
        QCOMPARE(values.value("AllowSMIMEEncryptionAlgorithmNegotiation"), QVariant(-1));
        QCOMPARE(values.value("RequireEncryptionSMIMEAlgorithm"), QVariant(-1));
        QCOMPARE(values.value("RequireSignedSMIMEAlgorithm"), QVariant(-1));
        QCOMPARE(values.value("MaxAttachmentSize"), QVariant(0U));
        QCOMPARE(values.value("ApprovedApplicationList"), QVariant(QStringList()));
        QCOMPARE(values.value("UnapprovedInROMApplicationList"), QVariant(QStringList()));
    }

    void numbersAreNotBroughtIntoARange()
    {
        const EasProvisionDoc doc =
            read({ node(Provision::AllowBluetooth, "5"), node(Provision::AllowCamera, "-1"),
                node(Provision::AllowWiFi, "2"), node(Provision::MaxEmailBodyTruncationSize, "-1"),
                node(Provision::MaxAttachmentSize, "4294967295") });
        QCOMPARE(int(doc.allowBluetooth()), 5);
        QVERIFY(!doc.allowCamera());
        QVERIFY(doc.allowWiFi());
        QCOMPARE(doc.maxEmailBodyTruncationSize(), -1);
        QCOMPARE(doc.maxAttachmentSize(), 4294967295U);
    }

    void aListIsChosenByItsElementAlone()
    {
        const EasProvisionDoc doc =
            read({ node(Provision::ApprovedApplicationList,
                       { node(Provision::Hash, "h1"), node(Provision::ApplicationName, "a1") }),
                node(Provision::UnapprovedInROMApplicationList,
                    { node(Provision::ApplicationName, "a2"), node(Provision::Hash, "h2") }) });
        QCOMPARE(doc.approvedApplicationList(), (QStringList { "h1", "h2" }));
        QCOMPARE(doc.unapprovedInROMApplicationList(), (QStringList { "a1", "a2" }));
    }

    void aValueThatDoesNotConvertKeepsItsDefault_data()
    {
        QTest::addColumn<int>("element");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("log");
        QTest::newRow("bool") << int(Provision::AllowCamera.key()) << "yes"
                              << "Cannot convert to bool: ";
        QTest::newRow("password") << int(Provision::DevicePasswordEnabled.key()) << "yes"
                                  << "Cannot convert to int: ";
        QTest::newRow("bluetooth") << int(Provision::AllowBluetooth.key()) << "-1"
                                   << "Cannot convert to uint: ";
        QTest::newRow("number") << int(Provision::MaxAttachmentSize.key()) << "-1"
                                << "Cannot convert to uint:";
        QTest::newRow("size") << int(Provision::MaxEmailBodyTruncationSize.key()) << "all"
                              << "Cannot convert to uint:";
    }

    void aValueThatDoesNotConvertKeepsItsDefault()
    {
        QFETCH(int, element);
        QFETCH(QString, text);
        QFETCH(QString, log);
        LogCollector collector;
        const Token tag { quint8(element / 256), quint8(element % 256) };
        const EasProvisionDoc doc = read({ node(tag, text), node(Provision::AllowWiFi, "1") });
        QVERIFY(doc.allowWiFi());
        EasProvisionDoc expected;
        expected.setAllowWiFi(true);
        QVERIFY(doc == expected);
        const QStringList warnings = collector.texts(QtWarningMsg);
        QCOMPARE(warnings.size(), 1);
        QVERIFY2(warnings.first().startsWith(log), qPrintable(warnings.first()));
        QVERIFY(warnings.first().contains(text));
    }

    void aStatusBelongsWhereItStands()
    {
        ProvisionResponseParser parser;
        parser.parse(document(node(Provision::Provision,
            { node(Provision::Status, "1"),
                node(Provision::Policies,
                    { node(Provision::Policy,
                        { node(Provision::Status, "5"), node(Provision::Data, QVector<WbxmlNode> {}) }) }),
                node(Provision::Status, "3") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 3U);
        QCOMPARE(parser.policyList().first().status(), EasPolicyContainer::ResponseStatusOutOfDate);
    }

    void aStatusThatIsNoNumberOfTheProtocolIsLeftOut()
    {
        LogCollector log;
        ProvisionResponseParser parser;
        parser.parse(document(node(Provision::Provision,
            { node(Provision::Status, "10005"),
                node(Provision::Policies,
                    { node(Provision::Policy, { node(Provision::Status, "4294967289") }) }) })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0U);
        QCOMPARE(parser.policyList().first().status(), EasPolicyContainer::ResponseStatusUndefined);
        QCOMPARE(log.texts(QtWarningMsg).size(), 2);
    }

    void policiesKeepTheirOrderAndTheirValues()
    {
        ProvisionResponseParser parser;
        parser.parse(reply({ policy({ node(Provision::AllowCamera, "1"), node(Provision::Hash, "h") }, "1"),
            policy({ node(Provision::AllowWiFi, "1") }, "2"),
            node(Provision::Policy, { node(Provision::PolicyKey, "3") }) }));
        const QList<EasPolicyContainer> policies = parser.policyList();
        QCOMPARE(policies.size(), 3);
        QCOMPARE(policies.at(0).policyKey(), QStringLiteral("1"));
        QCOMPARE(policies.at(1).policyKey(), QStringLiteral("2"));
        QVERIFY(policies.at(1).data().allowWiFi());
        QVERIFY(!policies.at(1).data().allowCamera());
        QVERIFY(policies.at(1).data().approvedApplicationList().isEmpty());
        QVERIFY(policies.at(2).policyType().isEmpty());
        QVERIFY(policies.at(2).data() == EasProvisionDoc());
        QVERIFY(policies.at(0) != policies.at(1));
        QVERIFY(policies.at(0) == EasPolicyContainer(policies.at(0)));
    }

    void policiesWithoutAnEndAreRefused()
    {
        const QVector<WbxmlNode> most(100, node(Provision::Policy));
        ProvisionResponseParser parser;
        parser.parse(reply(most));
        QVERIFY(parser.ready());
        parser.parse(reply(most + most));
        QVERIFY(!parser.ready());
    }

    void aWipeIsOrdered_data()
    {
        QTest::addColumn<bool>("device");
        QTest::addColumn<bool>("account");
        QTest::newRow("none") << false << false;
        QTest::newRow("of the device") << true << false;
        QTest::newRow("of the account") << false << true;
        QTest::newRow("both") << true << true;
    }

    void aWipeIsOrdered()
    {
        QFETCH(bool, device);
        QFETCH(bool, account);
        QVector<WbxmlNode> content { node(Provision::Status, "1") };
        if (device)
            content.append(node(Provision::RemoteWipe));
        if (account)
            content.append(node(Provision::AccountOnlyRemoteWipe));
        ProvisionResponseParser parser;
        parser.parse(document(node(Provision::Provision, content)));
        QVERIFY(parser.ready());
        QCOMPARE(parser.remoteWipeRecieved(), device);
        QCOMPARE(parser.accountOnlyRemoteWipeReceived(), account);
    }

    void nothingOfTheLastReplyIsKept()
    {
        ProvisionResponseParser parser;
        parser.parse(document(node(Provision::Provision,
            { node(Settings::DeviceInformation, { node(Settings::Status, "1") }),
                node(Provision::Status, "1"),
                node(Provision::Policies, { policy({ node(Provision::AllowCamera, "1") }) }),
                node(Provision::RemoteWipe), node(Provision::AccountOnlyRemoteWipe) })));
        QVERIFY(parser.ready());
        LogCollector log;
        parser.parse(QByteArray());
        QVERIFY(!parser.ready());
        QCOMPARE(log.texts(QtWarningMsg), QStringList { "data is empty" });
        QCOMPARE(parser.status(), 0U);
        QCOMPARE(parser.deviceInformatonStatus(), 0U);
        QVERIFY(!parser.remoteWipeRecieved());
        QVERIFY(!parser.accountOnlyRemoteWipeReceived());
        QVERIFY(parser.policyList().isEmpty());
    }

    void anotherDocumentIsNoAnswer()
    {
        ProvisionResponseParser parser;
        parser.parse(document(node(FolderHierarchy::FolderSync, { node(FolderHierarchy::Status, "142") })));
        QVERIFY(!parser.ready());
    }

    void aReplyThatIsCutShortIsNoAnswer()
    {
        const QByteArray whole = reply({ policy({ node(Provision::AllowCamera, "1") }) });
        LogCollector log;
        for (int size = 1; size < whole.size(); ++size) {
            ProvisionResponseParser parser;
            parser.parse(whole.left(size));
            QVERIFY2(!parser.ready(), qPrintable(QString::number(size)));
        }
        ProvisionResponseParser parser;
        parser.parse(whole);
        QVERIFY(parser.ready());
    }

    void foreignElementsAreLoggedAndLeftOut()
    {
        LogCollector log;
        ProvisionResponseParser parser;
        parser.parse(document(
            node(Provision::Provision, { node(AirSync::Status, "7"), node(Provision::Status, "1") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 1U);
        const QString warnings = log.texts(QtWarningMsg).join(QLatin1Char('\n'));
        QVERIFY(warnings.contains(", codePage: "));
        QVERIFY(warnings.contains(", token: "));
        QVERIFY(warnings.contains("Unexpected content: "));
    }
};

FENNEL_REGISTER_TEST(ProvisionResponseParserTest)
#include "provisionresponseparsertest.moc"
