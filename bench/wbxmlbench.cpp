// SPDX-License-Identifier: LGPL-2.1-or-later
// How fast WBXML is read and written, beside the library alone on the same bytes.
#include "benchrow.h"

#include "easitems/algorithms/syncresponseparser.h"
#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmllogger.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmltable.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "protocol/wbxml/wbxmlvalidator.h"

#include <QLoggingCategory>

using namespace Wbxml;

namespace {

constexpr int messages = 512; // one window
constexpr int bodySize = 4096;

/** The encoder's operations over one body; the bare form calls the library itself. */
class EngineWriter
{
public:
    void open(Token tag) { mEncoder.appendElement(tag, true); }
    void close() { mEncoder.setCurrentNodeToParent(); }
    void text(Token tag, const QString &value) { mEncoder.appendTextElement(tag, value); }
    QByteArray bytes() const { return mEncoder.encoded(); }

private:
    WbxmlEncoder mEncoder;
};

class BareWriter
{
public:
    BareWriter()
        : mTree(wbxml_tree_create(static_cast<WBXMLLanguage>(WbxmlTable::Language), WBXML_CHARSET_UTF_8))
    {
    }
    ~BareWriter() { wbxml_tree_destroy(mTree); }
    Q_DISABLE_COPY(BareWriter)

    void open(Token tag) { mNode = add(tag); }
    void close() { mNode = mNode->parent; }
    void text(Token tag, const QString &value)
    {
        const QByteArray utf8 = value.toUtf8();
        wbxml_tree_add_text(mTree, add(tag), reinterpret_cast<const WB_UTINY *>(utf8.constData()),
            static_cast<WB_ULONG>(utf8.size()));
    }
    QByteArray bytes() const
    {
        WBXMLGenWBXMLParams parameters {};
        parameters.wbxml_version = WBXML_VERSION_13;
        parameters.keep_ignorable_ws = 1;
        parameters.produce_anonymous = 1;
        WB_UTINY *out = nullptr;
        WB_ULONG length = 0;
        wbxml_tree_to_wbxml(mTree, &out, &length, &parameters);
        const QByteArray result(reinterpret_cast<const char *>(out), static_cast<int>(length));
        wbxml_free(out);
        return result;
    }

private:
    WBXMLTreeNode *add(Token tag)
    {
        WBXMLTag *name = wbxml_tag_create_token(WbxmlTable::tagEntry(tag.page, tag.token));
        WBXMLTreeNode *node = wbxml_tree_add_elt(mTree, mNode, name);
        wbxml_tag_destroy(name);
        return node;
    }

    WBXMLTree *mTree;
    WBXMLTreeNode *mNode = nullptr;
};

template <class Writer> void writeMessage(Writer &writer, int number, const QString &body)
{
    writer.open(AirSync::Add);
    writer.text(AirSync::ServerId, QStringLiteral("5:%1").arg(number));
    writer.open(AirSync::ApplicationData);
    writer.text(Email::From, QStringLiteral("\"Ada Lovelace\" <ada@example.com>"));
    writer.text(Email::To, QStringLiteral("charles@example.com"));
    writer.text(Email::Subject, QStringLiteral("Notes on the engine, part %1").arg(number));
    writer.text(Email::DateReceived, QStringLiteral("2024-05-01T10:00:00.000Z"));
    writer.text(Email::Read, QStringLiteral("0"));
    writer.text(Email::MessageClass, QStringLiteral("IPM.Note"));
    writer.open(AirSyncBase::Body);
    writer.text(AirSyncBase::Type, QStringLiteral("1"));
    writer.text(AirSyncBase::EstimatedDataSize, QString::number(body.size()));
    writer.text(AirSyncBase::Data, body);
    writer.close();
    writer.close();
    writer.close();
}

template <class Writer> QByteArray syncReply()
{
    const QString body = QStringLiteral("All work and no play. ").repeated(bodySize / 22);
    Writer writer;
    writer.open(AirSync::Sync);
    writer.open(AirSync::Collections);
    writer.open(AirSync::Collection);
    writer.text(AirSync::SyncKey, QStringLiteral("2"));
    writer.text(AirSync::CollectionId, QStringLiteral("5"));
    writer.text(AirSync::Status, QStringLiteral("1"));
    writer.open(AirSync::Commands);
    for (int i = 0; i < messages; ++i)
        writeMessage(writer, i, body);
    return writer.bytes();
}

void parseBare(const QByteArray &bytes)
{
    static WBXMLContentHandler handler {
        [](void *, WBXMLCharsetMIBEnum, const WBXMLLangEntry *) {},
        [](void *) {},
        [](void *, WBXMLTag *, WBXMLAttribute **) {},
        [](void *, WBXMLTag *) {},
        [](void *, WB_UTINY *, WB_ULONG, WB_ULONG) {},
        [](void *, const WB_UTINY *, WB_UTINY *) {},
    };
    WBXMLParser *parser = wbxml_parser_create();
    wbxml_parser_set_language(parser, static_cast<WBXMLLanguage>(WbxmlTable::Language));
    wbxml_parser_set_main_table(parser, WbxmlTable::language());
    wbxml_parser_set_content_handler(parser, &handler);
    QByteArray copy = bytes;
    wbxml_parser_parse(parser, reinterpret_cast<WB_UTINY *>(copy.data()), static_cast<WB_ULONG>(copy.size()));
    wbxml_parser_destroy(parser);
}

class Silent : public WbxmlParserBase
{
public:
    void onContent(uint, uint, const QString &, const QByteArray &) override {}
};

} // namespace

int main()
{
    QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*=false"));
    const QByteArray reply = syncReply<BareWriter>();
    const double megabytes = reply.size() / 1e6;
    const auto row = [megabytes](const char *name, const auto &work) {
        BenchRow::print(name, megabytes / BenchRow::seconds(work), "MB/s");
    };
    std::printf("WBXML, one Sync reply of %d messages, %.1f MB\n", messages, megabytes);
    row("read: library alone", [&reply] { parseBare(reply); });
    row("read: byte check alone", [&reply] { WbxmlValidator(reply).check(); });
    row("read: check, library, parser framework", [&reply] { Silent().parse(reply); });
    row("read: into messages", [&reply] { SyncResponseParser().parse(reply); });
    row("read: dump for the log", [&reply] {
        QString text;
        WbxmlLogger(QDebug(&text)).parse(reply);
    });
    row("read: XML", [&reply] { WbxmlEncoder::toXml(reply); });
    row("write: library alone", [] { syncReply<BareWriter>(); });
    row("write: encoder", [] { syncReply<EngineWriter>(); });
    return 0;
}
