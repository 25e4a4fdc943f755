// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include "protocol/base/protocolutils.h"
#include "protocol/fetchitemcommand.h"

#include <QNetworkReply>

namespace {

/** A reply that is nothing but its content type. */
class TypedReply : public QNetworkReply
{
public:
    TypedReply()
    {
        setHeader(QNetworkRequest::ContentTypeHeader, QString(ProtocolUtils::ContentTypeMultiPart));
    }
    void abort() override {}

protected:
    qint64 readData(char *, qint64) override { return -1; }
};

class Command : public FetchItemCommand
{
public:
    using FetchItemCommand::FetchItemCommand;
    using FetchItemCommand::processMultiPartResponse;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    static const TypedReply reply;
    Command command(1);
    command.setAcceptMultipart(true);
    command.setFileReference(QStringLiteral("1:2"));
    const QByteArray bytes = FuzzSupport::bytes(data, size);
    if (command.processMultiPartResponse(&reply, bytes) && command.partData().size() > bytes.size())
        qFatal("a part longer than its reply");
    return 0;
}
