// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/appdataparserbase.h"

#include "application/base/logging.h"
#include "protocol/wbxml/parserbase.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QDebug>

AppDataParserBase::AppDataParserBase(QObject *parent)
    : QObject(parent)
{
}

AppDataParserBase::~AppDataParserBase() = default;

void AppDataParserBase::onStartElement(uint page, uint token)
{
    qCInfo(eas()) << "Unhandled content, page: " << page << ", token: " << token;
}

void AppDataParserBase::onEndElement(uint page, uint token)
{
    qCInfo(eas()) << "Unhandled content, page: " << page << ", token: " << token;
}

void AppDataParserBase::onContent(uint page, uint token, const QString &text, const QByteArray &)
{
    qCInfo(eas()) << "Unhandled content, page: " << page << ", token: " << token << ", content: " << text;
}

bool AppDataParserBase::stringToInt(const QString &text, int &value, int base)
{
    return ParserBase::stringToInt(text, value, base);
}

bool AppDataParserBase::stringToUint(const QString &text, uint &value, int base)
{
    return ParserBase::stringToUint(text, value, base);
}

void AppDataParserBase::logUnhandledElement(uint page, uint token)
{
    if (mMentions.isFirst("element", Wbxml::key(page, token)))
        qCWarning(eas()) << "unhandled field:"
                         << ", codePage" << page << ", token" << token;
}

void AppDataParserBase::logUnhandledField(const QString &text, uint page, uint token)
{
    if (mMentions.isFirst("field", Wbxml::key(page, token)))
        qCWarning(eas()) << "unhandled field:" << text << ", codePage" << page << ", token" << token;
}
