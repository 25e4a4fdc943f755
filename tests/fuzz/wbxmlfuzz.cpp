// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmllogger.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "protocol/wbxml/wbxmlvalidator.h"

#include <QtGlobal>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    const QByteArray bytes = FuzzSupport::bytes(data, size);
    WbxmlParserBase parser;
    parser.parse(bytes);
    // What the check lets pass, the library must be able to read.
    if (parser.ready() != (bytes.isEmpty() || WbxmlValidator(bytes).check()))
        qFatal("the check and the parser disagree");

    WbxmlEncoder::toXml(bytes);
    QString text;
    WbxmlLogger logger { QDebug(&text) };
    logger.parse(bytes);
    return 0;
}
