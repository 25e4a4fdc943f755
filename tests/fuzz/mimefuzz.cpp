// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include <qmailmessage.h>

namespace {

/** Reads every part, as deep as they go. */
int readParts(const QMailMessagePartContainer &container)
{
    int count = 1;
    if (container.hasBody()) {
        container.body().data();
        container.body().data(QMailMessageBody::Decoded);
    }
    for (uint i = 0; i < container.partCount(); ++i)
        count += readParts(container.partAt(i));
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    const QMailMessage message = QMailMessage::fromRfc2822(FuzzSupport::bytes(data, size));
    if (readParts(message) > int(size) + 1)
        qFatal("more parts than bytes");
    message.subject();
    message.from();
    message.to();
    message.date();
    message.toRfc2822();
    return 0;
}
