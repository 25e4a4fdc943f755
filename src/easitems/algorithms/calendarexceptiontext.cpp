// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/calendarexceptiontext.h"

#include "application/base/logging.h"
#include "easitems/algorithms/calendarappdataparser.h"
#include "easitems/fields/calendarfields.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmltokens.h"

using namespace Wbxml;

namespace {

/** Hands the elements inside the outermost one on to the parser of an item. */
class ExceptionReader : public WbxmlParserBase
{
public:
    QList<EasCalendarItem> exceptions() const { return mParser.calendarItem().exceptions(); }

    void onStartElement(uint page, uint token) override
    {
        WbxmlParserBase::onStartElement(page, token);
        if (page != AirSync::ApplicationData.page)
            mParser.onStartElement(page, token);
    }

    void onEndElement(uint page, uint token) override
    {
        if (page != AirSync::ApplicationData.page)
            mParser.onEndElement(page, token);
        WbxmlParserBase::onEndElement(page, token);
    }

    void onContent(uint page, uint token, const QString &text, const QByteArray &raw) override
    {
        mParser.onContent(page, token, text, raw);
    }

private:
    CalendarAppDataParser mParser;
};

} // namespace

QByteArray CalendarExceptionText::encode(const QList<EasCalendarItem> &exceptions)
{
    WbxmlEncoder encoder;
    encoder.appendElement(AirSync::ApplicationData, true);
    encoder.appendElement(Calendar::Exceptions, true);
    for (const EasCalendarItem &exception : exceptions)
        CalendarFields::uploadedExceptionFields().sendIn(
            Calendar::Exception, exception, encoder, ExchangeActiveSync::ProtocolVersion141);
    return encoder.encoded();
}

QList<EasCalendarItem> CalendarExceptionText::decode(const QByteArray &bytes)
{
    ExceptionReader reader;
    reader.parse(bytes);
    if (!reader.ready()) {
        qCWarning(eas()) << "cannot read the exceptions that an event keeps";
        return {};
    }
    return reader.exceptions();
}
