// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmltable.h"
#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/buildpaths.h"
#include "support/testmain.h"

#include <QRegularExpression>
#include <QtTest>

using namespace Wbxml;

namespace {

struct NamedToken
{
    QString nameSpace;
    QString name;
    uint page;
    uint token;
};

/** The constants as the header declares them. */
QList<NamedToken> declaredTokens()
{
    QFile header(BuildPaths::source(QStringLiteral("src/protocol/wbxml/wbxmltokens.h")));
    if (!header.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression opening(QStringLiteral("^namespace (\\w+) \\{"));
    static const QRegularExpression constant(
        QStringLiteral("^inline constexpr Token (\\w+) \\{ 0x(\\w+), 0x(\\w+) \\};"));
    QList<NamedToken> tokens;
    QString nameSpace;
    while (!header.atEnd()) {
        const QString line = QString::fromUtf8(header.readLine()).trimmed();
        const auto opened = opening.match(line);
        if (opened.hasMatch())
            nameSpace = opened.captured(1);
        const auto declared = constant.match(line);
        if (declared.hasMatch())
            tokens.append({ nameSpace, declared.captured(1), declared.captured(2).toUInt(nullptr, 16),
                declared.captured(3).toUInt(nullptr, 16) });
    }
    return tokens;
}

} // namespace

class WbxmlTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyDeclaredTokenResolves()
    {
        const QList<NamedToken> tokens = declaredTokens();
        QCOMPARE(tokens.size(), 586);
        for (const NamedToken &token : tokens) {
            const WBXMLTagEntry *entry = WbxmlEncoder::tagEntry(token.page, token.token);
            QVERIFY2(entry != nullptr, qPrintable(token.name));
            QCOMPARE(uint(entry->wbxmlCodePage), token.page);
            QCOMPARE(uint(entry->wbxmlToken), token.token);
            QVERIFY(qstrlen(entry->xmlName) > 0);
        }
    }

    void declaredTokensAreThePublishedOnes()
    {
        QFile published(BuildPaths::source(QStringLiteral("../shared/protocol/wbxml-codepages.tsv")));
        if (!published.open(QIODevice::ReadOnly))
            QSKIP("the published table is not on this machine");
        QMap<uint, QString> declared;
        const QList<NamedToken> tokens = declaredTokens();
        for (const NamedToken &token : tokens)
            declared.insert(key(token.page, token.token), token.nameSpace + QLatin1Char('.') + token.name);

        int rows = 0;
        published.readLine();
        while (!published.atEnd()) {
            const QStringList fields = QString::fromUtf8(published.readLine()).split(QLatin1Char('\t'));
            if (fields.size() < 4)
                continue;
            const uint page = fields.at(0).toUInt();
            const uint token = fields.at(2).toUInt(nullptr, 0);
            QCOMPARE(
                declared.value(key(page, token)), fields.at(1) + QLatin1Char('.') + fields.at(3).trimmed());
            QVERIFY(WbxmlEncoder::tagEntry(page, token) != nullptr);
            ++rows;
        }
        QCOMPARE(rows, 586);
        QCOMPARE(declared.size(), 586);
    }

    void rowsThatTheLibraryLacksAreThere()
    {
        QCOMPARE(WbxmlEncoder::tagEntry(8, 0x10)->xmlName, "ProposedStartTime");
        QCOMPARE(WbxmlEncoder::tagEntry(8, 0x11)->xmlName, "ProposedEndTime");
        QCOMPARE(WbxmlEncoder::tagEntry(14, 0x3B)->xmlName, "AccountOnlyRemoteWipe");
        QCOMPARE(WbxmlEncoder::tagEntry(25, 0x05)->xmlName, "Find");
    }

    void pairsThatNobodyKnowsHaveNoRow()
    {
        QVERIFY(WbxmlEncoder::tagEntry(0, 0x00) == nullptr);
        QVERIFY(WbxmlEncoder::tagEntry(0, 0x3F) == nullptr);
        QVERIFY(WbxmlEncoder::tagEntry(200, 0x05) == nullptr);
        QVERIFY(WbxmlEncoder::tagEntry(0x100, 0x05) == nullptr);
        QVERIFY(WbxmlEncoder::tagEntry(0, 0x105) == nullptr);
        QVERIFY(WbxmlEncoder::tagEntry(0xFFFFFFFFU, 0xFFFFFFFFU) == nullptr);
    }

    void theListOfLanguagesHasOneEntryAndAnEnd()
    {
        const WBXMLLangEntry *languages = WbxmlTable::language();
        QVERIFY(languages != nullptr);
        QCOMPARE(int(languages[0].langID), WbxmlTable::Language);
        QVERIFY(languages[1].publicID == nullptr);
    }

    void tokensServeAsKeysAndCaseLabels()
    {
        static_assert(Email2::ConversationId == 0x1609, "a token is its key");
        static_assert(key(0x16, 0x0A) == Email2::ConversationIndex, "page times 256 plus token");
        bool found = false;
        switch (key(0x02, 0x15)) {
        case Email::Read:
            found = true;
            break;
        default:
            break;
        }
        QVERIFY(found);
    }
};

FENNEL_REGISTER_TEST(WbxmlTableTest)
#include "wbxmltabletest.moc"
