// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlparserbase.h"

#include "application/base/logging.h"
#include "protocol/wbxml/wbxmlabi.h"
#include "protocol/wbxml/wbxmltable.h"
#include "protocol/wbxml/wbxmlvalidator.h"

#include <memory>

/** What the library calls; the user data is the parser. */
struct WbxmlParserCallbacks
{
    static WbxmlParserBase *parser(void *context) { return static_cast<WbxmlParserBase *>(context); }

    static void startDocument(void *context, WBXMLCharsetMIBEnum, const WBXMLLangEntry *)
    {
        parser(context)->onStartDocument();
    }

    static void endDocument(void *context) { parser(context)->onEndDocument(); }

    static void startElement(void *context, WBXMLTag *tag, WBXMLAttribute **)
    {
        parser(context)->flushCharacters();
        if (isToken(context, tag))
            parser(context)->onStartElement(tag->u.token->wbxmlCodePage, tag->u.token->wbxmlToken);
    }

    static void endElement(void *context, WBXMLTag *tag)
    {
        parser(context)->flushCharacters();
        if (isToken(context, tag))
            parser(context)->onEndElement(tag->u.token->wbxmlCodePage, tag->u.token->wbxmlToken);
    }

    static void characters(void *context, WB_UTINY *characters, WB_ULONG start, WB_ULONG length)
    {
        parser(context)->mCharacters.append(
            reinterpret_cast<const char *>(characters) + start, static_cast<int>(length));
    }

    static void processingInstruction(void *context, const WB_UTINY *target, WB_UTINY *data)
    {
        parser(context)->onProcessingInstruction(QString::fromUtf8(reinterpret_cast<const char *>(target)),
            QString::fromUtf8(reinterpret_cast<const char *>(data)));
    }

    static bool isToken(void *context, const WBXMLTag *tag)
    {
        if (tag->type == WBXML_VALUE_TOKEN)
            return true;
        if (parser(context)->isFirst("literal", 0, 0))
            qCCritical(eas()) << "Unsupported name type, literal: " << static_cast<int>(tag->type);
        return false;
    }
};

namespace {

struct ParserDeleter
{
    void operator()(WBXMLParser *parser) const { wbxml_parser_destroy(parser); }
};

WBXMLContentHandler *contentHandler()
{
    static WBXMLContentHandler handler {
        WbxmlParserCallbacks::startDocument,
        WbxmlParserCallbacks::endDocument,
        WbxmlParserCallbacks::startElement,
        WbxmlParserCallbacks::endElement,
        WbxmlParserCallbacks::characters,
        WbxmlParserCallbacks::processingInstruction,
    };
    return &handler;
}

} // namespace

WbxmlParserBase::WbxmlParserBase(QObject *parent)
    : ParserBase(parent)
{
}

WbxmlParserBase::~WbxmlParserBase() = default;

void WbxmlParserBase::parse(const QByteArray &data)
{
    ParserBase::parse(data);
    mCharacters.clear();
    if (data.isEmpty())
        return;

    WbxmlValidator validator(data);
    if (!validator.check()) {
        qCCritical(eas()) << "Malformed WBXML document:" << validator.reason() << "at offset"
                          << validator.offset();
        mState = Failed;
        return;
    }
    if (validator.documentLength() < data.size())
        qCWarning(eas()) << "Bytes after the end of the WBXML document:"
                         << data.size() - validator.documentLength();

    const std::unique_ptr<WBXMLParser, ParserDeleter> parser(wbxml_parser_create());
    if (parser == nullptr) {
        qCCritical(eas()) << "Cannot create WBXML parser";
        return;
    }
    if (wbxml_parser_set_language(parser.get(), static_cast<WBXMLLanguage>(WbxmlTable::Language)) == 0) {
        qCCritical(eas()) << "Cannot set AS language";
        return;
    }
    const WBXMLLangEntry *table = WbxmlTable::language();
    if (table == nullptr) {
        qCCritical(eas()) << "Cannot get AS table";
        return;
    }
    wbxml_parser_set_main_table(parser.get(), table);
    wbxml_parser_set_user_data(parser.get(), this);
    wbxml_parser_set_content_handler(parser.get(), contentHandler());
    // The library copies the document and writes nothing to the caller's bytes.
    auto *bytes = const_cast<WB_UTINY *>(reinterpret_cast<const WB_UTINY *>(data.constData()));
    wbxml_parser_parse(parser.get(), bytes, static_cast<WB_ULONG>(validator.documentLength()));
    mCharacters = QByteArray();
}

void WbxmlParserBase::flushCharacters()
{
    if (mCharacters.isEmpty())
        return;
    const QByteArray raw = std::move(mCharacters);
    mCharacters = QByteArray();
    // With its length: given the array alone, the decoder stops at the first zero.
    onCharacters(QString::fromUtf8(raw.constData(), raw.size()), raw);
}
