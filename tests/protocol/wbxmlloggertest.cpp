// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmllogger.h"
#include "protocol/wbxml/debugtools.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmlbytes.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlBytes::document;

namespace {

QString logged(const QByteArray &data)
{
    QString text;
    {
        WbxmlLogger logger { QDebug(&text) };
        logger.parse(data);
    }
    return text;
}

} // namespace

class WbxmlLoggerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void elementsAreIndentedAndTextStandsOnTheirLine()
    {
        QCOMPARE(logged(document("00 07 56 4C 03 31 00 01 12 01")),
            QStringLiteral("[EAS]START_DOCUMENT\n"
                           "[EAS]<FolderSync>\n"
                           "[EAS]  <Status>1</Status>\n"
                           "[EAS]  <SyncKey></SyncKey>\n"
                           "[EAS]</FolderSync>\n"
                           "[EAS]END_DOCUMENT\n"));
    }

    void textOfSeveralLinesStandsByItself()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.appendTextElement(AirSync::SyncKey, QStringLiteral("one\ntwo"));
        QCOMPARE(logged(encoder.encoded()),
            QStringLiteral("[EAS]START_DOCUMENT\n"
                           "[EAS]<Sync>\n"
                           "[EAS]  <SyncKey>\n"
                           "[EAS]    one\n"
                           "[EAS]    two\n"
                           "[EAS]  </SyncKey>\n"
                           "[EAS]</Sync>\n"
                           "[EAS]END_DOCUMENT\n"));
    }

    void conversationIdentifiersAreHexadecimal()
    {
        QCOMPARE(logged(document("00 16 49 C3 03 00 AB FF 01")),
            QStringLiteral("[EAS]START_DOCUMENT\n[EAS]<ConversationId>HEX{00abff}</ConversationId>\n"
                           "[EAS]END_DOCUMENT\n"));
        QVERIFY(logged(document("00 16 4A C3 01 0A 01")).contains(QStringLiteral("HEX{0a}")));
    }

    void quotesAndOtherCharactersAreNotEscaped()
    {
        QVERIFY(logged(document("45 03 22 C3A4 22 00 01")).contains(QString::fromUtf8("<Sync>\"ä\"</Sync>")));
    }

    void controlCharactersStayOut()
    {
        QVERIFY(logged(document("45 C3 06 61 00 1B 09 C2 9B 01"))
                    .contains(QStringLiteral("<Sync>a..\t.</Sync>")));
    }

    void tagsThatTheLibraryLacksHaveNames()
    {
        QVERIFY(logged(document("00 19 45 06 01")).contains(QStringLiteral("<SearchId>")));
    }

    void passwordsStayOut()
    {
        for (Token tag : { Search::Password, ItemOperations::Password, Settings::Password }) {
            WbxmlEncoder encoder;
            encoder.appendTextElement(tag, QStringLiteral("s3cret\nword"));
            const QString text = logged(encoder.encoded());
            QVERIFY(text.contains(QStringLiteral("Password")));
            QVERIFY(!text.contains(QStringLiteral("s3cret")));
        }
    }

    void aMalformedDocumentPrintsNothing()
    {
        LogCollector log;
        QCOMPARE(logged(document("45 4B 03 31 00")), QString());
    }

    void anEmptyDocumentIsSaidToBeEmpty()
    {
        QString text;
        DebugTools::dumpWbxmlData(QDebug(&text), QByteArray());
        QCOMPARE(text, QStringLiteral("WBXML tree: <empty>\n"));
    }

    void aDumpIsTheDocumentsText()
    {
        QString text;
        DebugTools::dumpWbxmlData(QDebug(&text), document("05"));
        QCOMPARE(text, QStringLiteral("[EAS]START_DOCUMENT\n[EAS]<Sync></Sync>\n[EAS]END_DOCUMENT\n"));
    }
};

FENNEL_REGISTER_TEST(WbxmlLoggerTest)
#include "wbxmlloggertest.moc"
