// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/deviceinformation.h"
#include "easitems/containers/deviceinformationcontainer.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;

/** What servers are told about the device. */
class DeviceInformationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anIdentifierHasAtMost32LettersAndDigits_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("imei");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("id");
        const QString bob = QStringLiteral("bob");
        const QString suffix = QString::number(qHash(bob, 0));
        QTest::newRow("a model with hyphens, blanks and brackets") << "XA-2 (plus) [x]"
                                                                   << "123456789012345"
                                                                   << "defaultuser"
                                                                   << "XA2plusx123456789012345";
        QTest::newRow("no model") << ""
                                  << "123456789012345"
                                  << "defaultuser"
                                  << "JP123456789012345";
        QTest::newRow("another user of the device") << "XA2"
                                                    << "123" << bob << "XA2123" + suffix;
        QTest::newRow("nothing known at all") << ""
                                              << ""
                                              << "defaultuser"
                                              << "JP";
        QTest::newRow("a long model leaves no room") << QString(40, 'M') << "123"
                                                     << "defaultuser" << QString(32, 'M');
        QTest::newRow("a long model cuts the suffix")
            << QString(30, 'M') << "123" << bob << QString(30, 'M') + suffix.left(2);
        QTest::newRow("a long IMEI is shortened") << "XA2" << QString(40, '7') << "defaultuser"
                                                  << "XA2" + QString(29, '7');
    }

    void anIdentifierHasAtMost32LettersAndDigits()
    {
        QFETCH(QString, model);
        QFETCH(QString, imei);
        QFETCH(QString, user);
        const LogCollector log;
        const QString id = DeviceInformation::composeDeviceId(model, imei, user);
        QTEST(id, "id");
        QVERIFY(id.size() <= 32);
        QCOMPARE(
            log.contains(QtWarningMsg, { "device model is empty, using hardcoded device ID prefix instead" }),
            model.isEmpty());
    }

    void theImeiGivesWay()
    {
        const QString user = userWithSuffixOf(8);
        const QString id =
            DeviceInformation::composeDeviceId(QString(20, 'M'), QStringLiteral("123456789012345"), user);
        QCOMPARE(id, QString(20, 'M') + QStringLiteral("1234") + QString::number(qHash(user, 0)));
        QCOMPARE(id.size(), 32);
    }

    void theIdentifierIsComputedOnceAndRefreshedOnDemand()
    {
        qputenv("PLATFORM_DEVICE_MODEL", "First");
        qputenv("PLATFORM_DEVICE_UID", "111");
        DeviceInformation::refreshDeviceId();
        const QString first = DeviceInformation::deviceId();
        QVERIFY(first.startsWith(QStringLiteral("First111")));
        QCOMPARE(DeviceInformation::deviceModel(), QStringLiteral("First"));
        QCOMPARE(DeviceInformation::imei(), QStringLiteral("111"));
        qputenv("PLATFORM_DEVICE_MODEL", "Second");
        QCOMPARE(DeviceInformation::deviceId(), first);
        DeviceInformation::refreshDeviceId();
        QVERIFY(DeviceInformation::deviceId().startsWith(QStringLiteral("Second111")));
    }

    void theDeviceIntroducesItself()
    {
        QCOMPARE(DeviceInformation::userAgent(), QStringLiteral("HalcyonOS/4.0-EAS-0.6.49.1"));
        QVERIFY(
            QRegularExpression(QStringLiteral("^.* v.* Fw.*$")).match(DeviceInformation::os()).hasMatch());
        QVERIFY(!DeviceInformation::osLanguage().isEmpty());
        const LogCollector log;
        const QString prodId = DeviceInformation::prodId();
        QVERIFY(prodId.startsWith(QStringLiteral("-//")));
        QVERIFY(prodId.endsWith(QStringLiteral("//EAS Calendar 0.6.49.1//EN")));
        QVERIFY(log.contains(QtDebugMsg, { "Updated prodId:", prodId }));
    }

    void eachVersionGetsWhatItUnderstands_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QStringList>("elements");
        const QStringList common { "Model", "IMEI", "FriendlyName", "OS", "OSLanguage", "PhoneNumber" };
        QTest::newRow("12.0 has no UserAgent") << int(ProtocolVersion120) << common;
        QTest::newRow("12.1 has no EnableOutboundSMS")
            << int(ProtocolVersion121) << common + QStringList { "UserAgent" };
        const QStringList all = common + QStringList { "UserAgent", "EnableOutboundSMS", "MobileOperator" };
        QTest::newRow("14.0") << int(ProtocolVersion140) << all;
        QTest::newRow("16.1") << int(ProtocolVersion161) << all;
    }

    void eachVersionGetsWhatItUnderstands()
    {
        QFETCH(int, version);
        DeviceInformationContainer container;
        fill(container);
        QTEST(elementsOf(container, version), "elements");
    }

    void emptyTextsAreLeftOut()
    {
        DeviceInformationContainer container;
        QCOMPARE(elementsOf(container, ProtocolVersion120), QStringList());
        QCOMPARE(elementsOf(container, ProtocolVersion140), QStringList { "EnableOutboundSMS" });
        container.setIMEI(QStringLiteral("1"));
        QCOMPARE(elementsOf(container, ProtocolVersion121), QStringList { "IMEI" });
    }

    void theValuesArriveUnchanged()
    {
        DeviceInformationContainer container;
        fill(container);
        container.setEnableOutboundSMS(true);
        const QString xml = encoded(container, ProtocolVersion161);
        for (const char *element :
            { "<Model>m</Model>", "<IMEI>i</IMEI>", "<FriendlyName>f</FriendlyName>", "<OS>o</OS>",
                "<OSLanguage>l</OSLanguage>", "<PhoneNumber>p</PhoneNumber>", "<UserAgent>u</UserAgent>",
                "<EnableOutboundSMS>1</EnableOutboundSMS>", "<MobileOperator>c</MobileOperator>" })
            QVERIFY2(xml.contains(QLatin1String(element)), element);
    }

    void theCursorIsBackWhereItWas_data()
    {
        QTest::addColumn<int>("version");
        QTest::newRow("12.0, which ends early") << int(ProtocolVersion120);
        QTest::newRow("16.1") << int(ProtocolVersion161);
    }

    void theCursorIsBackWhereItWas()
    {
        QFETCH(int, version);
        DeviceInformationContainer container;
        fill(container);
        WbxmlEncoder encoder;
        encoder.appendElement(Wbxml::Settings::Settings, true);
        WBXMLTreeNode *const before = encoder.currentNode();
        container.encode(encoder, static_cast<ProtocolVersion>(version));
        QCOMPARE(encoder.currentNode(), before);
    }

    void theDefaultsComeFromTheDevice()
    {
        DeviceInformationContainer container;
        container.defaultInitialize();
        QCOMPARE(container.model(), DeviceInformation::model());
        QCOMPARE(container.IMEI(), DeviceInformation::imei());
        QCOMPARE(container.friendlyName(), DeviceInformation::friendlyName());
        QCOMPARE(container.OS(), DeviceInformation::os());
        QCOMPARE(container.OSLanguage(), DeviceInformation::osLanguage());
        QCOMPARE(container.userAgent(), DeviceInformation::userAgent());
        QVERIFY(container.phoneNumber().isEmpty() && container.mobileOperator().isEmpty());
        container.setEnableOutboundSMS(true);
        container.clear();
        QVERIFY(container.model().isEmpty() && container.userAgent().isEmpty());
        QVERIFY(!container.enableOutboundSMS());
    }

