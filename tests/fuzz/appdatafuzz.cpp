// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include FENNEL_FUZZ_HEADER
#include FENNEL_FUZZ_FIELDS_HEADER

#include <QVector>

#include <iterator>

namespace {

constexpr uint Pages[] = { 1, 2, 4, 8, 12, 17 };

/**
 * An item as events, which is how the parser of a reply hands it over: a byte says what comes, two say which
 * element, and a text has its length before it. Elements are closed in the order in which they were opened,
 * because the document was checked before.
 */
class Events
{
public:
    Events(const uint8_t *data, std::size_t size)
        : mBytes(FuzzSupport::bytes(data, size))
    {
    }

    template <class Parser> void play(Parser &parser)
    {
        while (mAt < mBytes.size()) {
            switch (next() % 4) {
            case 0:
                open(parser);
                break;
            case 1:
                close(parser);
                break;
            default:
                open(parser);
                content(parser);
                close(parser);
            }
        }
        while (!mOpen.isEmpty())
            close(parser);
    }

private:
    struct Element
    {
        uint page;
        uint token;
    };

    uint next() { return mAt < mBytes.size() ? uchar(mBytes.at(mAt++)) : 0; }

    template <class Parser> void open(Parser &parser)
    {
        const uint page = Pages[next() % std::size(Pages)];
        mOpen.append({ page, next() & 0x3FU });
        parser.onStartElement(mOpen.last().page, mOpen.last().token);
    }

    template <class Parser> void content(Parser &parser)
    {
        const QByteArray raw = mBytes.mid(mAt, int(next()));
        mAt += raw.size();
        parser.onContent(mOpen.last().page, mOpen.last().token, QString::fromUtf8(raw), raw);
    }

    template <class Parser> void close(Parser &parser)
    {
        if (mOpen.isEmpty())
            return;
        const Element element = mOpen.takeLast();
        parser.onEndElement(element.page, element.token);
    }

    const QByteArray mBytes;
    int mAt = 0;
    QVector<Element> mOpen;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    FENNEL_FUZZ_PARSER parser;
    Events(data, size).play(parser);
    // What came down must be able to go up again. Below 16.0 no file is read for it.
    WbxmlEncoder encoder;
    FENNEL_FUZZ_FIELDS().sendIn(Wbxml::AirSync::ApplicationData, parser.FENNEL_FUZZ_ITEM(), encoder,
        ExchangeActiveSync::ProtocolVersion141);
    if (encoder.encoded().isEmpty())
        qFatal("an item that cannot be encoded");
    parser.reset();
    return 0;
}
