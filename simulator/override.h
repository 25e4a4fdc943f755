// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/recordedrequest.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace Simulator {

/** Holds replies back until a test opens it. Thread-safe. */
class Gate
{
public:
    void open();
    /** Waits until open() or until @p milliseconds have passed (-1: for ever); true if it is open. */
    bool wait(int milliseconds = -1);

private:
    std::mutex mMutex;
    std::condition_variable mOpened;
    bool mIsOpen = false;
};

using GatePtr = std::shared_ptr<Gate>;

/** How a finished answer reaches the client. */
struct Transport
{
    int delay = 0; ///< milliseconds before the first byte
    GatePtr gate; ///< nothing is sent before it opens
    std::optional<qint64> truncateAt; ///< the connection drops after so many bytes of the body
    int bytesPerSecond = 0; ///< 0: as fast as it goes
    std::optional<qint64> announcedLength; ///< a false Content-Length
    bool endless = false; ///< the body repeats without an end
    bool drop = false; ///< the connection drops when the answer has begun, before its body
    bool dropSilently = false; ///< the connection drops without one byte
    bool hang = false; ///< no answer ever
};

/**
 * What the server answers in place of, or on top of, its own answer.
 *
 * A default-constructed Override is the server's own answer; the faults of the transport can be added to any:
 * `Override().truncateAt(17)`, `Override::topStatus(5).delay(200)`. Those that name a status or give a reply
 * of their own leave the mailbox and the keys as they were; transport faults come after the server has done
 * its work, so that the client misses an answer that counted.
 */
class Override
{
public:
    using Edit = std::function<void(WbxmlNode &)>;

    Override() = default;
    /** The command's root with nothing but this Status. */
    static Override topStatus(int status);
    /** Sync: that Status for the collection, or for all when @p collectionId is empty. */
    static Override collectionStatus(int status, const QString &collectionId = QString());
    /** Each change, move or fetch of the request gets that Status, or only the item of that ServerId or
     * ClientId. */
    static Override itemStatus(int status, const QString &itemId = QString());
    /** A bare HTTP answer. */
    static Override httpStatus(int status, const HttpHeaders &headers = {}, const QByteArray &body = {});
    /** HTTP @p status with the header X-MS-Location. */
    static Override redirect(const QUrl &location, int status = 451);
    static Override document(const WbxmlNode &document);
    /** A document as XML, see WbxmlNode::fromXml(). */
    static Override xml(const QString &xml);
    static Override bytes(const QByteArray &body, const QByteArray &contentType);
    /** HTTP 200 with an empty body. */
    static Override empty();
    /** The line drops where the body of the answer would begin. */
    static Override drop();
    /**
     * The line drops without one byte. QNetworkAccessManager then sends the request again by itself, up to
     * three times, and each of these counts as a request here.
     */
    static Override dropSilently();
    static Override hang();
    /** The server's own answer, changed by @p edit. */
    static Override edited(const Edit &edit);

    Override &header(const QByteArray &name, const QByteArray &value);
    Override &delay(int milliseconds);
    Override &holdUntil(const GatePtr &gate);
    Override &truncateAt(qint64 bytes);
    Override &drip(int bytesPerSecond = 1);
    Override &endless();
    Override &falseLength(qint64 length);

    struct Status
    {
        int value = 0;
        QString id; ///< empty: all
        bool applies(const QString &candidate) const
        {
            return value != 0 && (id.isEmpty() || id == candidate);
        }
    };
    struct Reply
    {
        int httpStatus = 200;
        QByteArray body;
        QByteArray contentType;
        WbxmlNode document;
    };

    int mTopStatus = 0;
    Status mCollectionStatus;
    Status mItemStatus;
    std::optional<Reply> mReply;
    HttpHeaders mHeaders;
    Edit mEdit;
    Transport mTransport;
};

} // namespace Simulator
