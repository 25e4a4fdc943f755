// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/parserbase.h"

/**
 * Feeds a parser from WBXML bytes.
 *
 * The bytes are checked as a whole before the library reads them: what a server must not send leaves the
 * parser not ready, without an event. The text of an element comes in one call of onContent() for each
 * stretch between two tags, however many strings the server cut it into. An unknown tag is left out; its text
 * goes to the element around it.
 */
class WbxmlParserBase : public ParserBase
{
    Q_OBJECT

public:
    explicit WbxmlParserBase(QObject *parent = nullptr);
    ~WbxmlParserBase() override;

    void parse(const QByteArray &data) override;

private:
    friend struct WbxmlParserCallbacks;

    void flushCharacters();

    QByteArray mCharacters;
};
