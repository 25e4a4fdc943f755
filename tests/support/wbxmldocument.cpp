// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/wbxmldocument.h"

#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmlparserbase.h"

#include "protocol/wbxml/wbxmlabi.h"

namespace {

void append(WbxmlEncoder &encoder, const WbxmlNode &node)
{
    if (!node.opaque.isEmpty()) {
        encoder.appendByteArrayElement(node.tag, node.opaque);
        return;
    }
    if (!node.text.isEmpty()) {
        encoder.appendTextElement(node.tag, node.text);
        return;
    }
    encoder.appendElement(node.tag, true);
    for (const WbxmlNode &child : node.children)
        append(encoder, child);
    encoder.setCurrentNodeToParent();
}

class OutlineParser : public WbxmlParserBase
{
public:
    void onStartElement(uint page, uint token) override
    {
        WbxmlParserBase::onStartElement(page, token);
        if (!mHasChildren.isEmpty()) {
            outline += mHasChildren.last() ? QLatin1Char(',') : QLatin1Char('(');
            mHasChildren.last() = true;
        }
        const WBXMLTagEntry *const entry = WbxmlEncoder::tagEntry(page, token);
        outline += entry ? QString::fromUtf8(entry->xmlName) : QStringLiteral("?");
        mHasChildren.append(false);
    }

    void onEndElement(uint page, uint token) override
    {
        WbxmlParserBase::onEndElement(page, token);
        if (mHasChildren.takeLast())
            outline += QLatin1Char(')');
    }

    void onContent(uint, uint, const QString &text, const QByteArray &) override
    {
        outline += QLatin1Char('=') + text;
    }

    QString outline;

private:
    QVector<bool> mHasChildren;
};

} // namespace

namespace WbxmlDocument {

WbxmlNode node(Wbxml::Token tag, const QVector<WbxmlNode> &children)
{
    return { tag, children, {}, {} };
}

WbxmlNode node(Wbxml::Token tag, const QString &text)
{
    return { tag, {}, text, {} };
}

WbxmlNode node(Wbxml::Token tag, const char *text)
{
    return node(tag, QString::fromUtf8(text));
}

WbxmlNode opaque(Wbxml::Token tag, const QByteArray &bytes)
{
    return { tag, {}, {}, bytes };
}

QByteArray document(const WbxmlNode &root)
{
    WbxmlEncoder encoder;
    append(encoder, root);
    return encoder.encoded();
}

QString outline(const QByteArray &bytes)
{
    OutlineParser parser;
    parser.parse(bytes);
    return parser.ready() ? parser.outline : QString();
}

} // namespace WbxmlDocument
