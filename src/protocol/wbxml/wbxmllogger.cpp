// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmllogger.h"

#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmltokens.h"

using namespace Wbxml;

namespace {

QString tagName(uint codePage, uint token)
{
    const WBXMLTagEntry *entry = WbxmlEncoder::tagEntry(codePage, token);
    return entry != nullptr ? QString::fromUtf8(entry->xmlName) : QString::number(key(codePage, token), 16);
}

bool isBinary(uint codePage, uint token)
{
    const uint tag = key(codePage, token);
    return tag == Email2::ConversationId || tag == Email2::ConversationIndex;
}

bool isSecret(uint codePage, uint token)
{
    switch (key(codePage, token)) {
    case Search::Password:
    case ItemOperations::Password:
    case Settings::Password:
        return true;
    default:
        return false;
    }
}

/** A zero would end the log line for the handler behind it, an escape sequence would reach the terminal. */
QString withoutControls(QString text)
{
    for (QChar &character : text) {
        const bool isKept = character == QLatin1Char('\n') || character == QLatin1Char('\r')
            || character == QLatin1Char('\t') || character.category() != QChar::Other_Control;
        if (!isKept)
            character = QLatin1Char('.');
    }
    return text;
}

} // namespace

WbxmlLogger::WbxmlLogger(const QDebug &debug, QObject *parent)
    : WbxmlParserBase(parent)
    , mDebug(debug)
{
    mDebug.nospace().noquote();
}

WbxmlLogger::~WbxmlLogger() = default;

void WbxmlLogger::onStartDocument()
{
    WbxmlParserBase::onStartDocument();
    endOpenLine();
    mDebug << "[EAS]"
           << "START_DOCUMENT\n";
}

void WbxmlLogger::onEndDocument()
{
    WbxmlParserBase::onEndDocument();
    mDebug << "[EAS]"
           << "END_DOCUMENT" << '\n';
}

void WbxmlLogger::onStartElement(uint codePage, uint token)
{
    WbxmlParserBase::onStartElement(codePage, token);
    endOpenLine();
    mDebug << wsPrefix() << QStringLiteral("<%1>").arg(tagName(codePage, token));
    ++mDepth;
    mLineOpen = true;
}

void WbxmlLogger::onEndElement(uint codePage, uint token)
{
    WbxmlParserBase::onEndElement(codePage, token);
    --mDepth;
    const QString name = tagName(codePage, token);
    if (mLineOpen)
        mDebug << QStringLiteral("</%1>\n").arg(name);
    else
        mDebug << wsPrefix() << QStringLiteral("</%1>\n").arg(name);
    mLineOpen = false;
}

void WbxmlLogger::onContent(uint codePage, uint token, const QString &text, const QByteArray &raw)
{
    if (isSecret(codePage, token))
        writeText(QStringLiteral("..."));
    else if (isBinary(codePage, token))
        writeText(QStringLiteral("HEX{%1}").arg(QString::fromLatin1(raw.toHex())));
    else
        writeText(withoutControls(text));
}

QString WbxmlLogger::wsPrefix() const
{
    return QStringLiteral("[EAS]") + QString(mDepth * 2, QLatin1Char(' '));
}

void WbxmlLogger::endOpenLine()
{
    if (mLineOpen)
        mDebug << '\n';
    mLineOpen = false;
}

void WbxmlLogger::writeText(const QString &text)
{
    if (mLineOpen && !text.contains(QLatin1Char('\n'))) {
        mDebug << text;
        return;
    }
    endOpenLine();
    const QString prefix = wsPrefix();
    const auto lines = text.splitRef(QLatin1Char('\n'));
    for (const QStringRef &line : lines)
        mDebug << prefix << line << '\n';
}
