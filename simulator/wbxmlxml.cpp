// SPDX-License-Identifier: LGPL-2.1-or-later
// The XML side of WbxmlNode: the form in which people write and read documents.
#include "simulator/wbxmlnode.h"

#include <QTextCodec>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

namespace Simulator {
namespace {

WbxmlNode readElement(QXmlStreamReader &xml)
{
    const QString name = xml.namespaceUri() + QLatin1Char(':') + xml.name();
    const QString encoding = xml.attributes().value(QLatin1String("encoding")).toString();
    QVector<WbxmlNode> children;
    QString text;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType type = xml.readNext();
        if (type == QXmlStreamReader::EndElement)
            break;
        if (type == QXmlStreamReader::StartElement)
            children.append(readElement(xml));
        else if (type == QXmlStreamReader::Characters)
            text += xml.text();
    }
    if (!children.isEmpty())
        return WbxmlNode(name, children);
    if (encoding == QLatin1String("base64"))
        return WbxmlNode::opaque(name, QByteArray::fromBase64(text.trimmed().toLatin1()));
    return encoding == QLatin1String("opaque") ? WbxmlNode::opaque(name, text.toUtf8())
                                               : WbxmlNode(name, text);
}

bool isPrintable(const QByteArray &bytes)
{
    QTextCodec::ConverterState state;
    const QTextCodec *utf8 = QTextCodec::codecForName("UTF-8");
    const QString text = utf8->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0
        && std::all_of(text.begin(), text.end(),
            [](QChar c) { return c >= QLatin1Char(' ') || QStringLiteral("\t\r\n").contains(c); });
}

/** XML has no way to write most control characters; a person sees a mark in their place. */
QString withoutControlCharacters(QString text)
{
    for (QChar &c : text) {
        if (c < QLatin1Char(' ') && !QStringLiteral("\t\r\n").contains(c))
            c = QChar(0xFFFD);
    }
    return text;
}

void writeElement(QXmlStreamWriter &xml, const WbxmlNode &node, const QString &parentPage)
{
    const bool sameSpace = node.page() == parentPage;
    xml.writeStartElement(node.tag());
    if (!sameSpace)
        xml.writeDefaultNamespace(node.page());
    if (node.isOpaque()) {
        const bool printable = isPrintable(node.opaqueBytes());
        xml.writeAttribute(
            QStringLiteral("encoding"), printable ? QStringLiteral("opaque") : QStringLiteral("base64"));
        xml.writeCharacters(printable ? node.text() : QString::fromLatin1(node.opaqueBytes().toBase64()));
    } else if (!node.text().isEmpty()) {
        xml.writeCharacters(withoutControlCharacters(node.text()));
    }
    for (const WbxmlNode &child : node.children())
        writeElement(xml, child, node.page());
    xml.writeEndElement();
}

} // namespace

WbxmlNode WbxmlNode::fromXml(const QString &text, QString *error)
{
    QXmlStreamReader xml(text);
    WbxmlNode root;
    if (xml.readNextStartElement())
        root = readElement(xml);
    if (!xml.hasError())
        return root;
    if (error)
        *error = xml.errorString();
    return WbxmlNode();
}

QString WbxmlNode::toXml(bool indented) const
{
    if (isNull())
        return QString();
    QString text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(indented);
    xml.setAutoFormattingIndent(2);
    writeElement(xml, *this, QString());
    return text.trimmed();
}

} // namespace Simulator
