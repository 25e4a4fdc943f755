// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The outcomes of a request that are the engine's own. A requestFinished signal carries one of these, a
 * positive status of the server, or 10000 plus a QNetworkReply::NetworkError.
 */
class EasRequestStatus
{
    Q_GADGET

public:
    enum RequestStatus {
        RequestStatusSuccess = 0,
        /** The server offers no protocol version that the engine speaks. */
        RequestStatusVersionUnknown = -1,
        /** No account, a reply that could not be read, a store that refused the result. */
        RequestStatusInternalError = -2,
        /** Invalid arguments, or the server called the command wrong. */
        RequestStatusBadRequest = -3,
        /** Cancelled, or the account is blocked until its credentials are entered anew. */
        RequestStatusCancelled = -4,
        RequestStatusPolicyRefused = -5,
        RequestStatusServerStorageFull = -6,
        RequestStatusWipeAcknowledged = -7,
        RequestStatusCommandNotSupported = -8,
        RequestStatusNoNetwork = -9,
        RequestStatusMessageTooLarge = -10
    };
    Q_ENUM(RequestStatus)

    /** The key of one of the outcomes above; empty for any other number. */
    static QString name(int status);
};