private:
    static QString userWithSuffixOf(int digits)
    {
        for (int i = 0;; ++i) {
            const QString user = QStringLiteral("user%1").arg(i);
            if (QString::number(qHash(user, 0)).size() == digits)
                return user;
        }
    }

    static void fill(DeviceInformationContainer &container)
    {
        container.setModel(QStringLiteral("m"));
        container.setIMEI(QStringLiteral("i"));
        container.setFriendlyName(QStringLiteral("f"));
        container.setOS(QStringLiteral("o"));
        container.setOSLanguage(QStringLiteral("l"));
        container.setPhoneNumber(QStringLiteral("p"));
        container.setUserAgent(QStringLiteral("u"));
        container.setMobileOperator(QStringLiteral("c"));
    }

    static QString encoded(const DeviceInformationContainer &container, int version)
    {
        WbxmlEncoder encoder;
        encoder.appendElement(Wbxml::Settings::Settings, true);
        container.encode(encoder, static_cast<ProtocolVersion>(version));
        return WbxmlEncoder::toXml(encoder.encoded());
    }

    /** The names of the elements in Set, in their order. */
    static QStringList elementsOf(const DeviceInformationContainer &container, int version)
    {
        static const QRegularExpression element(QStringLiteral("<([A-Za-z]+)[^>/]*>[^<]*</\\1>"));
        QStringList names;
        auto match = element.globalMatch(encoded(container, version));
        while (match.hasNext())
            names.append(match.next().captured(1));
        names.removeAll(QStringLiteral("Set"));
        return names;
    }
};

FENNEL_REGISTER_TEST(DeviceInformationTest)
#include "deviceinformationtest.moc"
