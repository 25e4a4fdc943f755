// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/override.h"

#include "simulator/wbxmlcodec.h"

#include <chrono>

namespace Simulator {

void Gate::open()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mIsOpen = true;
    mOpened.notify_all();
}

bool Gate::wait(int milliseconds)
{
    std::unique_lock<std::mutex> lock(mMutex);
    if (milliseconds >= 0)
        return mOpened.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return mIsOpen; });
    mOpened.wait(lock, [this] { return mIsOpen; });
    return true;
}

Override Override::topStatus(int status)
{
    Override result;
    result.mTopStatus = status;
    return result;
}

Override Override::collectionStatus(int status, const QString &collectionId)
{
    Override result;
    result.mCollectionStatus = { status, collectionId };
    return result;
}

Override Override::itemStatus(int status, const QString &itemId)
{
    Override result;
    result.mItemStatus = { status, itemId };
    return result;
}

Override Override::httpStatus(int status, const HttpHeaders &headers, const QByteArray &body)
{
    Override result;
    result.mReply =
        Reply { status, body, body.isEmpty() ? QByteArray() : QByteArray("text/plain"), WbxmlNode() };
    result.mHeaders = headers;
    return result;
}

Override Override::redirect(const QUrl &location, int status)
{
    return httpStatus(status, { { "X-MS-Location", location.toEncoded() } });
}

Override Override::document(const WbxmlNode &document)
{
    Override result;
    result.mReply = Reply { 200, WbxmlCodec::encode(document), "application/vnd.ms-sync.wbxml", document };
    Q_ASSERT_X(!result.mReply->body.isEmpty(), "Override", "a tag that is not in the token table");
    return result;
}

Override Override::xml(const QString &xml)
{
    QString error;
    const WbxmlNode root = WbxmlNode::fromXml(xml, &error);
    Q_ASSERT_X(error.isEmpty(), "Override", qPrintable(error));
    return document(root);
}

Override Override::bytes(const QByteArray &body, const QByteArray &contentType)
{
    Override result;
    result.mReply = Reply { 200, body, contentType, WbxmlNode() };
    return result;
}

Override Override::empty()
{
    return bytes(QByteArray(), QByteArray());
}

Override Override::drop()
{
    Override result;
    result.mTransport.drop = true;
    return result;
}

Override Override::dropSilently()
{
    Override result;
    result.mTransport.dropSilently = true;
    return result;
}

Override Override::hang()
{
    Override result;
    result.mTransport.hang = true;
    return result;
}

Override Override::edited(const Edit &edit)
{
    Override result;
    result.mEdit = edit;
    return result;
}

Override &Override::header(const QByteArray &name, const QByteArray &value)
{
    mHeaders.append({ name, value });
    return *this;
}

Override &Override::delay(int milliseconds)
{
    mTransport.delay = milliseconds;
    return *this;
}

Override &Override::holdUntil(const GatePtr &gate)
{
    mTransport.gate = gate;
    return *this;
}

Override &Override::truncateAt(qint64 bytes)
{
    mTransport.truncateAt = bytes;
    return *this;
}

Override &Override::drip(int bytesPerSecond)
{
    mTransport.bytesPerSecond = bytesPerSecond;
    return *this;
}

Override &Override::endless()
{
    mTransport.endless = true;
    return *this;
}

Override &Override::falseLength(qint64 length)
{
    mTransport.announcedLength = length;
    return *this;
}

} // namespace Simulator
