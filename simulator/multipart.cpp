// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/multipart.h"

#include "simulator/wbxmlcodec.h"

#include <QtEndian>

namespace Simulator {
namespace {

const int numberSize = 4;

void appendNumber(QByteArray &bytes, int number)
{
    char raw[numberSize];
    qToLittleEndian(qint32(number), raw);
    bytes.append(raw, numberSize);
}

int numberAt(const QByteArray &bytes, int position)
{
    return position >= 0 && position + numberSize <= bytes.size()
        ? qFromLittleEndian<qint32>(bytes.constData() + position)
        : -1;
}

} // namespace

const char Multipart::contentType[] = "application/vnd.ms-sync.multipart";

QByteArray Multipart::join(const WbxmlNode &document, const QVector<QByteArray> &parts)
{
    QVector<QByteArray> all { WbxmlCodec::encode(document) };
    all += parts;
    QByteArray header;
    QByteArray content;
    const int headerSize = numberSize * (1 + 2 * all.size());
    appendNumber(header, all.size());
    for (const QByteArray &part : qAsConst(all)) {
        appendNumber(header, headerSize + content.size());
        appendNumber(header, part.size());
        content += part;
    }
    return header + content;
}

QVector<QByteArray> Multipart::split(const QByteArray &body)
{
    QVector<QByteArray> parts;
    const int count = numberAt(body, 0);
    for (int i = 0; i < count; ++i) {
        const int offset = numberAt(body, numberSize * (1 + 2 * i));
        const int size = numberAt(body, numberSize * (2 + 2 * i));
        if (offset < 0 || size < 0 || offset > body.size() - size)
            return {};
        parts.append(body.mid(offset, size));
    }
    return parts;
}

} // namespace Simulator
